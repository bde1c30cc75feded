// Compiles the translations of one program or library into a C++ table.
//
//     zo_messages OUT TABLE POT PT_BR EN_US ES_MX
//
// OUT is the header to write, TABLE the qualified name of the array in it. POT holds the texts of the
// sources, the others are the translations into a language, each a gettext .po file in UTF-8, or "-" where
// the texts of the sources stand. The table is in Windows-1252. A text that is missing, doubtful, has no form
// in Windows-1252, or has other placeholders or blanks at its ends than its source is an error.

#include "ZoPrimitives/ZoUtf8.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

using ZoPrimitives::Windows1252;

int errors = 0;

void Tell(const std::string& file, int line, const std::string& what) {
    std::cerr << file << ':' << line << ": error: " << what << '\n';
    ++errors;
}

struct Entry {
    std::string text; // UTF-8
    int line = 0;
};
using Catalogue = std::map<std::string, Entry>; // by the text of the source, UTF-8

/// Reads a .po file. `isTemplate`: the translations are empty.
class PoReader {
public:
    PoReader(const std::string& path, bool isTemplate) : file(path), wantsEmpty(isTemplate) {}

    Catalogue Read() {
        std::ifstream in(file, std::ios::binary);
        if (!in) Tell(file, 0, "cannot be opened");
        std::string words;
        while (std::getline(in, words)) {
            ++line;
            if (!words.empty() && words.back() == '\r') words.pop_back();
            Line(words);
        }
        End();
        if (charset.find("charset=UTF-8") == std::string::npos) Tell(file, 1, "the charset must be UTF-8");
        return std::move(catalogue);
    }

private:
    void Line(const std::string& words) {
        const auto starts = [&](const char* with) { return words.rfind(with, 0) == 0; };
        if (words.empty()) return;
        if (starts("#~")) return Tell(file, line, "take out what is obsolete");
        if (words[0] == '#') {
            if (target == &translation) End();
            if (starts("#,") && words.find("fuzzy") != std::string::npos) fuzzy = true;
        } else if (starts("msgid ")) {
            if (target != nullptr) End();
            begun = line;
            target = &source;
            Append(words.substr(6));
        } else if (starts("msgstr ")) {
            target = &translation;
            Append(words.substr(7));
        } else if (words[0] == '"' && target != nullptr) {
            Append(words);
        } else {
            Tell(file, line, "is not understood (contexts and plurals are not used here): " + words);
        }
    }

    void Append(const std::string& quoted) {
        if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"')
            return Tell(file, line, "a text in quotes is expected");
        for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
            if (quoted[i] != '\\') {
                *target += quoted[i];
                continue;
            }
            const char escaped = quoted[++i];
            if (escaped == 'n')
                *target += '\n';
            else if (escaped == 't')
                *target += '\t';
            else if (escaped == '"' || escaped == '\\')
                *target += escaped;
            else
                Tell(file, line, "there is an unknown escape");
        }
    }

    void End() {
        if (target == nullptr) return;
        if (source.empty())
            charset = translation;
        else if (fuzzy)
            Tell(file, begun, "is marked as fuzzy: " + source);
        else if (!wantsEmpty && translation.empty())
            Tell(file, begun, "is not translated: " + source);
        else if (!catalogue.emplace(source, Entry{wantsEmpty ? source : translation, begun}).second)
            Tell(file, begun, "is there twice: " + source);
        source.clear();
        translation.clear();
        target = nullptr;
        fuzzy = false;
    }

    const std::string file;
    const bool wantsEmpty;
    Catalogue catalogue;
    std::string source;
    std::string translation;
    std::string charset;
    std::string* target = nullptr; // which of the two the next line continues
    int line = 0;
    int begun = 0;
    bool fuzzy = false;
};

/// The bytes in Windows-1252; tells of a character that has none.
std::string Ansi(const std::string& utf8, const std::string& file, int line) {
    std::string bytes;
    for (const char* at = utf8.c_str(); *at != '\0';) {
        const char* const start = at;
        const int byte = Windows1252::FromUnicode(Windows1252::Next(at));
        if (byte < 0)
            Tell(file, line, "Windows-1252 lacks \"" + std::string(start, at) + "\" of: " + utf8);
        else
            bytes += static_cast<char>(byte);
    }
    return bytes;
}

/// The placeholders of printf in their order, and those in braces in any order.
std::string Placeholders(const std::string& text) {
    static const std::regex printf("%(%|[-+ #0]*[0-9]*(\\.[0-9]+)?(hh|h|ll|l|z)?[a-zA-Z])");
    static const std::regex braces("\\{[^{}]*\\}");
    std::string found;
    for (std::sregex_iterator at(text.begin(), text.end(), printf), end; at != end; ++at) found += at->str();
    std::multimap<std::string, int> sorted;
    for (std::sregex_iterator at(text.begin(), text.end(), braces), end; at != end; ++at)
        sorted.emplace(at->str(), 0);
    for (const auto& [placeholder, none] : sorted) found += placeholder;
    return found;
}

/// The blanks at both ends.
std::string Ends(const std::string& text) {
    const char* const blanks = " \n\t";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return text;
    return text.substr(0, first) + '|' + text.substr(text.find_last_not_of(blanks) + 1);
}

void Compare(const std::string& file, const Catalogue& sources, const Catalogue& translations) {
    for (const auto& [source, entry] : translations) {
        if (sources.count(source) == 0) Tell(file, entry.line, "the sources have no such text: " + source);
        if (Placeholders(source) != Placeholders(entry.text))
            Tell(file, entry.line, "has other placeholders than its source: " + entry.text);
        if (Ends(source) != Ends(entry.text))
            Tell(file, entry.line, "begins or ends with other blanks than its source: " + entry.text);
    }
    for (const auto& [source, entry] : sources) {
        if (translations.count(source) == 0) Tell(file, 0, "lacks: " + source);
    }
}

std::string Literal(const std::string& bytes) {
    std::string literal = "\"";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte >= 0x7F || c == '"' || c == '\\') {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\%03o", static_cast<unsigned>(byte));
            literal += escaped;
        } else {
            literal += c;
        }
    }
    return literal + '"';
}

/// One row for each text of the sources, in the order of their bytes.
std::string Table(const std::string& name, const std::map<std::string, std::vector<std::string>>& rows) {
    const std::size_t scope = name.rfind("::");
    std::string table = "// Made of the .po files, which are to be changed instead.\n#pragma once\n\n"
                        "#include \"ZoPrimitives/ZoLanguage.h\"\n\nnamespace " +
                        name.substr(0, scope) + " {\n\ninline constexpr ZoPrimitives::TZoText " +
                        name.substr(scope + 2) + "[] = {\n";
    for (const auto& [key, forms] : rows) {
        table += "    {" + Literal(key) + ", {";
        for (const std::string& form : forms) table += (&form == &forms.front() ? "" : ", ") + Literal(form);
        table += "}},\n";
    }
    return table + "};\n\n}\n";
}

} // namespace

int main(int count, char** arguments) {
    const std::vector<std::string> words(arguments, arguments + count);
    if (count != 7 || words[2].find("::") == std::string::npos) {
        std::cerr << "usage: zo_messages OUT TABLE POT PT_BR EN_US ES_MX\n";
        return 2;
    }
    const std::string& pot = words[3];
    const Catalogue sources = PoReader(pot, true).Read();
    std::map<std::string, std::vector<std::string>> rows; // Windows-1252
    for (std::size_t i = 4; i < words.size(); ++i) {
        const bool own = words[i] == "-";
        const Catalogue translations = own ? sources : PoReader(words[i], false).Read();
        if (!own) Compare(words[i], sources, translations);
        for (const auto& [source, entry] : translations)
            rows[Ansi(source, pot, entry.line)].push_back(Ansi(entry.text, own ? pot : words[i], entry.line));
    }
    if (rows.empty()) Tell(pot, 0, "holds no text");
    if (errors != 0) return 1;
    std::ofstream out(words[1], std::ios::binary);
    out << Table(words[2], rows);
    out.close();
    if (!out) Tell(words[1], 0, "cannot be written");
    return errors != 0 ? 1 : 0;
}
