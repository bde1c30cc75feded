#include "commands.h"
#include "input.h"
#include "markup.h"
#include "page_json.h"
#include "paths.h"
#include "report_data.h"
#include "report_page.h"
#include "save.h"
#include "text.h"
#include "tool.h"
#include "words.h"

#include "ZoPrimitives/ZoLanguage.h"

#include <CLI/CLI.hpp>

#include <cctype>
#include <set>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

struct ReportOptions {
    std::string file, out;
    unsigned long long objects = ReportLimits().objects;
};

/// What the script's texts are in the current language, as JSON.
std::string Translations() {
    const std::string_view script = PageJs(), call = "t('";
    std::set<std::string> texts;
    for (std::size_t at = script.find(call); at != std::string_view::npos; at = script.find(call, at)) {
        const bool isCall = std::isalnum(static_cast<unsigned char>(script[at - 1])) == 0;
        at += call.size();
        if (!isCall) continue; // of another function, whose name ends alike
        texts.emplace(script.substr(at, script.find('\'', at) - at));
    }
    Json json;
    json.Raw("{");
    for (const std::string& english : texts) {
        json.Key(english);
        json.PutText(Translation(english));
    }
    json.Raw("}");
    return json.Take();
}

/// Adds what "@part@" stands for.
void AddPart(std::string& page, std::string_view part, const ReportData& data) {
    if (part == "style")
        page += PageCss();
    else if (part == "script")
        page += PageJs();
    else if (part == "diagram")
        page += data.diagram;
    else if (part == "data")
        page += data.json;
    else if (part == "language")
        page += ZoLanguage();
    else if (part == "translations")
        page += Translations();
    else // a text, in quotes
        page += Escaped(Translation(std::string(part.substr(1, part.size() - 2))));
}

std::string PageOf(const ReportData& data) {
    std::string page;
    std::string_view rest = PageHtml();
    while (!rest.empty()) {
        const std::size_t begin = rest.find('@');
        page += rest.substr(0, begin);
        if (begin == std::string_view::npos) break;
        const std::size_t end = rest.find('@', begin + 1);
        AddPart(page, rest.substr(begin + 1, end - begin - 1), data);
        rest.remove_prefix(end + 1);
    }
    return page;
}

ReportFindings Find(Tool& tool, const Input& input, const ReportLimits& limits) {
    ReportFindings findings;
    FaultFinder finder(input.Bytes(), false);
    Progress progress(tool, Words("verifying {}", input.Name()), finder.Work());
    finder.Find(
        [&](const Fault& fault) {
            if (++findings.counts[fault.kind] <= limits.findings) findings.first.push_back(fault);
        },
        [&](unsigned long long done) { progress.Show(done); });
    return findings;
}

Exit MakeReport(Tool& tool, const ReportOptions& options) {
    const Input input(options.file);
    ReportLimits limits;
    limits.objects = options.objects;
    const ReportFindings findings = Find(tool, input, limits);
    const ReportData data =
        ReadReport(input.Bytes(), Utf8Of(PathOf(input.Name()).filename()), findings, limits);
    SaveResult(tool, options.out, PageOf(data), options.file);
    for (const std::string& cut : data.cuts) tool.Warn(input.Name(), cut);
    return Exit::Good;
}

} // namespace

void AddReport(CLI::App& zo, Tool& tool) {
    CLI::App* const command = zo.add_subcommand("report", "a page about a file, for a browser");
    const auto options = std::make_shared<ReportOptions>();
    command->add_option("FILE", options->file, "an object file, or - for standard input")->required();
    command->add_option("-o,--output", options->out, "the page to write, or - for standard output")
        ->type_name("OUT.html")
        ->required();
    command->add_option("--objects", options->objects, "how many objects the page lists at most")
        ->type_name("N")
        ->capture_default_str();
    command->footer("The page is one file that needs no other and no network: "
                    "summary, findings, a map of the file's\n"
                    "bytes, bytes per class, a class diagram, and the objects "
                    "with links along their pointers.\n\n"
                    "Examples:\n  zo report model.zo -o model.html\n  zo report "
                    "--objects 1000000 city.zo -o city.html");
    command->callback([&tool, options] {
        tool.command = [&tool, options] {
            return tool.Try(NameOf(options->file), [&] { return MakeReport(tool, *options); });
        };
    });
}

} // namespace ZoTool
