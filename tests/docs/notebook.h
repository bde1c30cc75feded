#ifndef ZO_DOCS_NOTEBOOK_H
#define ZO_DOCS_NOTEBOOK_H

// What the fragments of C++ in the documents stand on: each prints to a stream of its own.

#include "ZoPrimitives/ZoPrimitives.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

using namespace ZoPrimitives;

/// By the line of the page.
inline std::map<int, std::ostringstream>& Printed() {
    static std::map<int, std::ostringstream> printed;
    return printed;
}

inline std::ostream& PrintAt(int line) { return Printed()[line] << std::boolalpha; }
inline void ShowAt(int line, const ZoString& text) { PrintAt(line) << text.c_str() << '\n'; }

/// Each as its line, its size and its bytes.
inline void TellPrinted() {
    for (const auto& [line, text] : Printed()) {
        std::cout << line << ' ' << text.str().size() << '\n' << text.str();
    }
}

#endif
