#include "check/bytes_digest.h"

#include <algorithm>
#include <initializer_list>
#include <set>
#include <string>
#include <string_view>

#include "testing/test.h"

namespace {

using projectdb::files::BytesDigest;

void Add(BytesDigest& digest, std::string_view bytes) {
  digest.Add(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
}

std::uint64_t DigestOf(std::string_view bytes) {
  BytesDigest digest;
  Add(digest, bytes);
  return digest.Value();
}

// Longer than what a digest keeps back.
std::string SomeBytes() {
  std::string bytes;
  while (bytes.size() < 1'000) {
    bytes += "<file name=\"core_" + std::to_string(bytes.size()) + "\"/>\n";
  }
  return bytes;
}

std::string WithBitsChanged(std::string bytes, std::initializer_list<std::size_t> bits) {
  for (const std::size_t bit : bits) {
    bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ 1 << bit % 8);
  }
  return bytes;
}

TEST(BytesDigest, Add_PiecesOfAnySize_GiveTheDigestOfTheWhole) {
  const std::string bytes = SomeBytes();
  for (std::size_t piece = 1; piece <= bytes.size(); ++piece) {
    BytesDigest digest;
    for (std::size_t begin = 0; begin < bytes.size(); begin += piece) {
      Add(digest, std::string_view(bytes).substr(begin, piece));
    }
    ASSERT_EQ(digest.Value(), DigestOf(bytes)) << piece;
    ASSERT_EQ(digest.size(), bytes.size()) << piece;
  }
}

TEST(BytesDigest, Value_AskedInBetween_ChangesNothing) {
  const std::string bytes = SomeBytes();
  BytesDigest digest;
  for (const char byte : bytes) {
    Add(digest, std::string_view(&byte, 1));
    digest.Value();
  }
  EXPECT_EQ(digest.Value(), DigestOf(bytes));
}

TEST(BytesDigest, Value_OneBitChangedAnywhere_IsAnother) {
  const std::string bytes = SomeBytes();
  std::set<std::uint64_t> digests = {DigestOf(bytes)};
  for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
    digests.insert(DigestOf(WithBitsChanged(bytes, {bit})));
  }
  EXPECT_EQ(digests.size(), 1 + 8 * bytes.size());
}

// The changes of neighbours must not cancel each other out, in whatever bits they are.
TEST(BytesDigest, Value_ThreeBitsOfTwoWordsChanged_IsAnother) {
  const std::string bytes = SomeBytes().substr(0, 16);
  const std::uint64_t digest = DigestOf(bytes);
  for (std::size_t first = 0; first < 8 * bytes.size(); ++first) {
    for (std::size_t second = 0; second < first; ++second) {
      for (std::size_t third = 0; third < second; ++third) {
        ASSERT_NE(DigestOf(WithBitsChanged(bytes, {first, second, third})), digest)
            << first << ' ' << second << ' ' << third;
      }
    }
  }
}

TEST(BytesDigest, Value_TwoBitsChanged_IsAnother) {
  const std::string bytes = SomeBytes().substr(0, 64);
  const std::uint64_t digest = DigestOf(bytes);
  for (std::size_t first = 0; first < 8 * bytes.size(); ++first) {
    for (std::size_t second = 0; second < first; ++second) {
      ASSERT_NE(DigestOf(WithBitsChanged(bytes, {first, second})), digest)
          << first << ' ' << second;
    }
  }
}

TEST(BytesDigest, Value_ZerosAtTheEnd_Count) {
  std::set<std::uint64_t> digests;
  for (std::size_t zeros = 0; zeros < 600; ++zeros) {
    digests.insert(DigestOf(std::string(zeros, '\0')));
    digests.insert(DigestOf("a" + std::string(zeros, '\0')));
  }
  EXPECT_EQ(digests.size(), 1'200U);
}

}  // namespace
