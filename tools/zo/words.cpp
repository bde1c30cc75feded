#include "words.h"

#include "text.h"

#include "ZoPrimitives/TTranslatedString.h"
#include "ZoPrimitives/ZoLanguage.h"

#include "messages/zo.h"

#include <CLI/CLI.hpp>
#include <fmt/args.h>

#include <optional>
#include <string_view>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

/// A sentence of the parser's: each "{}" is any text.
struct Slip {
    CLI::ExitCodes kind;
    const char* pattern;   // the sentence
    const char* ours = ""; // instead of it, with the first of its texts; empty: the same
};
constexpr Slip SLIPS[] = {
    {CLI::ExitCodes::RequiredError, Marked("A subcommand is required")},
    {CLI::ExitCodes::RequiredError, Marked("Exactly 1 option from [{}] is required and {} were given")},
    {CLI::ExitCodes::RequiredError, Marked("Exactly 1 option from [{}] is required")},
    {CLI::ExitCodes::RequiredError, Marked("{} is required")},
    {CLI::ExitCodes::RequiresError, Marked("{} requires {}")},
    {CLI::ExitCodes::ExcludesError, Marked("{} excludes {}")},
    {CLI::ExitCodes::ExtrasError, Marked("The following argument was not expected: {}")},
    {CLI::ExitCodes::ExtrasError, Marked("The following arguments were not expected: {}")},
    {CLI::ExitCodes::ArgumentMismatch, Marked("{}: 1 required {} missing")},
    {CLI::ExitCodes::ArgumentMismatch, Marked("{}: At Most {} required but received {}")},
    {CLI::ExitCodes::ConversionError, Marked("Could not convert: {} = {}")},
    {CLI::ExitCodes::ValidationError, "{}: Value {} not in range 0.000000 to {}",
     Marked("{}: {} is no number from 0 on")},
    {CLI::ExitCodes::ValidationError, Marked("{}: {} not in {}")},
};

/// The texts that stand for each "{}" of a pattern in a sentence; none: the sentence is another.
std::optional<std::vector<std::string>> TextsIn(std::string_view sentence, std::string_view pattern) {
    std::vector<std::string> texts;
    for (std::size_t gap; (gap = pattern.find("{}")) != std::string_view::npos;) {
        if (sentence.substr(0, gap) != pattern.substr(0, gap)) return {};
        sentence.remove_prefix(gap);
        pattern.remove_prefix(gap + 2);
        const std::string_view next = pattern.substr(0, pattern.find("{}"));
        const std::size_t end = next.empty() ? sentence.size() : sentence.find(next);
        if (end == std::string_view::npos) return {};
        texts.emplace_back(sentence.substr(0, end));
        sentence.remove_prefix(end);
    }
    if (sentence != pattern) return {};
    return texts;
}

} // namespace

std::string Translation(const std::string& english) {
    return Utf8(TTranslatedString(english.c_str()).ToZoString());
}

void ChooseLanguage(const std::vector<std::string>& commandLine) {
    static const std::string option = "--language";
    static const bool added = (ZoAddTexts(TEXTS), true);
    ZoSetLanguage("en-US");
    std::string asked;
    for (std::size_t i = 0; i < commandLine.size(); ++i) {
        if (commandLine[i] == option && i + 1 < commandLine.size()) asked = commandLine[i + 1];
        if (commandLine[i].rfind(option + "=", 0) == 0) asked = commandLine[i].substr(option.size() + 1);
    }
    if (!added || asked.empty())
        ZoLoadLanguage();
    else
        ZoSetLanguage(asked.c_str());
}

void TranslateHelp(CLI::App& app) {
    app.description(Translation(app.get_description()));
    app.footer(Translation(app.get_footer()));
    for (const char* const group : {Marked("Options"), Marked("Subcommands")}) {
        if (app.get_group() == group) app.group(Translation(group));
    }
    for (const char* const label :
         {Marked("Usage"), Marked("Positionals"), Marked("OPTIONS"), Marked("SUBCOMMAND"), Marked("REQUIRED"),
          Marked("Excludes"), Marked("Needs")})
        app.get_formatter()->label(label, Translation(label));
    for (CLI::Option* const option : app.get_options()) {
        option->description(Translation(option->get_description()));
        option->group(Translation(option->get_group()));
    }
    for (CLI::App* const command : app.get_subcommands({})) TranslateHelp(*command);
}

std::string WhatIsWrong(const CLI::ParseError& slip) {
    for (const auto& [kind, pattern, ours] : SLIPS) {
        const auto texts = TextsIn(slip.what(), pattern);
        if (slip.get_exit_code() != static_cast<int>(kind) || !texts) continue;
        fmt::dynamic_format_arg_store<fmt::format_context> values;
        for (const std::string& text : *texts) values.push_back(text);
        return fmt::vformat(Translation(*ours == '\0' ? pattern : ours), values);
    }
    return Words("the command line is not understood ({})", slip.what());
}

} // namespace ZoTool
