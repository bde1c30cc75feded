#pragma once

#include "ZoPrimitives/UserText.h"

#include <cstddef>
#include <span>

namespace ZoPrimitives {

/// One operation of a conversion. Multiplying by 0.01 and dividing by 100 differ in the last bit.
struct UnitStep {
    enum Kind : unsigned char { Keep, Multiply, Divide, Add, Subtract };

    Kind kind = Keep;
    double k = 0;

    constexpr double operator()(double v) const {
        switch (kind) {
        case Keep:
            return v;
        case Multiply:
            return v * k;
        case Divide:
            return v / k;
        case Add:
            return v + k;
        case Subtract:
            return v - k;
        }
        return v;
    }
    constexpr bool IsSound() const {
        if (kind == Keep) return k == 0;
        return k > 0 && k < 1e300;
    }
};

struct UnitConversion {
    UnitStep first;
    UnitStep second;

    constexpr double operator()(double v) const { return second(first(v)); }
    constexpr UnitConversion Then(UnitConversion next) const { return {first, next.first}; }
    constexpr bool IsIdentity() const {
        return first.kind == UnitStep::Keep && second.kind == UnitStep::Keep;
    }
};

constexpr UnitConversion AsIs{};
constexpr UnitConversion Times(double k) { return {{UnitStep::Multiply, k}, {}}; }
constexpr UnitConversion Over(double k) { return {{UnitStep::Divide, k}, {}}; }
constexpr UnitConversion Plus(double k) { return {{UnitStep::Add, k}, {}}; }
constexpr UnitConversion Minus(double k) { return {{UnitStep::Subtract, k}, {}}; }

/// A unit of a quantity: its number, its accessor's name, its Windows-1252 name ("" for none) and that in
/// each language, the conversions to and from the storage unit, and other spellings: "a|b".
struct UnitRow {
    template <class Unit>
    constexpr UnitRow(Unit enumerator, const char* accessorName, const char* shownName, UnitConversion store,
                      UnitConversion read, const char* otherNames = "")
        : unit(static_cast<int>(enumerator)), accessor(accessorName), name(shownName),
          names(RowOfText(shownName)), others(otherNames), stored(store), reading(read) {}

    int unit;
    const char* accessor;
    const char* name;
    std::size_t names; // its row in the texts; the number of rows: the name is the same in all
    const char* others;
    UnitConversion stored;
    UnitConversion reading;

    constexpr const char* NameIn(Language language) const {
        if (names == std::size(LIBRARY_TEXTS)) return name;
        return LIBRARY_TEXTS[names].languages[static_cast<int>(language)];
    }
};

/// The units of one class, indexed by their numbers.
using UnitTable = std::span<const UnitRow>;

inline const UnitRow* FindUnit(UnitTable table, int unit) {
    return unit >= 0 && static_cast<std::size_t>(unit) < table.size() ? &table[static_cast<std::size_t>(unit)]
                                                                      : nullptr;
}

// Compile-time checks of the tables.

constexpr bool UnitsAreTranslated(UnitTable table) {
    for (const UnitRow& row : table) {
        if (row.names == std::size(LIBRARY_TEXTS) && *row.name != '\0') return false;
    }
    return true;
}

constexpr bool UnitsAreInOrder(UnitTable table) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i].unit != static_cast<int>(i)) return false;
    }
    return true;
}

/// Whether some unit is the storage unit; a unit that is stored unchanged must also be read unchanged.
constexpr bool HasStorageUnit(UnitTable table) {
    bool found = false;
    for (const UnitRow& row : table) {
        if (row.stored.IsIdentity() != row.reading.IsIdentity()) return false;
        found = found || row.stored.IsIdentity();
    }
    return found;
}

/// Whether reading inverts storing within 1e-6; for the unit `loose` (-1 for none), within 2e-4.
constexpr bool UnitsConvertBack(UnitTable table, int loose = -1) {
    for (const UnitRow& row : table) {
        for (const UnitStep& step :
             {row.stored.first, row.stored.second, row.reading.first, row.reading.second}) {
            if (!step.IsSound()) return false;
        }
        const double off = row.reading(row.stored(1.0)) - 1.0;
        const double allowed = row.unit == loose ? 2e-4 : 1e-6;
        if (off > allowed || off < -allowed) return false;
    }
    return true;
}

} // namespace ZoPrimitives
