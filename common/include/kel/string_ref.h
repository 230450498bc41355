#pragma once

#include <cstdint>

namespace Kel {

namespace Detail {

/// Stands outside the reference: GCC 12 may leave a static member of it undefined.
template <typename Char>
inline constexpr Char kEmptyText[1] = {};

}  // namespace Detail

/// A non-owning reference to text, passed by value. The text need not end in a zero.
template <typename Char>
struct BasicStringRef {
  std::uint64_t size = 0;  ///< Length in characters.
  /// First character; never null unless the caller made it so.
  const Char* data = Detail::kEmptyText<Char>;
};

}  // namespace Kel
