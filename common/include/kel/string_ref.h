#pragma once

#include <cstdint>

namespace Kel {

/// A non-owning reference to text, passed by value. The text need not end in a zero.
template <typename Char>
struct BasicStringRef {
  static constexpr Char kEmptyText[1] = {};

  std::uint64_t size = 0;         ///< Length in characters.
  const Char* data = kEmptyText;  ///< First character; never null unless the caller made it so.
};

}  // namespace Kel
