#pragma once

#include <string>

#include "random_input.h"

namespace differential {

/// Makes documents of both kinds, does much to them by the public writers and by the XML library's
/// own operations in turns, and tells what came of each step and how the documents are at the end.
std::string DoMuchToTrees(RandomInput& input);

}  // namespace differential
