#pragma once

#include "Persistence/schema/LayoutChoices.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace ZoPrimitives {

/// Finds out whether the records of a class tell the layouts of its fields: whether they can be read whole in
/// one way only, or in ways that differ neither in a reference nor in what is taken, or that refer to objects
/// that cannot be meant.
class LayoutProof {
public:
    explicit LayoutProof(const std::vector<RecordStep>& steps) : choices(steps) {}

    /// Takes a further record into account. False if it cannot be read as the steps say.
    bool Take(const unsigned char* begin, const unsigned char* end);
    /// A field whose layout the records have not told; null: there is none. `mayMean(field, uid)`: whether
    /// the field may refer to what has that uid.
    template <class MayMean>
    const TZoClassField* Untold(const MayMean& mayMean) const {
        if (hasTooMany) return FirstOpen();
        for (const Alternative& other : alternatives) {
            const auto isMeant = [&](const auto& use) { return mayMean(*use.first, use.second); };
            if (other.differs && std::all_of(other.uids.begin(), other.uids.end(), isMeant))
                return FieldOf(other.choice);
        }
        return nullptr;
    }
    /// The first field whose layout only records tell; null: there is none.
    const TZoClassField* FirstOpen() const { return choices.FirstOpen(); }

private:
    using Choice = LayoutChoices::Choice;
    using Marks = LayoutChoices::Marks;
    struct Alternative {
        Choice choice;
        bool differs = false; // in some record
        std::vector<std::pair<const TZoClassField*, int>> uids{};
    };

    const TZoClassField* FieldOf(const Choice& choice) const;
    void FindAlternatives(const unsigned char* begin, const unsigned char* end);
    bool Follow(Alternative& other, const unsigned char* begin, const unsigned char* end, const Marks& usual);

    LayoutChoices choices;
    std::vector<Alternative> alternatives;
    std::size_t uidsKept = 0;
    bool hasBegun = false;
    bool hasTooMany = false;
};

} // namespace ZoPrimitives
