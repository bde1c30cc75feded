#pragma once

#include "Persistence/schema/LayoutChoices.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace ZoPrimitives {

/// Searches for the layouts of a class's fields where no application knows them: those that read the records
/// whole, then those that refer to objects that can be meant, then the plainest.
class LayoutSearch {
public:
    explicit LayoutSearch(const std::vector<RecordStep>& steps) : choices(steps) {}

    /// Takes a further record into account, unless the search has ended.
    void Take(const unsigned char* begin, const unsigned char* end);
    /// Whether further records would hardly tell more.
    bool HasEnded() const {
        if (choices.FirstOpen() == nullptr) return true;
        return candidates.empty() ? beginnings == MOST_BEGINNINGS : candidates.size() == 1 && fits >= ENOUGH;
    }
    /// Whether only the objects that are meant can tell more.
    bool NeedsObjects() const { return candidates.size() > 1; }

    struct Found {
        std::vector<FieldLayout> layouts;            // of each open field; empty: the usual ones
        std::vector<const TZoClassField*> undecided; // those that other layouts would suit as well
    };
    /// `mayMean(field, uid)`: whether the field may refer to what has that uid.
    template <class MayMean>
    Found Best(const MayMean& mayMean) const {
        std::vector<Rank> ranks;
        for (const Candidate& candidate : candidates) {
            const auto isWrong = [&](const auto& use) { return !mayMean(*use.first, use.second); };
            const auto wrong = std::count_if(candidate.uids.begin(), candidate.uids.end(), isWrong);
            ranks.emplace_back(wrong, choices.CountAssumed(candidate.choice));
        }
        return Choose(ranks);
    }

private:
    using Choice = LayoutChoices::Choice;
    using Rank = std::pair<std::ptrdiff_t, unsigned>; // references that are wrong, integers assumed
    struct Candidate {
        Choice choice;
        std::vector<std::pair<const TZoClassField*, int>> uids{};
        std::size_t uidsBefore = 0; // the latest record
        bool reads = true;          // the latest record
    };
    static constexpr unsigned ENOUGH = 100;
    static constexpr unsigned MOST_BEGINNINGS = 16;

    void Begin(const unsigned char* begin, const unsigned char* end);
    void Keep(Candidate& keeper);
    Found Choose(const std::vector<Rank>& ranks) const;

    LayoutChoices choices;
    std::vector<Candidate> candidates;
    LayoutChoices::Marks marks; // of one candidate, in one record
    std::size_t uidsKept = 0;
    bool keepsUids = true;
    unsigned beginnings = 0;
    unsigned taken = 0;
    unsigned fits = 0;    // records that the candidates read
    unsigned misfits = 0; // since then, those that none of them reads
};

} // namespace ZoPrimitives
