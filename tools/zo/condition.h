#pragma once

#include "model.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace ZoTool {

/// What an object must fulfil, such as "length>=7.5": a field, an operator (= != < <= > >=, and ~ for a part
/// of a text) and a value. A list, or a map, fulfils it if an item does; a pointer is its uid, or null.
class Condition {
public:
    /// Throws `Trouble` if it is no condition.
    explicit Condition(const std::string& given);

    /// Throws `Trouble` if none of these classes has the field, or the value does not fit one that has it.
    void Prepare(Model& model, const std::vector<ZoPrimitives::TZoClass*>& classes);
    bool Holds(const ZoPrimitives::TZoRecord& record) const;

private:
    enum class Operator { Equal, Unequal, Less, AtMost, Greater, AtLeast, Contains };

    bool Holds(const ZoPrimitives::TZoValue& value) const;
    template <class T>
    bool Compare(const T& a, const T& b) const;
    void CheckFits(const ZoPrimitives::TZoClassField& field) const;

    std::string field;
    Operator op;
    std::string text;                                                 // UTF-8
    std::optional<double> number;                                     // if it is one
    std::unordered_map<const ZoPrimitives::TZoClass*, int> positions; // of the value in the class's records
};

} // namespace ZoTool
