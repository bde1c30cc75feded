#include "report.h"

#include "grid.h"
#include "words.h"

#include <algorithm>
#include <string>
#include <vector>

namespace Frame {

using namespace ZoPrimitives;

namespace {

struct Sums {
    unsigned columns = 0;
    unsigned girders = 0;
    GComprimento length = GComprimento(0.0);
    GForcaConcentrada load = GForcaConcentrada(0.0);
    GForcaConcentrada steel = GForcaConcentrada(0.0);

    void Add(const Member& member) {
        const auto* girder = dynamic_cast<const Girder*>(&member);
        ++(girder == nullptr ? columns : girders);
        if (girder != nullptr) load += girder->TotalLoad();
        length += member.Length();
        steel += member.Weight();
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

void PrintStoreys(const Building& building, const Units& units, std::ostream& out) {
    const std::string length = units.Name(units.length);
    Grid grid({Words("Storey"), Words("Name"), ">" + Words("Floor at {1}", {length}),
               ">" + Words("Height {1}", {length}), ">" + Words("Columns"), ">" + Words("Girders"),
               ">" + Words("Load {1}", {units.Name(units.load)}),
               ">" + Words("Steel {1}", {units.Name(units.steel)})});
    GComprimento height(0.0);
    for (auto i = building.storeys.NItems(); i >= 1; --i) {
        const Storey& storey = *building.storeys[i];
        const Sums sums = SumsOf(building, [&](const Storey& at, const Member&) { return &at == &storey; });
        grid.Add({Printable(storey.mark), Printable(storey.name), units.Number(units.length, storey.level),
                  units.Number(units.length, storey.height), std::to_string(sums.columns),
                  std::to_string(sums.girders), units.Number(units.load, sums.load),
                  units.Number(units.steel, sums.steel)});
        height += storey.height;
    }
    const Sums all = SumsOf(building);
    grid.AddRule();
    grid.Add({Words("Total"), "", "", units.Number(units.length, height), std::to_string(all.columns),
              std::to_string(all.girders), units.Number(units.load, all.load),
              units.Number(units.steel, all.steel)});
    grid.Print(out);
}

void PrintSections(const Building& building, const Units& units, std::ostream& out) {
    Grid grid({Words("Section"), Words("Use"), ">" + Words("Depth {1}", {units.Name(units.depth)}),
               ">" + Words("Area {1}", {units.Name(units.area)}),
               ">" + Words("Inertia {1}", {units.Name(units.inertia)}), ">" + Words("Members"),
               ">" + Words("Length {1}", {units.Name(units.total)}),
               ">" + Words("Steel {1}", {units.Name(units.steel)})});
    for (const auto& section : building.sections) {
        const Sums sums =
            SumsOf(building, [&](const Storey&, const Member& of) { return of.section == section.get(); });
        const LegendEntry* entry = building.legend.Find(section.get());
        grid.Add({Printable(section->name), entry == nullptr ? "" : Printable(entry->name),
                  units.Number(units.depth, section->depth), units.Number(units.area, section->area),
                  units.Number(units.inertia, section->inertia), std::to_string(sums.columns + sums.girders),
                  units.Number(units.total, sums.length), units.Number(units.steel, sums.steel)});
    }
    const Sums all = SumsOf(building);
    grid.AddRule();
    grid.Add({Words("Total"), "", "", "", "", std::to_string(all.columns + all.girders),
              units.Number(units.total, all.length), units.Number(units.steel, all.steel)});
    grid.Print(out);
}

} // namespace

void Print(const Profiles& profiles, const Units& units, std::ostream& out) {
    Grid grid({Words("Section"), ">" + Words("Depth {1}", {units.Name(units.depth)}),
               ">" + Words("Area {1}", {units.Name(units.area)}),
               ">" + Words("Inertia {1}", {units.Name(units.inertia)}),
               ">" + Words("Modulus {1}", {units.Name(units.modulus)}),
               ">" + Words("Steel {1}", {units.Name(units.steelLine)}), Words("Material")});
    for (const auto& profile : profiles) {
        const Metal* metal = profile->metal.get();
        grid.Add({Printable(profile->name), units.Number(units.depth, profile->depth),
                  units.Number(units.area, profile->area), units.Number(units.inertia, profile->inertia),
                  units.Number(units.modulus, profile->Modulus()),
                  metal == nullptr ? "" : units.Number(units.steelLine, profile->LineWeight()),
                  metal == nullptr ? "" : Printable(metal->name)});
    }
    grid.Print(out);
}

GForcaConcentrada TotalSteel(const Building& building) { return SumsOf(building).steel; }

void Print(const Building& building, const Units& units, std::ostream& out) {
    out << Printable(building.name) << ", " << Printable(building.site.name)
        << (building.site.seismic ? " (" + Words("seismic zone") + ")" : "") << "\n\n";
    PrintStoreys(building, units, out);
    out << '\n';
    PrintSections(building, units, out);
    out << '\n' << Label(Words("Total steel:")) << units.Text(units.steel, TotalSteel(building));
    for (const auto& material : building.materials) {
        if (material) {
            out << Words(" of {1}, {2}",
                         {Printable(material->name), units.Text(units.density, material->density)});
        }
    }
    if (building.catalogue) {
        out << '\n'
            << Label(Words("Sections:"))
            << Words("{1}, edition {2}",
                     {Printable(building.catalogue->name), std::to_string(building.catalogue->edition)});
    }
    if (!building.saved.IsNull())
        out << '\n'
            << Label(Words("Saved:")) << building.SavedAt().InUTCTime("%Y-%m-%d %H:%M:%S UTC").c_str();
    out << '\n'
        << Label(Words("Thumbnail:")) << Words("{1} bytes", {std::to_string(building.thumbnail.Size())})
        << '\n';
}

} // namespace Frame
