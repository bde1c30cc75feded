#include "font.h"

#include <array>
#include <cstddef>

namespace ZoTool {

namespace {

// In thousandths of the size, as DejaVu Sans has them: from U+0020 to U+007E, and from U+00A0 to U+00FF.
constexpr std::array<short, 95> REGULAR = {
    318, 401, 460, 838, 636, 950, 780, 275, 390, 390, 500, 838, 318, 361,  318, 337, 636, 636, 636,
    636, 636, 636, 636, 636, 636, 636, 337, 337, 838, 838, 838, 531, 1000, 684, 686, 698, 770, 632,
    575, 775, 752, 295, 295, 656, 557, 863, 748, 787, 603, 787, 695, 635,  611, 732, 684, 989, 685,
    611, 685, 390, 337, 390, 838, 500, 500, 613, 635, 550, 635, 615, 352,  635, 634, 278, 278, 579,
    278, 974, 634, 612, 635, 635, 411, 521, 392, 634, 592, 818, 592, 592,  525, 636, 337, 636, 838};
constexpr std::array<short, 95> BOLD = {
    348, 456,  521, 838, 696, 1002, 872, 306, 457, 457, 523, 838, 380, 415,  380, 365, 696, 696,  696,
    696, 696,  696, 696, 696, 696,  696, 400, 400, 838, 838, 838, 580, 1000, 774, 762, 734, 830,  683,
    683, 821,  837, 372, 372, 775,  637, 995, 837, 850, 733, 850, 770, 720,  682, 812, 774, 1103, 771,
    724, 725,  457, 365, 457, 838,  500, 500, 675, 716, 593, 716, 678, 435,  716, 712, 343, 343,  665,
    343, 1042, 712, 687, 716, 716,  493, 595, 478, 712, 652, 924, 645, 652,  582, 712, 365, 712,  838};
constexpr std::array<short, 96> LATIN = {
    318, 401, 636, 636, 636, 636, 337, 500, 500, 1000, 471, 612, 838, 0,   1000, 500, 500, 838, 401, 401,
    500, 636, 636, 318, 500, 401, 471, 612, 969, 969,  969, 531, 684, 684, 684,  684, 684, 684, 974, 698,
    632, 632, 632, 632, 295, 295, 295, 295, 775, 748,  787, 787, 787, 787, 787,  838, 787, 732, 732, 732,
    732, 611, 605, 630, 613, 613, 613, 613, 613, 613,  982, 550, 615, 615, 615,  615, 278, 278, 278, 278,
    612, 634, 612, 612, 612, 612, 612, 838, 612, 634,  634, 634, 634, 592, 635,  592};
constexpr short WIDEST = 1350; // of the other characters of Windows-1252
constexpr double LATIN_BOLD = 1.15;

struct Character {
    char32_t code;
    std::size_t bytes;
};

Character First(std::string_view utf8) {
    const auto lead = static_cast<unsigned char>(utf8[0]);
    const std::size_t bytes = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (bytes > utf8.size()) return {lead, 1};
    char32_t code = bytes == 1 ? lead : lead & (0x7Fu >> bytes);
    for (std::size_t i = 1; i < bytes; ++i) {
        code = (code << 6) | (static_cast<unsigned char>(utf8[i]) & 0x3Fu);
    }
    return {code, bytes};
}

double WidthOf(char32_t code, Weight weight) {
    const bool bold = weight == Weight::Bold;
    if (code >= 0x20 && code < 0x7F) return (bold ? BOLD : REGULAR)[code - 0x20] / 1000.0;
    if (code >= 0xA0 && code <= 0xFF) return LATIN[code - 0xA0] * (bold ? LATIN_BOLD : 1) / 1000.0;
    return WIDEST / 1000.0;
}

} // namespace

double TextWidth(std::string_view utf8, Weight weight) {
    double width = 0;
    while (!utf8.empty()) {
        const Character next = First(utf8);
        width += WidthOf(next.code, weight);
        utf8.remove_prefix(next.bytes);
    }
    return width;
}

std::string Fitted(std::string_view utf8, double room, double size, Weight weight) {
    double left = room / size;
    const double ellipsis = 1; // its width
    std::size_t end = 0, cut = 0;
    while (end < utf8.size()) {
        const Character next = First(utf8.substr(end));
        left -= WidthOf(next.code, weight);
        if (left < 0) return std::string(utf8.substr(0, cut)) + "\u2026";
        end += next.bytes;
        if (left >= ellipsis) cut = end;
    }
    return std::string(utf8);
}

} // namespace ZoTool
