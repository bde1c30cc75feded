#pragma once

#include "Persistence/schema/FieldKinds.h"
#include "ZoPrimitives/ZoClassField.h"

#include <cstddef>
#include <cstring>
#include <vector>

namespace ZoPrimitives {

/// Where a field's member lies in the objects of one exact C++ type.
class FieldOffset {
public:
    static constexpr std::ptrdiff_t NONE = -1;

    /// Measures on any object of that type; returns `NONE` for a field that is reached through its accessors.
    static std::ptrdiff_t Measure(const TZoClassField* field, ZoStreamableBase* object) {
        if (field == nullptr || field->member == nullptr) return NONE;
        const auto* member = static_cast<const char*>(field->member(object));
        if (member == nullptr) return NONE;
        const std::ptrdiff_t offset = member - reinterpret_cast<const char*>(object);
        return offset < 0 ? NONE : offset;
    }
    static void* Apply(ZoStreamableBase* object, std::ptrdiff_t offset) {
        return reinterpret_cast<char*>(object) + offset;
    }
};

/// The members, from one step of a plan on, whose bytes lie side by side in object and record alike: they are
/// copied as one.
struct FlatRun {
    unsigned char size = 0; // in bytes; 0: none
    unsigned char steps = 0;

    /// Finds the runs of a plan's steps, whose members were measured.
    template <class Step>
    static void Find(std::vector<Step>& steps) {
        constexpr unsigned MOST = 248;
        FlatRun next;
        std::ptrdiff_t nextOffset = 0;
        for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
            FlatRun run;
            if (step->offset != FieldOffset::NONE)
                run.size = FlatSizeOf(static_cast<TZoClassFieldType>(step->kind));
            if (run.size != 0) run.steps = 1;
            if (next.size != 0 && run.size != 0 && step->offset + run.size == nextOffset &&
                run.size + next.size <= MOST) {
                run.size = static_cast<unsigned char>(run.size + next.size);
                run.steps = static_cast<unsigned char>(1 + next.steps);
            }
            step->run = next = run;
            nextOffset = step->offset;
        }
    }
    /// Copies the bytes of a run, whose number is a multiple of 4.
    static void Copy(void* to, const void* from, std::size_t size) {
        auto* target = static_cast<unsigned char*>(to);
        const auto* source = static_cast<const unsigned char*>(from);
        for (; size >= 8; size -= 8, target += 8, source += 8) std::memcpy(target, source, 8);
        if (size != 0) std::memcpy(target, source, 4);
    }
};

} // namespace ZoPrimitives
