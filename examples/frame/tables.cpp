#include "tables.h"

#include "failure.h"
#include "profile.h"
#include "table.h"
#include "words.h"

#include "ZoPrimitives/ZoUtf8.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace Frame {

using namespace ZoPrimitives;

namespace {

// Not in the tables: usual assumptions for an office building of this kind.
const GForcaArea deadLoad{4.6, TForcaArea::kN_m2};
const GForcaArea liveLoad{2.4, TForcaArea::kN_m2};

/// Assembles a building from its tables.
class Builder {
public:
    explicit Builder(const std::string& tableFolder) : folder(tableFolder) {
        model.building = Owned(new Building);
        building().name = ZoFromUtf8("Pórtico de aço de nove andares");
        building().site.name = "Los Angeles";
        building().site.seismic = true;
        auto* catalogue = Owned(new Catalogue);
        catalogue->name = ZoFromUtf8("Perfis W – série norte-americana");
        catalogue->edition = 14;
        building().catalogue = catalogue;
    }

    Model Build() {
        ReadSections();
        ReadBays();
        ReadStoreys();
        FillLegend();
        building().DrawThumbnail();
        return std::move(model);
    }

private:
    Building& building() { return *model.building; }

    template <class T>
    T* Owned(T* object) {
        model.objects.Add(object);
        return object;
    }

    void ReadSections() {
        const pointer<Metal> steel = new Metal;
        steel->name = ZoFromUtf8("Aço estrutural");
        steel->density = steelDensity;
        Profiles profiles;
        SectionFactory factory;
        FromBusiness helper(&factory);
        building().materials.Add(dynamic_cast<Material*>(helper.Convert(steel.get())));

        const Table table(folder, "frame9-sections.csv", {"name", "depth_in", "area_in2", "inertia_in4"});
        for (const auto& row : table.Rows()) {
            const ZoString name = ZoFromUtf8(row.fields[0].c_str());
            if (FindSection(name) != nullptr) table.Fail(row, Words("{1} is there already", {row.fields[0]}));
            auto* profile = new Profile;
            profiles.Add(profile); // keeps it alive as long as the helper
            profile->name = name;
            profile->depth = table.Value<GComprimento>(row, row.fields[1], TComprimento::in);
            profile->area = table.Value<GArea>(row, row.fields[2], TArea::sqin);
            profile->inertia = table.Value<GInercia>(row, row.fields[3], TInercia::in4);
            profile->metal = steel;
            auto* section = dynamic_cast<Section*>(helper.Convert(profile));
            building().sections.Add(section);
            section->catalogue = building().catalogue;
        }
    }

    /// Each bay starts where the previous one ends: "A-B", "B-C".
    void ReadBays() {
        const Table table(folder, "frame9-bays.csv", {"bay", "width", "width_unit"});
        for (const auto& row : table.Rows()) {
            const std::string& bay = row.fields[0];
            const std::size_t dash = bay.find('-');
            if (dash == std::string::npos || dash == 0 || dash + 1 == bay.size()) {
                table.Fail(row, Words("\"{1}\" does not name two column lines, as \"A-B\" does", {bay}));
            }
            const ZoString from = ZoFromUtf8(bay.substr(0, dash).c_str());
            if (places.empty()) {
                building().lines.Add(from);
                places.emplace_back(0.0);
            } else if (building().lines.Last() != from) {
                table.Fail(row, Words("bay {1} does not begin where the one before ends", {bay}));
            }
            building().lines.Add(ZoFromUtf8(bay.substr(dash + 1).c_str()));
            GComprimento place = places.back();
            place += table.Length(row, 1);
            places.push_back(place);
        }
    }

    /// From the lowest upward. Basement marks begin with B; the ground is above them.
    void ReadStoreys() {
        const Table table(
            folder, "frame9-storeys.csv",
            {"storey", "height", "height_unit", "girder", "exterior_column", "interior_column"});
        const auto isBasement = [](const Table::Row& row) { return row.fields[0].rfind('B', 0) == 0; };
        GComprimento level(0.0);
        for (const auto& row : table.Rows()) {
            if (isBasement(row)) level -= table.Length(row, 1);
        }
        bool wasUnderground = level < 0.0;
        std::vector<Node*> below = AddNodes("base", level);
        for (Node* node : below) node->support = true;

        for (const auto& row : table.Rows()) {
            if (isBasement(row) && !wasUnderground)
                table.Fail(row, Words("a basement cannot lie above the ground"));
            auto* storey = new Storey;
            building().storeys.Add(storey);
            storey->building = model.building;
            storey->mark = ZoFromUtf8(row.fields[0].c_str());
            storey->underground = isBasement(row);
            storey->name = NameOf(*storey, wasUnderground);
            wasUnderground = storey->underground;
            storey->level = level;
            storey->height = table.Length(row, 1);
            level += storey->height;

            const std::vector<Node*> above = AddNodes(storey->mark, level);
            const bool isRoof = &row == &table.Rows().back();
            AddColumns(*storey, below, above, SectionOf(table, row, 4), SectionOf(table, row, 5));
            AddGirders(*storey, above, SectionOf(table, row, 3), isRoof ? roofLiveLoad : liveLoad);
            for (Node* node : below) storey->floor.Add(node);
            below = above;
        }
    }

    static ZoString NameOf(const Storey& storey, bool aboveBasement) {
        if (storey.underground) return "Subsolo";
        if (aboveBasement) return ZoFromUtf8("Térreo");
        return storey.mark + ZoFromUtf8("º andar");
    }

    std::vector<Node*> AddNodes(const ZoString& mark, const GComprimento& level) {
        std::vector<Node*> row;
        for (std::size_t i = 0; i < places.size(); ++i) {
            auto* node = new Node;
            building().nodes.Add(node);
            node->name = building().lines[i + 1] + "/" + mark;
            node->place = Point3D(places[i], level, 0);
            row.push_back(node);
        }
        return row;
    }

    void AddColumns(Storey& storey, const std::vector<Node*>& below, const std::vector<Node*>& above,
                    Section* exterior, Section* interior) {
        for (std::size_t i = 0; i < above.size(); ++i) {
            auto* column = new Column;
            storey.members.Add(column);
            column->exterior = i == 0 || i + 1 == above.size();
            Place(*column, building().lines[i + 1] + storey.mark, column->exterior ? exterior : interior,
                  below[i], above[i]);
        }
    }

    void AddGirders(Storey& storey, const std::vector<Node*>& above, Section* section,
                    const GForcaArea& live) {
        for (std::size_t i = 0; i + 1 < above.size(); ++i) {
            auto* girder = new Girder;
            storey.members.Add(girder);
            Place(*girder, building().lines[i + 1] + building().lines[i + 2] + storey.mark, section, above[i],
                  above[i + 1]);
            girder->loads.Add(new GForcaLinear(section->LineWeight()));
            girder->loads.Add(new GForcaLinear(deadLoad * tributaryWidth));
            girder->loads.Add(new GForcaLinear(live * tributaryWidth));
        }
    }

    static void Place(Member& member, const ZoString& name, Section* section, Node* start, Node* end) {
        member.name = name;
        member.section = section;
        member.start = start;
        member.end = end;
    }

    /// Adds an entry for each section in use; larger sections are darker.
    void FillLegend() {
        double largest = 0;
        for (const auto& section : building().sections) largest = std::max<double>(largest, section->area);
        for (const auto& storey : building().storeys) {
            for (const auto& member : storey->members) {
                Section* section = member->section.get();
                const ZoString use = dynamic_cast<Column*>(member.get()) != nullptr ? "pilares" : "vigas";
                if (LegendEntry* entry = building().legend.Find(section)) {
                    if (entry->name.hasText(use) < 0) entry->name += " e " + use;
                    continue;
                }
                auto* entry = new LegendEntry;
                building().legend.Add(section, entry);
                entry->name = use;
                entry->grey = static_cast<int>(std::lround(200 * (1 - section->area / largest)));
            }
        }
    }

    Section* FindSection(const ZoString& name) {
        for (const auto& section : building().sections) {
            if (section->name == name) return section.get();
        }
        return nullptr;
    }
    Section* SectionOf(const Table& table, const Table::Row& row, std::size_t field) {
        Section* section = FindSection(ZoFromUtf8(row.fields[field].c_str()));
        if (section == nullptr) {
            table.Fail(row, Words("section \"{1}\" is not in frame9-sections.csv", {row.fields[field]}));
        }
        return section;
    }

    std::string folder;
    Model model;
    std::vector<GComprimento> places; // positions of the column lines

    // More of the assumptions.
    const GPeso steelDensity{7850, TPeso::kgf_m3};
    const GForcaArea roofLiveLoad{1.0, TForcaArea::kN_m2};
    const GComprimento tributaryWidth{15, TComprimento::ft}; // half a bay
};

} // namespace

GForcaArea FloorLoad() { return GForcaArea(deadLoad + liveLoad); }

Model ReadTables(const std::string& folder) { return Builder(folder).Build(); }

} // namespace Frame
