#include "chart.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace bench {

namespace {

constexpr int NAMES = 170;
constexpr int PANEL = 360;
constexpr int ROW = 22;
constexpr int TOP = 64;

std::string Number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.0f", value);
    return text;
}

std::string Rectangle(double x, double y, double width, double height, const char* kind) {
    char text[160];
    std::snprintf(text, sizeof text, "<rect x='%.1f' y='%.1f' width='%.1f' height='%.1f' class='%s'/>\n", x,
                  y, width, height, kind);
    return text;
}

std::string Text(double x, double y, const std::string& words, const char* kind) {
    char element[96];
    std::snprintf(element, sizeof element, "<text x='%.1f' y='%.1f' class='%s'>", x, y, kind);
    return element + words + "</text>\n";
}

} // namespace

void Chart::Begin(const std::string& newCaption) {
    caption = newCaption;
    bars.clear();
}

void Chart::Add(const std::string& library, bool file, const Times& times) {
    bars.push_back({library, file, times});
}

void Chart::Store(const std::string& path) const {
    struct Panel {
        const char* title;
        bool file;
        double Times::*fresh;
        double Times::*warm;
    };
    const Panel panels[] = {{"Save to memory", false, &Times::saveFresh, &Times::saveWarm},
                            {"Open from memory", false, &Times::openFresh, &Times::openWarm},
                            {"Save to a file", true, &Times::saveFresh, &Times::saveWarm},
                            {"Open a file", true, &Times::openFresh, &Times::openWarm}};
    const auto rows = static_cast<int>(bars.size() / 2);
    const int panelHeight = rows * ROW + 48;
    std::string svg;
    for (int p = 0; p < 4; ++p) {
        const Panel& panel = panels[p];
        const double left = p % 2 == 0 ? 16 : 16 + NAMES + PANEL + 24;
        double y = TOP + (p / 2) * panelHeight;
        double longest = 1;
        for (const Bar& bar : bars) {
            if (bar.file == panel.file)
                longest = std::max({longest, bar.times.*panel.fresh, bar.times.*panel.warm});
        }
        svg += Text(left, y, panel.title, "panel");
        y += 12;
        for (const Bar& bar : bars) {
            if (bar.file != panel.file) continue;
            const double fresh = bar.times.*panel.fresh;
            const double warm = bar.times.*panel.warm;
            const double scale = (PANEL - 90) / longest;
            const bool ours = bar.library == "ours";
            svg += Text(left + NAMES - 8, y + 14, bar.library, ours ? "name ours" : "name");
            svg += Rectangle(left + NAMES, y + 8, fresh * scale, 6, "fresh");
            svg += Rectangle(left + NAMES, y + 3, warm * scale, 16, ours ? "warm own" : "warm");
            svg += Text(left + NAMES + std::max(fresh, warm) * scale + 6, y + 15,
                        Number(fresh) + " / " + Number(warm), "number");
            y += ROW;
        }
    }
    const int width = 2 * (NAMES + PANEL) + 56;
    const int height = TOP + 2 * panelHeight;
    std::ofstream out(path);
    out << "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 " << width << ' ' << height << "' width='"
        << width << "' height='" << height << "' font-family='sans-serif' font-size='12'>\n"
        << "<style>.panel{font-weight:bold;font-size:14px}.name{text-anchor:end}.ours{font-weight:bold}"
           ".number{fill:#555}.warm{fill:#9db4c8}.own{fill:#d9772b}.fresh{fill:#c9ced3}</style>\n"
        << "<rect width='100%' height='100%' fill='white'/>\n"
        << Text(16, 28, caption + ": nanoseconds per object, fresh process / warm", "panel") << svg
        << "</svg>\n";
    if (!out.flush()) throw std::runtime_error("cannot write " + path);
}

} // namespace bench
