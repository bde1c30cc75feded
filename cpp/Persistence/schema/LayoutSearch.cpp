#include "Persistence/schema/LayoutSearch.h"

#include <functional>

namespace ZoPrimitives {

/// Searches the record for all choices that read it; each becomes a candidate.
void LayoutSearch::Begin(const unsigned char* begin, const unsigned char* end) {
    candidates.clear();
    uidsKept = 0;
    keepsUids = true;
    fits = 0;
    misfits = 0;
    if (beginnings == MOST_BEGINNINGS) return;
    ++beginnings;
    std::vector<Choice> all;
    if (!choices.FindAll(begin, end, all) || all.size() > LayoutChoices::MOST_CHOICES) return;
    for (Choice& choice : all) candidates.push_back({std::move(choice)});
}

void LayoutSearch::Take(const unsigned char* begin, const unsigned char* end) {
    if (HasEnded()) return;
    ++taken;
    if (candidates.empty()) Begin(begin, end);
    for (Candidate& candidate : candidates) {
        candidate.uidsBefore = candidate.uids.size();
        marks.clear();
        candidate.reads = choices.Read(candidate.choice, begin, end, marks);
        if (candidate.reads && keepsUids) Keep(candidate);
    }
    const auto reads = [](const Candidate& candidate) { return candidate.reads; };
    if (std::any_of(candidates.begin(), candidates.end(), reads)) {
        ++fits;
        candidates.erase(std::remove_if(candidates.begin(), candidates.end(), std::not_fn(reads)),
                         candidates.end());
    } else if (!candidates.empty() && ++misfits > fits) { // one that is odd decides nothing
        Begin(begin, end);
    }
}

/// All candidates keep those of the same records, or the comparison would not be fair.
void LayoutSearch::Keep(Candidate& keeper) {
    uidsKept += marks.size();
    keepsUids = uidsKept <= LayoutChoices::MOST_UIDS;
    if (!keepsUids) {
        for (Candidate& candidate : candidates) candidate.uids.resize(candidate.uidsBefore);
        return;
    }
    for (const LayoutChoices::Mark& mark : marks)
        keeper.uids.emplace_back(choices.Steps()[mark.step].field, ValuePasser::IntAt(mark.at));
}

LayoutSearch::Found LayoutSearch::Choose(const std::vector<Rank>& ranks) const {
    Found found;
    std::vector<bool> isOpen(choices.CountOpen(), ranks.empty() && taken != 0);
    if (!ranks.empty()) {
        const auto best = std::min_element(ranks.begin(), ranks.end());
        const Choice& chosen = candidates[static_cast<std::size_t>(best - ranks.begin())].choice;
        for (std::size_t i = 0; i < chosen.size(); ++i) found.layouts.push_back(choices.LayoutOf(chosen, i));
        for (std::size_t other = 0; other < ranks.size(); ++other) {
            if (ranks[other] != *best) continue;
            for (std::size_t i = 0; i < chosen.size(); ++i)
                isOpen[i] = isOpen[i] || candidates[other].choice[i] != chosen[i];
        }
    }
    for (std::size_t i = 0; i < isOpen.size(); ++i) {
        if (isOpen[i]) found.undecided.push_back(choices.OpenField(i));
    }
    return found;
}

} // namespace ZoPrimitives
