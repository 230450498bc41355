#include <kel/internal_error.h>

#include <csignal>
#include <string_view>

#include "testing/test.h"

namespace {

using namespace test_support;

Kel::BasicStringRef<char> Ref(std::string_view text) { return {text.size(), text.data()}; }

TEST(InternalErrorDeathTest, InternalErrorImpl_EmptyMessage_WritesConditionAndAborts) {
  EXPECT_EXIT(Kel::Detail::InternalErrorImpl(Ref("net != nullptr"), {}),
              testing::KilledBySignal(SIGABRT), HasSubstr("net != nullptr"));
}

TEST(InternalErrorDeathTest, InternalErrorImpl_TextsWithoutTerminator_WritesNothingBeyondThem) {
  const std::string_view text = "net != nullptr|net list|beyond";
  EXPECT_EXIT(Kel::Detail::InternalErrorImpl(Ref(text.substr(0, 14)), Ref(text.substr(15, 8))),
              testing::KilledBySignal(SIGABRT),
              AllOf(HasSubstr("net != nullptr"), HasSubstr("net list"), Not(HasSubstr("beyond")),
                    Not(HasSubstr("|"))));
}

TEST(InternalErrorDeathTest, InternalErrorImpl_PercentSigns_AreWrittenAsTheyAre) {
  EXPECT_EXIT(Kel::Detail::InternalErrorImpl(Ref("load < 90 %s"), Ref("%n%d")),
              testing::KilledBySignal(SIGABRT),
              AllOf(HasSubstr("load < 90 %s"), HasSubstr("%n%d")));
}

}  // namespace
