#include "report.h"

#include "ZoPrimitives/ZoUtf8.h"

#include <algorithm>
#include <string>
#include <vector>

namespace Frame {

namespace {

constexpr double CM_PER_METRE = 100;
constexpr double KG_PER_TONNE = 1000;

/// A text of the model for the terminal: what could command the terminal is left out.
std::string Text(const ZoString& text) {
    ZoString shown(text);
    for (unsigned i = 0; i < shown.length(); ++i) {
        const char32_t character = ZoPrimitives::Windows1252::ToUnicode(static_cast<unsigned char>(shown[i]));
        if (character < 0x20 || (character >= 0x7F && character < 0xA0)) shown[i] = '?';
    }
    return ZoPrimitives::ZoToUtf8(shown);
}

std::string Decimal(double value, int decimals) {
    return ZoString::FormatString("%.*f", decimals, value).c_str();
}
std::string Metres(double cm) { return Decimal(cm / CM_PER_METRE, 2); }
std::string Tonnes(double kg) { return Decimal(kg / KG_PER_TONNE, 2); }

/// Rows of cells under headings; columns of numbers are set flush right.
class Grid {
public:
    /// A heading that begins with '>' is that of numbers.
    explicit Grid(const std::vector<std::string>& headings) {
        for (const std::string& heading : headings) {
            isNumber.push_back(heading[0] == '>');
            widths.push_back(0);
        }
        std::vector<std::string> cells;
        for (const std::string& heading : headings)
            cells.push_back(heading.substr(heading[0] == '>' ? 1 : 0));
        Add(cells);
        AddRule();
    }

    void Add(const std::vector<std::string>& cells) {
        for (std::size_t i = 0; i < cells.size(); ++i) widths[i] = std::max(widths[i], Width(cells[i]));
        rows.push_back(cells);
    }
    void AddRule() { rows.emplace_back(); }

    void Print(std::ostream& out) const {
        for (const auto& row : rows) {
            std::string line;
            for (std::size_t i = 0; i < widths.size(); ++i) {
                const std::string& cell = row.empty() ? std::string() : row[i];
                const std::string room(widths[i] - Width(cell), ' ');
                std::string field = isNumber[i] ? room + cell : cell + room;
                if (row.empty()) {
                    field.clear();
                    for (std::size_t n = 0; n < widths[i]; ++n) field += "─";
                }
                line += "  " + field;
            }
            out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
        }
    }

private:
    /// Characters, not bytes.
    static std::size_t Width(const std::string& text) {
        return static_cast<std::size_t>(std::count_if(
            text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
    }

    std::vector<bool> isNumber;
    std::vector<std::size_t> widths;
    std::vector<std::vector<std::string>> rows; // an empty one is a rule
};

struct Sums {
    unsigned columns = 0;
    unsigned girders = 0;
    double length = 0; // cm
    double load = 0;   // kN
    double steel = 0;  // kg

    void Add(const Member& member) {
        const auto* girder = dynamic_cast<const Girder*>(&member);
        ++(girder == nullptr ? columns : girders);
        if (girder != nullptr) load += girder->TotalLoad();
        length += member.Length();
        steel += member.Mass();
    }
};

template <class Select>
Sums SumsOf(const Building& building, Select select) {
    Sums sums;
    for (const auto& storey : building.storeys) {
        for (const auto& member : storey->members) {
            if (select(*storey, *member)) sums.Add(*member);
        }
    }
    return sums;
}
Sums SumsOf(const Building& building) {
    return SumsOf(building, [](const Storey&, const Member&) { return true; });
}

void PrintStoreys(const Building& building, std::ostream& out) {
    Grid grid({"Storey", "Name", ">Floor at m", ">Height m", ">Columns", ">Girders", ">Load kN", ">Steel t"});
    double height = 0;
    for (auto i = building.storeys.NItems(); i >= 1; --i) {
        const Storey& storey = *building.storeys[i];
        const Sums sums = SumsOf(building, [&](const Storey& at, const Member&) { return &at == &storey; });
        grid.Add({Text(storey.mark), Text(storey.name), Metres(storey.level), Metres(storey.height),
                  std::to_string(sums.columns), std::to_string(sums.girders), Decimal(sums.load, 1),
                  Tonnes(sums.steel)});
        height += storey.height;
    }
    const Sums all = SumsOf(building);
    grid.AddRule();
    grid.Add({"Total", "", "", Metres(height), std::to_string(all.columns), std::to_string(all.girders),
              Decimal(all.load, 1), Tonnes(all.steel)});
    grid.Print(out);
}

void PrintSections(const Building& building, std::ostream& out) {
    Grid grid(
        {"Section", "Use", ">Depth cm", ">Area cm²", ">Inertia cm⁴", ">Members", ">Length m", ">Steel t"});
    for (const auto& section : building.sections) {
        const Sums sums =
            SumsOf(building, [&](const Storey&, const Member& of) { return of.section == section.get(); });
        const LegendEntry* entry = building.legend.Find(section.get());
        grid.Add({Text(section->name), entry == nullptr ? "" : Text(entry->name), Decimal(section->depth, 1),
                  Decimal(section->area, 1), Decimal(section->inertia, 0),
                  std::to_string(sums.columns + sums.girders), Metres(sums.length), Tonnes(sums.steel)});
    }
    const Sums all = SumsOf(building);
    grid.AddRule();
    grid.Add({"Total", "", "", "", "", std::to_string(all.columns + all.girders), Metres(all.length),
              Tonnes(all.steel)});
    grid.Print(out);
}

} // namespace

void Print(const Profiles& profiles, std::ostream& out) {
    Grid grid(
        {"Section", ">Depth cm", ">Area cm²", ">Inertia cm⁴", ">Modulus cm³", ">Mass kg/m", "Material"});
    for (const auto& profile : profiles) {
        const Metal* metal = profile->metal.get();
        grid.Add({Text(profile->name), Decimal(profile->depth, 1), Decimal(profile->area, 1),
                  Decimal(profile->inertia, 0), Decimal(profile->Modulus(), 0),
                  metal == nullptr ? "" : Decimal(profile->MassPerMetre(), 1),
                  metal == nullptr ? "" : Text(metal->name)});
    }
    grid.Print(out);
}

double TotalSteel(const Building& building) { return SumsOf(building).steel; }

void Print(const Building& building, std::ostream& out) {
    out << Text(building.name) << ", " << Text(building.site.name)
        << (building.site.seismic ? " (seismic zone)" : "") << "\n\n";
    PrintStoreys(building, out);
    out << '\n';
    PrintSections(building, out);
    out << "\n  Total steel: " << Tonnes(TotalSteel(building)) << " t";
    for (const auto& material : building.materials) {
        if (material)
            out << " of " << Text(material->name) << ", " << Decimal(material->density, 0) << " kg/m³";
    }
    if (building.catalogue) {
        out << "\n  Sections:    " << Text(building.catalogue->name) << ", edition "
            << building.catalogue->edition;
    }
    out << "\n  Thumbnail:   " << building.thumbnail.Size() << " bytes\n";
}

} // namespace Frame
