#include "Persistence/schema/LayoutProof.h"

#include <algorithm>

namespace ZoPrimitives {

bool LayoutProof::Take(const unsigned char* begin, const unsigned char* end) {
    Marks usual;
    if (!choices.Read(choices.Usual(), begin, end, usual)) return false;
    if (FirstOpen() == nullptr || hasTooMany) return true;
    if (!hasBegun) FindAlternatives(begin, end);
    hasBegun = true;
    const auto fails = [&](Alternative& other) { return !Follow(other, begin, end, usual); };
    alternatives.erase(std::remove_if(alternatives.begin(), alternatives.end(), fails), alternatives.end());
    hasTooMany = hasTooMany || alternatives.size() > LayoutChoices::MOST_CHOICES ||
                 uidsKept > LayoutChoices::MOST_UIDS;
    if (hasTooMany) alternatives.clear();
    return true;
}

/// Whether the alternative reads the record, too.
bool LayoutProof::Follow(Alternative& other, const unsigned char* begin, const unsigned char* end,
                         const Marks& usual) {
    Marks marks;
    if (!choices.Read(other.choice, begin, end, marks)) return false;
    other.differs = other.differs || marks != usual;
    for (const LayoutChoices::Mark& mark : marks) {
        if (!mark.isUid) continue;
        other.uids.emplace_back(choices.Steps()[mark.step].field, ValuePasser::IntAt(mark.at));
        ++uidsKept;
    }
    return true;
}

const TZoClassField* LayoutProof::FieldOf(const Choice& choice) const {
    const auto chosen = std::find_if(choice.begin(), choice.end(), [](int layout) { return layout != 0; });
    return choices.OpenField(static_cast<std::size_t>(chosen - choice.begin()));
}

void LayoutProof::FindAlternatives(const unsigned char* begin, const unsigned char* end) {
    std::vector<Choice> all;
    hasTooMany = !choices.FindAll(begin, end, all);
    for (Choice& choice : all) {
        if (choice != choices.Usual()) alternatives.push_back({std::move(choice)});
    }
}

} // namespace ZoPrimitives
