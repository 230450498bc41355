#include <kel/exception.h>

#include <exception>
#include <optional>
#include <type_traits>

#include "testing/test.h"

namespace {

static_assert(std::is_base_of_v<std::exception, kel_exception>);
static_assert(std::is_nothrow_copy_constructible_v<kel_exception>, "it is copied while handled");
static_assert(std::is_nothrow_copy_assignable_v<kel_exception>);

TEST(KelException, What_AnyMessageAndFlags_IsTheMessage) {
  for (const std::string message : {"no route to pin A7 – größer", ""}) {
    for (const bool first : {false, true}) {
      for (const bool second : {false, true}) {
        EXPECT_EQ(kel_exception(message, first, second).what(), message) << first << second;
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

}  // namespace
