#pragma once

#include <string>
#include <vector>

namespace bench {

/// A chart of the frame's times: four panels (save and open, memory and file), and for each library a bar for
/// the warm time in front of a thin one for the fresh time.
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
