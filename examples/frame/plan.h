#pragma once

#include "units.h"

#include "ZoPrimitives/Point2D.h"
#include "ZoPrimitives/TArc2D.h"
#include "ZoPrimitives/TRegion.h"

#include <ostream>
#include <string>
#include <vector>

namespace Frame {

/// What a line of a plan stands for.
enum class PlanKind { Slab, Girder, Beam, Opening };

/// A line of a plan as it was drawn; points are in cm.
struct PlanLine {
    PlanKind kind;
    std::string name; ///< UTF-8
    ZoPrimitives::TArc2D path;
};

/// A closed region of a plan.
struct Panel {
    std::string name;
    ZoPrimitives::TRegion region;
    bool isOpening = false;
    ZoPrimitives::GArea area{0.0};
    ZoPrimitives::GForcaConcentrada load{0.0};
};

/// A girder or beam, and what of the floor's load it gets: from the deck, and from beams that end on it.
struct Bearer {
    const PlanLine* line = nullptr;
    ZoPrimitives::Point2D start; ///< where it ends among the panels; without overshoots
    ZoPrimitives::Point2D end;
    ZoPrimitives::GForcaConcentrada load{0.0};

    ZoPrimitives::GComprimento Length() const { return ZoPrimitives::GComprimento(start.Distance(end)); }
};

/// A slip of the drawing.
struct Slip {
    enum Kind { Gap, Overshoot, Doubled, Loose, Idle };
    Kind kind;
    ZoPrimitives::Point2D place;
    std::string names; ///< of the lines
    ZoPrimitives::GComprimento size{0.0};

    /// A sentence in the current language.
    std::string Text(const Units& units) const;
};

/// A plan of a floor: its panels, what its girders carry, and the slips of its drawing. The deck spans in the
/// direction of x, between girders and beams; beams hand their load on to what they end on.
struct Plan {
    std::string name; ///< of the file
    std::vector<PlanLine> lines;
    std::vector<Panel> panels;   ///< from the lower left, upward
    std::vector<Bearer> girders; ///< as in the drawing
    std::vector<Bearer> beams;
    std::vector<Slip> slips;
    ZoPrimitives::GForcaArea floorLoad{0.0};
    ZoPrimitives::GForcaConcentrada load{0.0};
    ZoPrimitives::GForcaConcentrada carried{0.0}; ///< by girders; less if something rests on nothing
};

/// Reads a drawing, a table of lines, and finds its panels and loads. Throws `Failure`.
Plan ReadPlan(const std::string& path);

void Print(const Plan& plan, const Units& units, std::ostream& out);

/// Draws the plan as SVG: panels and girders coloured by their loads, the slips marked.
std::string DrawPlan(const Plan& plan, const Units& units);

} // namespace Frame
