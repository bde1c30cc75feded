#include "commands.h"
#include "system.h"
#include "tool.h"
#include "words.h"

#include "ZoPrimitives/ZoVersion.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

using namespace ZoTool;

namespace {

struct Looks {
    std::string colour = "auto";
    std::string language; // of `ChooseLanguage`
};

void AddCommonOptions(CLI::App& zo, Looks& looks) {
    zo.set_help_flag("-h,--help", "tell what can be asked, and end");
    zo.set_version_flag("--version", "zo " ZO_VERSION, "tell the version, and end");
    zo.add_option("--color", looks.colour,
                  "colours: auto (on a terminal, unless NO_COLOR is set), always, never")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->type_name("WHEN")
        ->default_str("auto");
    zo.add_option("--language", looks.language,
                  "of what is told: pt-BR, en-US or es-MX; also in Language.ini")
        ->type_name("NAME");
    zo.require_subcommand(1);
    zo.fallthrough();
    zo.allow_windows_style_options(false);
    zo.get_formatter()->column_width(32);
    zo.footer(
        "\"zo COMMAND --help\" tells about a command, with examples. A FILE named \"-\" is standard input.\n"
        "Ends with 0 if all is good, 1 for a negative result (differences, findings), 2 for trouble.");
}

bool Colours(const Looks& looks, std::FILE* stream) {
    if (looks.colour != "auto") return looks.colour == "always";
    return Environment("NO_COLOR").empty() && IsTerminal(stream);
}

Exit Run(Tool& tool, std::vector<std::string> words) {
    CLI::App zo{Marked("Looks into object files, whatever application wrote them."), "zo"};
    Looks looks;
    AddCommonOptions(zo, looks);
    AddInfo(zo, tool);
    AddLs(zo, tool);
    AddSchema(zo, tool);
    AddDump(zo, tool);
    AddSql(zo, tool);
    AddExport(zo, tool);
    AddDiff(zo, tool);
    AddReport(zo, tool);
    AddVerify(zo, tool);
    AddSalvage(zo, tool);
    TranslateHelp(zo);
    // The parser takes them from the back.
    std::reverse(words.begin(), words.end());
    try {
        zo.parse(std::move(words));
    } catch (const CLI::Success& asked) { // for help, or the version
        zo.exit(asked);
        return Exit::Good;
    } catch (const CLI::ParseError& error) {
        const auto chosen = zo.get_subcommands();
        const std::vector<std::string> rest = zo.remaining();
        const bool isNoCommand = chosen.empty() && !rest.empty() && rest.front()[0] != '-';
        const std::string wrong =
            isNoCommand ? Words("there is no command \"{}\"", rest.front()) : WhatIsWrong(error);
        tool.Fail("", Words("{}; \"zo {}--help\" tells what can be asked", wrong,
                            chosen.empty() ? "" : chosen.front()->get_name() + " "));
        return Exit::Trouble;
    }
    tool.out.SetColour(Colours(looks, stdout));
    tool.err.SetColour(Colours(looks, stderr));
    tool.showsProgress = IsTerminal(stderr);
    const Exit end = tool.command();
    tool.out.Flush();
    return end;
}

} // namespace

int main(int count, char** given) {
    const std::shared_ptr<void> streams = PrepareStreams();
    Tool tool(stdout, stderr);
    return static_cast<int>(tool.Try("", [&] {
        std::vector<std::string> words = Arguments(count, given);
        words.erase(words.begin());
        ChooseLanguage(words);
        return Run(tool, std::move(words));
    }));
}
