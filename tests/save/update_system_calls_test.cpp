#include <cerrno>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_file.h>

#include "testing/child_process.h"
#include "testing/filtered_calls.h"
#include "testing/project_loading.h"
#include "testing/saving.h"

namespace {

using namespace std::chrono_literals;
using namespace projectdb;
using namespace test_support;
using projectdb::files::SystemCall;
using testing::ElementsAre;

/// Updates of a file whose project is named "former", to "next".
class UpdateAmongSystemCalls : public testing::Test, public Loading {
 protected:
  UpdateAmongSystemCalls() { WriteFormer(); }

  void WriteFormer() const { Write("p.xml", ProjectXml("", "name=\"former\"")); }

  /// @return the text of the error; "" if the update ended well
  std::string UpdateError() const {
    UpdateOptions options;
    options.longest_wait = 100ms;
    try {
      UpdateProjectFile(
          path(), [](ProjectContents& p) { p.project_name = "next"; }, options);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return {};
  }

  /// The name of the project in the file, which must be a whole one.
  std::string FoundName() const {
    const ProjectFile file = ReadProjectFile(path(), "");
    return file.contents && file.problems.empty() ? file.contents->project_name : "damaged";
  }

  bool IsFree() const {
    try {
      const ProjectFileLock lock(path(), 0ms);
      return true;
    } catch (const std::runtime_error&) {
      return false;
    }
  }
};

TEST_F(UpdateAmongSystemCalls, AnyCallThatFails_LeavesTheFormerFileUnlessTheUpdateSucceeds) {
  std::vector<std::string> calls;
  {
    const FilteredCalls filter([&](const SystemCall& call) {
      calls.emplace_back(call.name);
      return 0;
    });
    ASSERT_EQ(UpdateError(), "");
  }
  EXPECT_THAT(calls, testing::IsSupersetOf({"open", "flock", "stat", "read", "openat", "fsync",
                                            "fcntl", "renameat"}));
  int failures = 0;
  for (std::size_t failing = 0; failing < calls.size(); ++failing) {
    SCOPED_TRACE(calls[failing] + ", call number " + std::to_string(failing));
    WriteFormer();
    std::string error;
    {
      std::size_t count = 0;
      const FilteredCalls filter([&](const SystemCall&) { return count++ == failing ? EIO : 0; });
      error = UpdateError();
    }
    const bool was_renamed = failing > 0 && calls[failing - 1] == "renameat";
    EXPECT_EQ(FoundName(), error.empty() || was_renamed ? "next" : "former");
    EXPECT_TRUE(IsFree());
    EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
    if (!error.empty()) ++failures;
  }
  EXPECT_GE(failures, 10);
}

TEST_F(UpdateAmongSystemCalls, ProcessKilledAtAnyCall_LeavesAWholeFileThatTheNextUpdateFindsFree) {
  const auto update_and_kill = [&](int number) {
    return InChildProcess([&] {
      int count = 0;
      const FilteredCalls filter([&](const SystemCall&) {
        if (++count == number) std::raise(SIGKILL);
        return 0;
      });
      return UpdateError() + "ended";
    });
  };
  int kills = 0;
  for (int number = 1; update_and_kill(number) != "ended"; ++number, ++kills) {
    SCOPED_TRACE(number);
    EXPECT_THAT(FoundName(), testing::AnyOf("former", "next"));
    EXPECT_TRUE(IsFree());
    WriteFormer();
    EXPECT_EQ(UpdateError(), "");
    EXPECT_EQ(FoundName(), "next");
    EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
    WriteFormer();
  }
  EXPECT_GE(kills, 15);
}

}  // namespace
