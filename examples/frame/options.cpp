#include "options.h"

#include "failure.h"

namespace Frame {

Options ReadOptions(const std::vector<std::string>& arguments) {
    std::string units = "metric";
    std::string separator = ".";
    std::string property = "load";
    const struct {
        const char* name;
        std::string* value;
        const char* what;
    } options[] = {
        {"--units", &units, "metric, technical or imperial"},
        {"--separator", &separator, "a point or a comma"},
        {"--by", &property, "load or area"},
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
            if (i + 1 == arguments.size()) throw Failure(word + " needs a value: " + option.what + ".");
            *option.value = arguments[++i];
            given.push_back(word);
            given.push_back(arguments[i]);
        }
        if (!known) throw Failure("There is no option " + word + ": use --units, --separator or --by.");
    }
    return {words, given, Units::Named(units, separator), PropertyNamed(property)};
}

} // namespace Frame
