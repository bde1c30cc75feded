#pragma once

#include "Geometry/ClosedDrawing.h"
#include "Geometry/DenseNumbers.h"
#include "Geometry/DrawnThings.h"
#include "ZoPrimitives/TRegion.h"

#include <optional>
#include <vector>

namespace ZoPrimitives {

/// The graph of a drawing, as it was found, and the numbers of its nodes, edges and faces. It follows the
/// drawing's changes near where they are.
class FoundGraph {
public:
    FoundGraph(const DrawnThings& things, unsigned precision);

    /// A thing has gone from the drawing, or has come.
    void WillChange(unsigned thing, const std::vector<Stretch>& removed, const std::vector<Stretch>& added);
    /// Changes it, if something will. False if so much will that it is better found anew, as when this
    /// throws.
    bool Change();

    const Arrangement& Drawn() const { return *arrangement; }
    const std::vector<GapClosing::Move>& Moves() const;
    bool IsSettled() const { return drawing.IsSettled(); }

    unsigned FaceNumber(unsigned face) const { return face == 0 ? 0 : faces.NumberOf(face - 1); }
    unsigned FaceBeside(unsigned half) const { return FaceNumber(arrangement->faceOf[half]); }
    /// Half-edges of its borders, the outer one first.
    std::vector<unsigned> Borders(unsigned faceNumber) const;
    /// Of a closed region.
    double Area(unsigned faceNumber) const;
    TRegion Region(unsigned faceNumber) const;
    /// Without repetition.
    std::vector<unsigned> ThingsOf(unsigned edgeNumber) const;

    DenseNumbers nodes;
    DenseNumbers edges;
    DenseNumbers faces; // but for the outer one: of face i, item i - 1

private:
    const Arrangement::Face& FaceAt(unsigned number) const {
        return arrangement->faces[number == 0 ? 0 : faces.IndexOf(number) + 1];
    }
    void NumberAll();

    ClosedDrawing drawing;
    const Arrangement* arrangement = nullptr;
    mutable std::optional<std::vector<GapClosing::Move>> moves; // when they were asked for
    std::vector<ClosedDrawing::Labelled> going;                 // when it changes next
    std::vector<ClosedDrawing::Labelled> coming;
    bool isChanging = false; // and was not left by an exception
};

} // namespace ZoPrimitives
