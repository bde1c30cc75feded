#include "options.h"

#include "failure.h"
#include "words.h"

#include "ZoPrimitives/ZoLanguage.h"

#include <algorithm>
#include <cstring>

namespace Frame {

Options ReadOptions(const std::vector<std::string>& arguments) {
    std::string units = "metric";
    std::string separator;
    std::string property = "load";
    std::string language;
    const struct {
        const char* name;
        std::string* value;
        std::string what;
    } options[] = {
        {"--units", &units, Words("metric, technical or imperial")},
        {"--separator", &separator, Words("a point or a comma")},
        {"--by", &property, Words("load or area")},
        {"--language", &language, "pt-BR, en-US, es-MX"},
    };

    std::vector<std::string> words;
    std::vector<std::string> given;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& word = arguments[i];
        if (word.rfind("--", 0) != 0 || word == "--help") {
            words.push_back(word);
            continue;
        }
        bool known = false;
        for (const auto& option : options) {
            if (word != option.name) continue;
            known = true;
            if (i + 1 == arguments.size())
                throw Failure(Words("{1} needs a value: {2}.", {word, option.what}));
            *option.value = arguments[++i];
            given.push_back(word);
            given.push_back(arguments[i]);
        }
        if (!known)
            throw Failure(
                Words("There is no option {1}: use --units, --separator, --by or --language.", {word}));
    }
    if (!language.empty()) ZoPrimitives::ZoSetLanguage(language.c_str());
    if (std::find(given.begin(), given.end(), "--separator") == given.end())
        separator = std::strcmp(ZoPrimitives::ZoLanguage(), "pt-BR") == 0 ? "," : ".";
    return {words, given, Units::Named(units, separator), PropertyNamed(property)};
}

} // namespace Frame
