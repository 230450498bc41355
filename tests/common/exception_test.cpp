#include <kel/exception.h>

#include <exception>
#include <optional>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

static_assert(std::is_base_of_v<std::exception, kel_exception>);
static_assert(std::is_nothrow_copy_constructible_v<kel_exception>, "it is copied while handled");
static_assert(std::is_nothrow_copy_assignable_v<kel_exception>);

TEST(KelException, What_AnyFlags_IsTheMessage) {
  for (const bool first : {false, true}) {
    for (const bool second : {false, true}) {
      SCOPED_TRACE(testing::Message() << first << " " << second);
      EXPECT_STREQ(kel_exception("no route to pin A7 – größer", first, second).what(),
                   "no route to pin A7 – größer");
    }
  }
}

TEST(KelException, What_EmptyMessage_IsEmpty) {
  EXPECT_STREQ(kel_exception("", false, false).what(), "");
}

TEST(KelException, What_MessageChangedAfterwards_IsTheFormerText) {
  std::string message = "placement failed";
  const kel_exception exception(message, false, false);
  message = "something else !";
  EXPECT_STREQ(exception.what(), "placement failed");
}

TEST(KelException, Copy_OriginalDestroyed_KeepsTheMessage) {
  std::optional<kel_exception> original(std::in_place, "placement failed", false, false);
  const kel_exception copy = *original;
  original.reset();
  EXPECT_STREQ(copy.what(), "placement failed");
}

TEST(KelException, Assign_OtherMessage_TakesItOver) {
  kel_exception exception("first", false, false);
  exception = kel_exception("second", false, false);
  EXPECT_STREQ(exception.what(), "second");
}

TEST(KelException, Throw_CaughtAsStandardException_GivesTheMessage) {
  std::string text;
  try {
    throw kel_exception("placement failed", false, false);
  } catch (const std::exception& exception) {
    text = exception.what();
  }
  EXPECT_EQ(text, "placement failed");
}

}  // namespace
