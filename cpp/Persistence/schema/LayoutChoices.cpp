#include "Persistence/schema/LayoutChoices.h"

#include "ZoPrimitives/ZoMetaData.h"

namespace ZoPrimitives {

namespace {
constexpr std::size_t MOST_PATHS = 20'000; // tried in one record
} // namespace

LayoutChoices::LayoutChoices(const std::vector<RecordStep>& itsSteps)
    : steps(itsSteps), least(steps.size() + 1) {
    for (std::size_t i = steps.size(); i-- > 0;)
        least[i] = least[i + 1] + FieldKindOf(steps[i].field->GetFieldType()).smallest;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (steps[i].isTold) continue;
        open.push_back(i);
        layouts.push_back(AllLayouts(steps[i].field->GetFieldType()));
    }
}

bool LayoutChoices::MayRefer(const TZoClassField& field, const TZoClass& target) {
    // The class of a map is that of its values.
    const TZoClass* wanted = field.GetFieldType() == ftChildPointerMap ? nullptr : field.GetFieldClass();
    return wanted == nullptr || TZoMetaData::IsGenericBase(wanted->GetName()) || target.IsInherited(wanted);
}

unsigned LayoutChoices::CountAssumed(const Choice& choice) const {
    unsigned sum = 0;
    for (std::size_t i = 0; i < choice.size(); ++i) {
        const auto [first, second] = LayoutOf(choice, i).integers;
        sum += first == FieldLayout::SINGLE ? 1 : static_cast<unsigned>(first + second);
    }
    return sum;
}

bool LayoutChoices::FindAll(const unsigned char* begin, const unsigned char* end,
                            std::vector<Choice>& all) const {
    std::vector<Path> paths;
    std::size_t tried = 0;
    for (paths.push_back({0, begin, {}}); !paths.empty();) {
        const Path path = paths.back();
        paths.pop_back();
        Branch(path, end, paths, all);
        if (++tried > MOST_PATHS) return false;
    }
    return true;
}

/// Goes on to the next open field, and from there with each of its layouts.
void LayoutChoices::Branch(const Path& path, const unsigned char* end, std::vector<Path>& paths,
                           std::vector<Choice>& all) const {
    ValuePasser value(path.at, end);
    const bool isLast = path.nextOpen == open.size();
    std::size_t step = path.nextOpen == 0 ? 0 : open[path.nextOpen - 1] + 1;
    for (; step < (isLast ? steps.size() : open[path.nextOpen]); ++step) {
        if (!value.Pass(steps[step].field->GetFieldType(), steps[step].layout)) return;
    }
    if (isLast) {
        if (value.Left() == 0) all.push_back(path.choice);
        return;
    }
    for (std::size_t i = layouts[path.nextOpen].size(); i-- > 0;) { // the last path is gone on with first
        ValuePasser next(value);
        if (!next.Pass(steps[step].field->GetFieldType(), layouts[path.nextOpen][i])) continue;
        if (next.Left() < least[step + 1]) continue;
        paths.push_back({path.nextOpen + 1, next.At(), path.choice});
        paths.back().choice.push_back(static_cast<unsigned char>(i));
    }
}

bool LayoutChoices::Read(const Choice& choice, const unsigned char* begin, const unsigned char* end,
                         Marks& marks) const {
    ValuePasser value(begin, end);
    std::size_t nextOpen = 0;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        FieldLayout layout = steps[i].layout;
        if (!steps[i].isTold) {
            layout = LayoutOf(choice, nextOpen);
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
