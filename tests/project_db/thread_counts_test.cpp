#include <cstdint>
#include <limits>
#include <string_view>

#include <kel/exception.h>
#include <projectdb/project_db.h>

#include "testing/test.h"

namespace {

using namespace projectdb;
using namespace test_support;

constexpr std::uint64_t kDefault = 4;

TEST(ParseMaxThreads, Text_IsCount_GivesTheCountOfAtMost65535) {
  const std::pair<std::string_view, std::uint64_t> cases[] = {
      {"1", 1},
      {"8", 8},
      {"12", 12},
      {"0012", 12},
      {"65534", 65534},
      {"65535", 65535},
      {"65536", 65535},
      {"70000", 65535},
      {"9223372036854775808", 65535},
      {"18446744073709551615", 65535},
      {"0000000000000000000000000000007", 7}};
  for (const auto& [text, count] : cases) {
    EXPECT_EQ(KelProjectDatabase::ParseMaxThreads(text, kDefault), count) << text;
  }
}

TEST(ParseMaxThreads, Text_IsUnusable_GivesTheDefault) {
  for (const std::string_view text : {"",
                                      "0",
                                      "000",
                                      "18446744073709551616",
                                      "99999999999999999999999999999999999",
                                      " 8",
                                      "8 ",
                                      "+8",
                                      "-8",
                                      "8.0",
                                      "0x10",
                                      "8e1",
                                      "a",
                                      "8a",
                                      "a8",
                                      "8\n",
                                      "\t8",
                                      "1,0",
                                      "1 0",
                                      "\xD9\xA8",
                                      "-1",
                                      "--8",
                                      "1'0",
                                      "auto",
                                      "0x"}) {
    EXPECT_EQ(KelProjectDatabase::ParseMaxThreads(text, kDefault), kDefault) << text;
  }
}

TEST(ParseMaxThreads, Text_IsPartOfLongerTextOrNull_IsReadToItsEndOnly) {
  EXPECT_EQ(KelProjectDatabase::ParseMaxThreads(std::string_view("12345").substr(1, 2), kDefault),
            23u);
  EXPECT_EQ(KelProjectDatabase::ParseMaxThreads(std::string_view("8\0", 2), kDefault), kDefault);
  EXPECT_EQ(KelProjectDatabase::ParseMaxThreads(std::string_view(), kDefault), kDefault);
}

TEST(ParseMaxThreads, Default_IsLarge_IsNotCapped) {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
  EXPECT_EQ(KelProjectDatabase::ParseMaxThreads("", kLargest), kLargest);
}

constexpr char kZeroDefaultText[] =
    "[Internal] Assertion: 'default_num > 0' failed\n"
    "    in file: projectdb/src/project_db.cpp on line: 1670\n"
    "    in function: ParseMaxThreads\n"
    "    with message: ";

TEST(ParseMaxThreads, Default_IsZero_ThrowsWhateverTheTextHolds) {
  for (const std::string_view text : {"", "8", "0", "many", "18446744073709551616"}) {
    EXPECT_EQ(ErrorOf<kel_exception>([text] { KelProjectDatabase::ParseMaxThreads(text, 0); }),
              kZeroDefaultText)
        << text;
  }
}

using GetMaxThreads = std::uint64_t (KelProjectDatabase::*)(std::uint64_t) const;

struct ThreadCount {
  const char* name;
  GetMaxThreads get;
  ProcType process;
  GetMaxThreads get_of_other_process;
};

class MaxThreadsTest : public testing::TestWithParam<ThreadCount> {
 protected:
  void SetUp() override { ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker")); }

  void Store(const char* map, const char* name, const std::string& value) {
    ASSERT_TRUE(database_.AddFlowProcessParameter(GetParam().process, map, name, value, e_string));
  }
  std::uint64_t Get() const { return (database_.*GetParam().get)(kDefault); }

  KelProjectDatabase database_;
};

TEST_P(MaxThreadsTest, Getter_Parameter_GivesItsCountOfItsOwnProcessAndMapOrTheDefault) {
  Store("dynparam", "max_threads", "8");
  Store("param", "MAX_THREADS", "9");
  EXPECT_EQ(Get(), kDefault);
  Store("param", "max_threads", "8");
  EXPECT_EQ(Get(), 8u);
  EXPECT_EQ((database_.*GetParam().get_of_other_process)(kDefault), kDefault);
  Store("param", "max_threads", "eight");
  EXPECT_EQ(Get(), kDefault);
}

TEST_P(MaxThreadsTest, Getter_DefaultIsZero_ThrowsAndLeavesTheObjectUsable) {
  Store("param", "max_threads", "8");
  EXPECT_EQ(ErrorOf<kel_exception>([this] { (database_.*GetParam().get)(0); }), kZeroDefaultText);
  EXPECT_EQ(Get(), 8u);  // Would wait for ever if the lock were still held.
}

INSTANTIATE_TEST_SUITE_P(
    Processes, MaxThreadsTest,
    testing::Values(ThreadCount{"Synthesis", &KelProjectDatabase::GetSynthesisMaxThreads,
                                e_synthesis, &KelProjectDatabase::GetPnRMaxThreads},
                    ThreadCount{"PlaceAndRoute", &KelProjectDatabase::GetPnRMaxThreads,
                                e_place_and_route, &KelProjectDatabase::GetSynthesisMaxThreads}),
    ByName());

}  // namespace
