#pragma once

#include "support/TemporaryFolder.h"

#include <clocale>
#include <cstdlib>
#include <sstream>

/// While it lives the process writes numbers with a comma: under an installed locale or, where there is none,
/// under one that `localedef` makes for the occasion. Not for tests that run side by side in one process.
class CommaLocale {
public:
    CommaLocale() {
        for (const char* name : {"pt_BR.UTF-8", "pt_BR", "de_DE.UTF-8", "de_DE", "pt-BR"}) {
            if (Set(name)) return;
        }
        std::ostringstream characters;
        characters << "<code_set_name> ASCII\n<escape_char> /\nCHARMAP\n" << std::hex << std::uppercase;
        for (int i = 0; i < 128; ++i) {
            const std::string pad = i < 16 ? "0" : "";
            characters << "<U00" << pad << i << "> /x" << pad << i << " c\n";
        }
        folder.Write("characters", characters.str() + "END CHARMAP\n");
        folder.Write("source", "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3;3\n"
                               "END LC_NUMERIC\n");
        const std::string command = "cd " + folder.Path() + " && localedef -c --no-archive -i source " +
                                    "-f characters " + folder.Path("comma") + " >log 2>&1";
        // Its result tells of every part of a locale that is missing; what counts is whether this one works.
        static_cast<void>(std::system(command.c_str()));
        SetVariable("LOCPATH", folder.Path().c_str());
        Set("comma");
        SetVariable("LOCPATH", "");
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() { std::setlocale(LC_ALL, "C"); }

    /// Otherwise the system has no such locale, and the test cannot tell anything.
    bool Active() const { return active; }

private:
    bool Set(const char* name) {
        active = std::setlocale(LC_ALL, name) != nullptr && *std::localeconv()->decimal_point == ',';
        return active;
    }
    /// Not every system has `setenv`.
    template <class Name>
    static void SetVariable(Name name, Name value) {
        if constexpr (requires { setenv(name, value, 1); }) setenv(name, value, 1);
    }

    ZoPrimitives::Testing::TemporaryFolder folder;
    bool active = false;
};
