#pragma once

// Comes before every source of the copy that `./dev mutate` builds. One change is chosen for a process by
// ZO_MUTANT, a number from 1.

namespace zo_mutants {

/// Whether the change is the chosen one. Notes that it was asked for.
__attribute__((visibility("default"))) bool ChosenHere(int number) noexcept;

/// The compiler sees the source as it was written wherever it needs a constant.
constexpr bool Chosen(int number) noexcept {
    return !__builtin_is_constant_evaluated() && ChosenHere(number);
}

/// The operands of an operator, evaluated once, from left to right.
template <class Left, class Right>
struct Operands {
    Left left;
    Right right;

    template <class Changed, class Written>
    constexpr auto Apply(bool chosen, Changed changed, Written written) const {
        return chosen ? changed(left, right) : written(left, right);
    }
};
template <class Left, class Right>
Operands(Left, Right) -> Operands<Left, Right>;

} // namespace zo_mutants
