#include "diagram_boxes.h"

#include "fields.h"
#include "font.h"
#include "text.h"
#include "words.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <set>
#include <unordered_map>

namespace ZoTool {

using namespace ZoPrimitives;

namespace {

constexpr double LEAST_WIDTH = 130;
constexpr double MOST_WIDTH = 310;
constexpr std::size_t MOST_LINES = 30;

Sign SignOf(TZoClassFieldType kind) {
    switch (kind) {
    case ftChildPointer:
    case ftChildPointerList:
    case ftChildValue:
    case ftChildPointerMap:
        return Sign::Owns;
    case ftPointer:
    case ftPointerList:
    case ftPointerEx:
    case ftPointerListEx:
        return Sign::Refers;
    case ftInt:
    case ftFloat:
    case ftDouble:
    case ftString:
    case ftBlob:
    case ftBool:
    case ftListInt:
    case ftListFloat:
    case ftListDouble:
    case ftListString:
    case ftUnsigned:
        break;
    }
    return Sign::None;
}

/// What a field holds, in as few words as a box has room for.
std::string ShortType(const TZoClassField& field) {
    const std::string target = field.GetFieldClass() == nullptr ? "?" : ClassName(*field.GetFieldClass());
    switch (field.GetFieldType()) {
    case ftChildPointer:
    case ftChildValue:
    case ftPointer:
    case ftPointerEx:
        return target;
    case ftChildPointerList:
    case ftPointerList:
    case ftPointerListEx:
        return target + "[ ]";
    case ftChildPointerMap:
        return Words("map of {}", target);
    case ftListInt:
        return "int[ ]";
    case ftListFloat:
        return "float[ ]";
    case ftListDouble:
        return "double[ ]";
    case ftListString:
        return "string[ ]";
    case ftInt:
    case ftFloat:
    case ftDouble:
    case ftString:
    case ftBlob:
    case ftBool:
    case ftUnsigned:
        break;
    }
    return KindName(field.GetFieldType());
}

Boxes BareBoxesOf(const TZoMetaData& schema) {
    const std::vector<TZoClass*> classes = ClassesOf(schema);
    std::unordered_map<const TZoClass*, int> indices;
    for (std::size_t i = 0; i < classes.size(); ++i) indices[classes[i]] = static_cast<int>(i);
    const auto indexOf = [&](const TZoClass* type) {
        const auto found = indices.find(type);
        return found == indices.end() ? -1 : found->second;
    };
    Boxes boxes(classes.size());
    for (std::size_t i = 0; i < classes.size(); ++i) {
        boxes[i].name = ClassName(*classes[i]);
        boxes[i].abstract = classes[i]->GetAbstract();
        for (const TZoClass* const parent : ParentsOf(*classes[i])) {
            const int index = indexOf(parent);
            std::vector<int>& parents = boxes[i].parents;
            if (index >= 0 && std::count(parents.begin(), parents.end(), index) == 0)
                parents.push_back(index);
        }
        for (const TZoClassField* const field : OwnFields(*classes[i])) {
            if (boxes[i].lines.size() == MOST_LINES) {
                ++boxes[i].linesLeftOut;
                continue;
            }
            boxes[i].lines.push_back({FieldName(*field), ShortType(*field), SignOf(field->GetFieldType()),
                                      indexOf(field->GetFieldClass())});
        }
    }
    return boxes;
}

/// A class stands one level below the lowest of its parents.
void FindLevels(Boxes& boxes) {
    const std::vector<std::vector<int>> children = ChildrenOf(boxes);
    std::vector<std::size_t> waiting(boxes.size());
    std::vector<std::size_t> ready;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        waiting[i] = boxes[i].parents.size();
        if (waiting[i] == 0) ready.push_back(i);
    }
    while (!ready.empty()) {
        const std::size_t parent = ready.back();
        ready.pop_back();
        for (const int child : children[parent]) {
            const auto index = static_cast<std::size_t>(child);
            boxes[index].level = std::max(boxes[index].level, boxes[parent].level + 1);
            if (--waiting[index] == 0) ready.push_back(index);
        }
    }
}

/// Values are the families of classes that have no pointers, that others have as members, and that nothing
/// refers to.
void FindValues(Boxes& boxes) {
    std::vector<int> family(boxes.size());
    std::iota(family.begin(), family.end(), 0);
    const auto head = [&](int box) {
        while (family[static_cast<std::size_t>(box)] != box) {
            int& its = family[static_cast<std::size_t>(box)];
            its = family[static_cast<std::size_t>(its)];
            box = its;
        }
        return box;
    };
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        for (const int parent : boxes[i].parents) {
            family[static_cast<std::size_t>(head(static_cast<int>(i)))] = head(parent);
        }
    }
    std::set<int> owned, unfit;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        for (const BoxLine& line : boxes[i].lines) {
            if (line.sign != Sign::None) unfit.insert(head(static_cast<int>(i)));
            if (line.target < 0) continue;
            (line.sign == Sign::Owns ? owned : unfit).insert(head(line.target));
        }
    }
    // One class that is owned in one place is a part of the model like others.
    std::map<int, int> users;
    for (const Box& box : boxes) {
        for (const BoxLine& line : box.lines) {
            if (line.target >= 0) ++users[head(line.target)];
        }
    }
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        const int its = head(static_cast<int>(i));
        boxes[i].isValue = owned.count(its) != 0 && unfit.count(its) == 0 && users[its] > 2;
    }
}

} // namespace

double Box::Height() const {
    const std::size_t shown = lines.size() + (linesLeftOut > 0 ? 1 : 0);
    return BOX_TITLE + (shown == 0 ? 0 : static_cast<double>(shown) * BOX_LINE + BOX_BELOW);
}

Boxes BoxesOf(const TZoMetaData& schema) {
    Boxes boxes = BareBoxesOf(schema);
    FindLevels(boxes);
    FindValues(boxes);
    return boxes;
}

std::vector<std::vector<int>> ChildrenOf(const Boxes& boxes) {
    std::vector<std::vector<int>> children(boxes.size());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        for (const int parent : boxes[i].parents) {
            children[static_cast<std::size_t>(parent)].push_back(static_cast<int>(i));
        }
    }
    return children;
}

double BoxWidth(const Boxes& boxes) {
    std::vector<double> widths;
    for (const Box& box : boxes) {
        widths.push_back(TextWidth(box.name, Weight::Bold) * BOX_NAME + 50);
        for (const BoxLine& line : box.lines)
            widths.push_back((TextWidth(line.name) + TextWidth(line.type)) * BOX_TEXT + 50);
    }
    if (widths.empty()) return LEAST_WIDTH;
    const auto most =
        widths.begin() + static_cast<std::ptrdiff_t>(static_cast<double>(widths.size() - 1) * 0.97);
    std::nth_element(widths.begin(), most, widths.end());
    const double all = *std::max_element(widths.begin(), widths.end());
    return std::clamp(std::ceil(std::max(*most, std::min(all, 230.0))), LEAST_WIDTH, MOST_WIDTH);
}

} // namespace ZoTool
