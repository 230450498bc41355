#pragma once

#include <string>
#include <vector>

namespace kelproj {

/// The end of a message about an unknown word: which known one is probably meant, such as
/// "; did you mean "check"?". It is empty if none is near.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& known);

}  // namespace kelproj
