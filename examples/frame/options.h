#pragma once

#include "picture.h"
#include "units.h"

#include <string>
#include <vector>

namespace Frame {

/// The command line.
struct Options {
    std::vector<std::string> words; ///< the command and its arguments, without options
    std::vector<std::string> given; ///< the options as given
    Units units;
    Property property;
};

/// Separates the options, wherever they are, from the other arguments. Throws `Failure`.
Options ReadOptions(const std::vector<std::string>& arguments);

} // namespace Frame
