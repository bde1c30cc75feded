#include "Persistence/schema/LayoutProof.h"

#include <algorithm>

namespace ZoPrimitives {

namespace {
constexpr std::size_t MOST_PATHS = 20'000; // tried in one record
constexpr std::size_t MOST_ALTERNATIVES = 256;
constexpr std::size_t MOST_UIDS = 1'000'000; // of all alternatives
} // namespace

LayoutProof::LayoutProof(const std::vector<RecordStep>& itsSteps) : steps(itsSteps), least(steps.size() + 1) {
    for (std::size_t i = steps.size(); i-- > 0;)
        least[i] = least[i + 1] + FieldKindOf(steps[i].field->GetFieldType()).smallest;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (steps[i].isTold) continue;
        open.push_back(i);
        layouts.push_back(AllLayouts(steps[i].field->GetFieldType()));
    }
}

bool LayoutProof::Take(const unsigned char* begin, const unsigned char* end) {
    Marks usual;
    if (!Read(Choice(open.size()), begin, end, usual)) return false;
    if (open.empty() || hasTooMany) return true;
    if (!hasBegun) FindAlternatives(begin, end);
    hasBegun = true;
    const auto fails = [&](Alternative& other) { return !Follow(other, begin, end, usual); };
    alternatives.erase(std::remove_if(alternatives.begin(), alternatives.end(), fails), alternatives.end());
    hasTooMany = hasTooMany || alternatives.size() > MOST_ALTERNATIVES || uidsKept > MOST_UIDS;
    if (hasTooMany) alternatives.clear();
    return true;
}

/// Whether the alternative reads the record, too.
bool LayoutProof::Follow(Alternative& other, const unsigned char* begin, const unsigned char* end,
                         const Marks& usual) {
    Marks marks;
    if (!Read(other.choice, begin, end, marks)) return false;
    other.differs = other.differs || marks != usual;
    for (const Mark& mark : marks) {
        if (!mark.isUid) continue;
        other.uids.emplace_back(steps[mark.step].field, ValuePasser::IntAt(mark.at));
        ++uidsKept;
    }
    return true;
}

const TZoClassField* LayoutProof::FieldOf(const Choice& choice) const {
    const auto chosen = std::find_if(choice.begin(), choice.end(), [](int layout) { return layout != 0; });
    return steps[open[static_cast<std::size_t>(chosen - choice.begin())]].field;
}

void LayoutProof::FindAlternatives(const unsigned char* begin, const unsigned char* end) {
    std::vector<Path> paths;
    std::size_t tried = 0;
    for (paths.push_back({0, begin, {}}); !paths.empty() && !hasTooMany;) {
        const Path path = paths.back();
        paths.pop_back();
        Branch(path, end, paths);
        hasTooMany = ++tried > MOST_PATHS;
    }
}

/// Goes on to the next open field, and from there with each of its layouts.
void LayoutProof::Branch(const Path& path, const unsigned char* end, std::vector<Path>& paths) {
    ValuePasser value(path.at, end);
    const bool isLast = path.nextOpen == open.size();
    std::size_t step = path.nextOpen == 0 ? 0 : open[path.nextOpen - 1] + 1;
    for (; step < (isLast ? steps.size() : open[path.nextOpen]); ++step) {
        if (!value.Pass(steps[step].field->GetFieldType(), steps[step].layout)) return;
    }
    if (isLast) {
        const bool isUsual =
            std::none_of(path.choice.begin(), path.choice.end(), [](int layout) { return layout != 0; });
        if (value.Left() == 0 && !isUsual) alternatives.push_back({path.choice});
        return;
    }
    for (std::size_t i = 0; i < layouts[path.nextOpen].size(); ++i) {
        ValuePasser next(value);
        if (!next.Pass(steps[step].field->GetFieldType(), layouts[path.nextOpen][i])) continue;
        if (next.Left() < least[step + 1]) continue;
        paths.push_back({path.nextOpen + 1, next.At(), path.choice});
        paths.back().choice.push_back(static_cast<unsigned char>(i));
    }
}

bool LayoutProof::Read(const Choice& choice, const unsigned char* begin, const unsigned char* end,
                       Marks& marks) const {
    ValuePasser value(begin, end);
    std::size_t nextOpen = 0;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        FieldLayout layout = steps[i].layout;
        if (!steps[i].isTold) {
            layout = layouts[nextOpen][choice[nextOpen]];
            ++nextOpen;
        }
        if (steps[i].isTaken) marks.push_back({i, value.At(), false});
        const auto note = [&marks, i](int, const unsigned char* first, int count) {
            for (const unsigned char* uid = first; uid != first + 4 * (count < 0 ? 1 : count); uid += 4) {
                if (ValuePasser::IntAt(uid) != 0) marks.push_back({i, uid, true});
            }
        };
        if (!value.Pass(steps[i].field->GetFieldType(), layout, note)) return false;
    }
    return value.Left() == 0;
}

} // namespace ZoPrimitives
