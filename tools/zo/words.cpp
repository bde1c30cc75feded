#include "words.h"

#include "text.h"

#include "ZoPrimitives/TTranslatedString.h"
#include "ZoPrimitives/ZoLanguage.h"

#include "messages/zo.h"

#include <CLI/CLI.hpp>

namespace ZoTool {

using namespace ZoPrimitives;

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

} // namespace ZoTool
