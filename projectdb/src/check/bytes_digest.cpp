#include "check/bytes_digest.h"

#include <algorithm>
#include <cstring>

namespace projectdb::files {
namespace {

// Each step loses nothing: the factor is odd. What a word changes reaches all bits of the state, as
// a product spreads it upwards and the shift brings it down again. The second product keeps the
// change of a highest bit, which the first one does not spread, from being undone by the next word.
std::uint64_t WithWord(std::uint64_t state, std::uint64_t word) {
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
  const std::uint64_t product = (state ^ word) * kFactor;
  return (product ^ (product >> 32U)) * kFactor;
}

}  // namespace

std::uint64_t BytesDigest::WithBlock(std::uint64_t state, const Block& block) {
  for (const std::uint64_t word : block) state = WithWord(state, word);
  return state;
}

void BytesDigest::Add(const unsigned char* bytes, std::size_t count) {
  while (count > 0) {
    const std::size_t used = size_ % sizeof(block_);
    const std::size_t taken = std::min(count, sizeof(block_) - used);
    std::memcpy(reinterpret_cast<unsigned char*>(block_.data()) + used, bytes, taken);
    size_ += taken;
    if (size_ % sizeof(block_) == 0) {
      state_ = WithBlock(state_, block_);
      block_.fill(0);
    }
    bytes += taken;
    count -= taken;
  }
}

std::uint64_t BytesDigest::Value() const { return WithWord(WithBlock(state_, block_), size_); }

}  // namespace projectdb::files
