#pragma once

#include <string>
#include <vector>

namespace bench {

/// A picture of the frame's times: four panels (save and open, memory and file), a bar for the warm time of
/// each library and a thin one for the fresh time behind it.
class Chart {
public:
    struct Times {
        double saveFresh, saveWarm, openFresh, openWarm; // ns per object
    };

    void Begin(const std::string& caption);
    void Add(const std::string& library, bool file, const Times& times);
    void Store(const std::string& path) const;

private:
    struct Bar {
        std::string library;
        bool file;
        Times times;
    };
    std::string caption;
    std::vector<Bar> bars;
};

} // namespace bench
