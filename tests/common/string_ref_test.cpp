#include <kel/string_ref.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "testing/test.h"

namespace {

using StringRef = Kel::BasicStringRef<char>;

static_assert(std::is_standard_layout_v<StringRef>,
              "its layout is shared with the rest of the suite");
static_assert(std::is_trivially_copyable_v<StringRef>, "it is passed by value everywhere");
static_assert(std::is_same_v<decltype(StringRef::size), std::uint64_t>);
static_assert(std::is_same_v<decltype(StringRef::data), const char*>);

TEST(StringRef, DefaultConstruct_IsTheEmptyText) {
  EXPECT_EQ(StringRef().size, 0u);
  EXPECT_STREQ(StringRef().data, "");
}

TEST(StringRef, Layout_Members_AreSizeThenData) {
  EXPECT_LT(offsetof(StringRef, size), offsetof(StringRef, data));
}

TEST(StringRef, Construct_PartOfText_RefersToThatPartOfIt) {
  const std::string text = "clock_tree";
  const StringRef part{5, text.data()};
  EXPECT_EQ(std::string(part.data, part.size), "clock");
  EXPECT_EQ(part.data, text.data());
}

}  // namespace
