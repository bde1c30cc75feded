#pragma once

#include "failure.h"

#include <string>

/// The sentence that an operation of the program ends with; "" for none.
template <class Action>
std::string FailureOf(Action action) {
    try {
        action();
    } catch (const Frame::Failure& failure) {
        return failure.what();
    }
    return "";
}
