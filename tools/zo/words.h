#pragma once

#include <fmt/format.h>

#include <string>
#include <vector>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace ZoTool {

/// A text of this program, written in English, in the current language, as UTF-8.
std::string Translation(const std::string& english);

/// The same with its placeholders replaced. What a program reads (JSON, tables of SQL) is not translated.
template <class... Values>
std::string Words(const char* english, const Values&... values) {
    return fmt::vformat(Translation(english), fmt::make_format_args(values...));
}

/// A text that is translated later.
constexpr const char* Marked(const char* english) { return english; }

/// Sets the language that the command line asks for, or Language.ini beside the program; English otherwise.
void ChooseLanguage(const std::vector<std::string>& commandLine);

/// Puts all that `--help` tells into the current language.
void TranslateHelp(CLI::App& app);

/// What the parser of the command line, which knows English alone, says of a slip.
std::string WhatIsWrong(const CLI::ParseError& slip);

} // namespace ZoTool
