#pragma once

#include "picture.h"
#include "units.h"

#include <string>
#include <vector>

namespace Frame {

/// What a command is called with.
struct Options {
    std::vector<std::string> words; ///< the command's own, without options
    std::vector<std::string> given; ///< the options, as they were given
    Units units;
    Property property;
};

/// Takes the options out of the arguments, wherever they stand. Throws `Failure`.
Options ReadOptions(const std::vector<std::string>& arguments);

} // namespace Frame
