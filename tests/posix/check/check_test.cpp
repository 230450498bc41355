#include <projectdb/check.h>

#include <filesystem>

#include "testing/denied.h"
#include "testing/project_loading.h"
#include "testing/test.h"

namespace {

using namespace test_support;

class CheckOnPosix : public testing::Test, public Loading {};

TEST_F(CheckOnPosix, CheckProjectFile_UnreadableFile_IsAnErrorInNoLine) {
  const std::string path = Write("p.xml", ProjectXml(""));
  std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
  const Denied denied(path);
  if (!denied.effective() || !std::filesystem::exists(path)) GTEST_SKIP() << "cannot be denied";
  const std::vector<projectdb::FileProblem> problems = projectdb::CheckProjectFile(path, "");
  ASSERT_THAT(problems, SizeIs(1));
  EXPECT_EQ(problems[0].line, 0U);
  EXPECT_EQ(problems[0].column, 0U);
  EXPECT_EQ(problems[0].severity, projectdb::ProblemSeverity::kError);
  EXPECT_THAT(problems[0].message, StartsWith("the file cannot be read: "));
}

}  // namespace
