#include <string>

#include "testing/child_process.h"
#include "testing/sanitizers.h"
#include "testing/saving.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "tests/save/updated_file.h"

namespace {

using namespace projectdb;
using namespace test_support;

// The XML library is there for each call alone, as in a program that does nothing else with it.
TEST_F(Update, TooFewFilesMayBeOpen_IsAnErrorAndLeavesTheFormerFile) {
  if (kSanitized) GTEST_SKIP() << "the sanitizer needs files of its own";
  const FileState former(path());
  const auto error_under = [&](rlim_t files) {
    return InChildProcess([&] {
      TerminateXmlPlatformForAll();
      const auto change = [](ProjectContents& project) { project.project_name = "next"; };
      return WithOpenFileLimit(files, [&] { return UpdateError(change); });
    });
  };
  int failures = 0;
  for (rlim_t files = 0; files < 1000; ++files) {
    const std::string error = error_under(files);
    if (error.empty()) break;
    ++failures;
    ASSERT_THAT(error, HasSubstr("Too many open files"));
    ASSERT_EQ(FileState(path()), former);
    ASSERT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
  }
  EXPECT_GE(failures, 3);
  EXPECT_EQ(Contents().project_name, "next");
}

}  // namespace
