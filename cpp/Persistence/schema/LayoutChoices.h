#pragma once

#include "Persistence/schema/ValuePasser.h"

#include <cstddef>
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

/// The ways to read the records of a class: each layout of each field whose layout only records tell.
class LayoutChoices {
public:
    using Choice = std::vector<unsigned char>; // of each open field: which layout, 0 for the usual one
    /// Where a reference stands, or a value that is taken, and of which step it is.
    struct Mark {
        std::size_t step;
        const unsigned char* at;
        bool isUid;
        bool operator==(const Mark&) const = default;
    };
    using Marks = std::vector<Mark>;

    explicit LayoutChoices(const std::vector<RecordStep>& itsSteps);

    const std::vector<RecordStep>& Steps() const { return steps; }
    std::size_t CountOpen() const { return open.size(); }
    /// The field of an open step, from 0.
    const TZoClassField* OpenField(std::size_t index) const { return steps[open[index]].field; }
    /// The first field whose layout only records tell; null: there is none.
    const TZoClassField* FirstOpen() const { return open.empty() ? nullptr : OpenField(0); }
    Choice Usual() const { return Choice(open.size()); }
    FieldLayout LayoutOf(const Choice& choice, std::size_t index) const {
        return layouts[index][choice[index]];
    }
    /// Whether the field may refer to an object of that class.
    static bool MayRefer(const TZoClassField& field, const TZoClass& target);
    /// How many integers of an application's the choice assumes; a map of single objects counts as one.
    unsigned CountAssumed(const Choice& choice) const;

    /// Finds all choices that read the record whole, in ascending order. False if that takes too long; some
    /// are missing then.
    bool FindAll(const unsigned char* begin, const unsigned char* end, std::vector<Choice>& all) const;
    /// False if the record cannot be read so.
    bool Read(const Choice& choice, const unsigned char* begin, const unsigned char* end, Marks& marks) const;

    static constexpr std::size_t MOST_CHOICES = 256;    // that are followed
    static constexpr std::size_t MOST_UIDS = 1'000'000; // that are kept of all choices

private:
    /// The beginning of a record, read up to an open field.
    struct Path {
        std::size_t nextOpen;
        const unsigned char* at;
        Choice choice;
    };
    void Branch(const Path& path, const unsigned char* end, std::vector<Path>& paths,
                std::vector<Choice>& all) const;

    const std::vector<RecordStep>& steps;
    std::vector<std::size_t> open;                 // steps
    std::vector<std::size_t> least;                // bytes that a step and the later ones take
    std::vector<std::vector<FieldLayout>> layouts; // of each open step
};

} // namespace ZoPrimitives
