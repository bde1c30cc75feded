#pragma once

#include "Persistence/schema/ValuePasser.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace ZoPrimitives {

/// One field of the records of a class.
struct RecordStep {
    const TZoClassField* field; // the file's
    FieldLayout layout;
    bool isTold;  // by the field's kind, or by the application's field; otherwise the layout is the usual one
    bool isTaken; // by the application's field
    // Of the values that are not: whether any was kept, and whether any was taken by a hook instead.
    bool anyKept = false;
    bool anyHandled = false;
};

/// Finds out whether the records of a class tell the layouts of its fields: whether they can be read whole in
/// one way only, or in ways that differ neither in a reference nor in what is taken, or that refer to objects
/// that cannot be meant.
class LayoutProof {
public:
    explicit LayoutProof(const std::vector<RecordStep>& itsSteps);

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
    const TZoClassField* FirstOpen() const { return open.empty() ? nullptr : steps[open[0]].field; }

private:
    using Choice = std::vector<unsigned char>; // of each open field: which layout
    struct Alternative {
        Choice choice;
        bool differs = false; // in some record
        std::vector<std::pair<const TZoClassField*, int>> uids{};
    };
    /// The beginning of a record, read up to an open field.
    struct Path {
        std::size_t nextOpen;
        const unsigned char* at;
        Choice choice;
    };
    /// Where a reference stands, or a value that is taken, and of which step it is.
    struct Mark {
        std::size_t step;
        const unsigned char* at;
        bool isUid;
        bool operator==(const Mark&) const = default;
    };
    using Marks = std::vector<Mark>;

    const TZoClassField* FieldOf(const Choice& choice) const;
    void FindAlternatives(const unsigned char* begin, const unsigned char* end);
    void Branch(const Path& path, const unsigned char* end, std::vector<Path>& paths);
    /// False if the record cannot be read so.
    bool Read(const Choice& choice, const unsigned char* begin, const unsigned char* end, Marks& marks) const;
    bool Follow(Alternative& other, const unsigned char* begin, const unsigned char* end, const Marks& usual);

    const std::vector<RecordStep>& steps;
    std::vector<std::size_t> open;                 // steps
    std::vector<std::size_t> least;                // bytes that a step and the later ones take
    std::vector<std::vector<FieldLayout>> layouts; // of each open step
    std::vector<Alternative> alternatives;
    std::size_t uidsKept = 0;
    bool hasBegun = false;
    bool hasTooMany = false;
};

} // namespace ZoPrimitives
