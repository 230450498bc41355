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

TEST(KelException, What_AnyMessageAndFlags_IsTheMessage) {
  for (const std::string message : {"no route to pin A7 – größer", ""}) {
    for (const bool first : {false, true}) {
      for (const bool second : {false, true}) {
        SCOPED_TRACE(testing::Message() << first << " " << second);
        EXPECT_EQ(kel_exception(message, first, second).what(), message);
      }
    }
  }
}

TEST(KelException, Copy_MessageChangedAndOriginalDestroyed_KeepsTheText) {
  std::string message = "placement failed";
  std::optional<kel_exception> original(std::in_place, message, false, false);
  message = "something else !";
  const kel_exception copy = *original;
  kel_exception assigned("first", false, false);
  assigned = *original;
  original.reset();
  EXPECT_STREQ(copy.what(), "placement failed");
  EXPECT_STREQ(assigned.what(), "placement failed");
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
