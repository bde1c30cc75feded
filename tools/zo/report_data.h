#pragma once

#include "faults.h"

#include "ZoPrimitives/ZoFrames.h"

#include <map>
#include <string>
#include <vector>

namespace ZoTool {

/// What `FaultFinder` finds.
struct ReportFindings {
    std::vector<Fault> first; ///< as many as the page lists
    std::map<FaultKind, unsigned long long> counts;
};

struct ReportLimits {
    unsigned long long objects = 250'000; ///< that the table has
    std::size_t bytes = 200'000'000;      ///< of their values
    std::size_t items = 1'000;            ///< of a list of values; pointers are there without exception
    std::size_t characters = 10'000;      ///< of a text
    std::size_t blob = 64;                ///< bytes of a blob
    std::size_t findings = 5'000;         ///< of a kind
    std::size_t stretches = 50'000;       ///< of the map of the file's bytes
};

/// What the page shows, in the parts that it is made of.
struct ReportData {
    std::string json;              ///< holds no "<", so that it can stand in a page
    std::string diagram;           ///< SVG, or a text of markup that says why there is none
    std::vector<std::string> cuts; ///< what the page leaves out, in sentences
};

/// Reads a file once, whatever is damaged in it. `name` is UTF-8. Throws
/// `Trouble` for bytes that have nothing of an object file.
ReportData ReadReport(ZoPrimitives::TZoBytes& bytes, const std::string& name, const ReportFindings& findings,
                      const ReportLimits& limits = {});

} // namespace ZoTool
