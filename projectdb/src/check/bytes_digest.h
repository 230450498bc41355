#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace projectdb::files {

/// A 64-bit digest of bytes that come in pieces of any size. It tells changes apart that nobody
/// made to deceive it. Each step has to wait for the one before, so it takes eight bytes at once.
class BytesDigest {
 public:
  void Add(const unsigned char* bytes, std::size_t count);

  /// The number of all bytes so far.
  std::uint64_t size() const { return size_; }

  /// The digest of all bytes so far; the same for the same bytes, whatever their pieces.
  std::uint64_t Value() const;

 private:
  using Block = std::array<std::uint64_t, 32>;

  static std::uint64_t WithBlock(std::uint64_t state, const Block& block);

  std::uint64_t state_ = 1;  ///< Of all whole blocks.
  Block block_{};            ///< The bytes since then, and zeros.
  std::uint64_t size_ = 0;
};

}  // namespace projectdb::files
