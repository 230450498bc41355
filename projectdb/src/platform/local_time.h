#pragma once

#include <string>

namespace projectdb {

/// The current local time, such as "Mon Nov 16 2026 03:09:25", in the words of the global locale.
/// A locale whose words are not UTF-8 text that XML can carry is passed over for the classic one.
std::string GetLocalTimeString();

}  // namespace projectdb
