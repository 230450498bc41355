#include <filesystem>
#include <string>

#include "testing/filtered_calls.h"
#include "testing/sanitizers.h"
#include "testing/saving.h"
#include "testing/test.h"
#include "tests/posix/save/lock_probe.h"
#include "tests/save/updated_file.h"

namespace {

using namespace projectdb;
using namespace test_support;

// The XML library is there for each call alone, as in a program that does nothing else with it.
TEST_F(Update, TooFewFilesMayBeOpen_IsAnErrorAndLeavesTheFormerFile) {
  if (kSanitized) GTEST_SKIP() << "the sanitizer needs files of its own";
  const FileState former(path());
  const auto change = [](ProjectContents& project) { project.project_name = "next"; };
  const auto judge = [&](const std::string& error) {
    EXPECT_THAT(error, HasSubstr(TextOfErrno(EMFILE)));
    EXPECT_EQ(FileState(path()), former);
    EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
  };
  EXPECT_GE(FailuresWithTooFewFiles([&] { return UpdateError(change); }, judge), 3);
  EXPECT_EQ(Contents().project_name, "next");
}

// The one that is read is not the one that was locked.
TEST_F(Update, FileThatIsReplacedBeforeItIsRead_IsWrittenUnderItsOwnLock) {
  Write("next.xml", ProjectXml("", "name=\"other\""));
  bool is_locked = false;
  bool is_replaced = false;
  const FilteredCalls calls([&](const projectdb::files::SystemCall& call) {
    const std::string name = call.name;
    if (name == "open" && is_locked && !is_replaced) {
      is_replaced = true;
      std::filesystem::rename(directory / "next.xml", path());
    }
    if (name == "flock") is_locked = true;
    if (name == "renameat") {
      EXPECT_TRUE(IsLockedByAnybody(path()));
    }
    return 0;
  });
  EXPECT_TRUE(UpdateProjectFile(
      path(), [](ProjectContents& project) { project.device_info.family = "Tessel"; }));
  EXPECT_TRUE(is_replaced);
  EXPECT_EQ(Contents().device_info.family, "Tessel");
}

}  // namespace
