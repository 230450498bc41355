#pragma once

namespace projectdb {

/// Whether this is a control character of ASCII.
constexpr bool IsControl(char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }

}  // namespace projectdb
