#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <projectdb/durable_export.h>

#include "testing/child_process.h"
#include "testing/filtered_calls.h"
#include "testing/saving.h"
#include "testing/test.h"
#include "tests/save/locked_file.h"

namespace {

using namespace test_support;
using projectdb::ExportProjectDataDurably;
using projectdb::ProjectFileLock;

bool IsLockedForOtherProcesses(const std::string& path) {
  return InChildProcess([&] { return std::string(IsLocked(path) ? "locked" : "free"); }) ==
         "locked";
}

TEST_F(FileLock, FreeFile_IsLockedForThreadsAndProcessesAsLongAsTheLockLives) {
  {
    const ProjectFileLock lock(path_);
    EXPECT_TRUE(IsLocked(path_));
    EXPECT_TRUE(IsLockedForOtherProcesses(path_));
  }
  EXPECT_EQ(LockError(path_), "");
  EXPECT_FALSE(IsLockedForOtherProcesses(path_));
}

TEST_F(FileLock, OtherPathsToTheFile_AreLockedToo) {
  std::filesystem::create_symlink("p.xml", directory_ / "link.xml");
  std::filesystem::create_hard_link(path_, directory_ / "other.xml");
  const ProjectFileLock lock(directory_ / "link.xml");
  EXPECT_TRUE(IsLocked(path_));
  EXPECT_TRUE(IsLocked(directory_ / "other.xml"));
  EXPECT_TRUE(IsLocked(directory_ / "./p.xml"));
}

TEST_F(FileLock, FileThatIsReplacedByASave_StaysLocked) {
  {
    const ProjectFileLock lock(path_);
    for (int save = 0; save < 2; ++save) {
      ExportProjectDataDurably(database_, path_);
      EXPECT_TRUE(IsLockedForOtherProcesses(path_));
      EXPECT_TRUE(IsLocked(path_));
    }
  }
  EXPECT_FALSE(IsLockedForOtherProcesses(path_));
}

TEST_F(FileLock, FileThatIsReplacedBySymbolicLink_StaysLocked) {
  std::filesystem::create_symlink("p.xml", directory_ / "link.xml");
  const ProjectFileLock lock(path_);
  ExportProjectDataDurably(database_, directory_ / "link.xml");
  EXPECT_TRUE(IsLockedForOtherProcesses(path_));
}

TEST_F(FileLock, SaveThatFails_LeavesTheFileLocked) {
  const ProjectFileLock lock(path_);
  database_.SetProjectName("\x01");
  EXPECT_THROW(ExportProjectDataDurably(database_, path_), std::runtime_error);
  EXPECT_TRUE(IsLockedForOtherProcesses(path_));
}

TEST_F(FileLock, HolderThatIsKilled_LeavesTheFileFreeAndNothingElse) {
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t holder = ::fork();
  if (holder == 0) {
    const ProjectFileLock lock(path_);
    const bool told = ::write(ready[1], "x", 1) == 1;
    for (;;) ::pause();
    ::_exit(told ? 0 : 1);
  }
  char told = 0;
  ASSERT_EQ(::read(ready[0], &told, 1), 1);
  EXPECT_TRUE(IsLocked(path_));
  ::kill(holder, SIGKILL);
  ::waitpid(holder, nullptr, 0);
  ::close(ready[0]);
  ::close(ready[1]);
  EXPECT_EQ(LockError(path_), "");
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

// A network file system would refuse it otherwise.
TEST_F(FileLock, FileThatMayBeWritten_IsOpenForWritingWhenItIsLocked) {
  int modes = 0;
  const FilteredCalls calls([&](const projectdb::files::SystemCall& call) {
    if (call.name == std::string("flock")) {
      ++modes;
      EXPECT_EQ(::fcntl(call.descriptor, F_GETFL) & O_ACCMODE, O_RDWR);
    }
    return 0;
  });
  const ProjectFileLock lock(path_);
  EXPECT_EQ(modes, 1);
}

TEST_F(FileLock, FileThatAnotherThreadReplacesMeanwhile_IsLockedAsItIsThen) {
  std::future<void> replacement;
  std::atomic<int> looks{0};
  const FilteredCalls calls([&](const projectdb::files::SystemCall& call) {
    // The last look at the file before this process counts it as locked.
    if (call.name == std::string("fstat") && ++looks == 2) {
      replacement =
          std::async(std::launch::async, [&] { ExportProjectDataDurably(database_, path_); });
      replacement.wait_for(std::chrono::milliseconds(200));
    }
    return 0;
  });
  const ProjectFileLock lock(path_);
  replacement.get();
  EXPECT_TRUE(IsLocked(path_));
}

TEST_F(FileLock, FileThatIsReplacedDuringAWait_DoesNotLengthenIt) {
  constexpr std::chrono::milliseconds kLongestWait{50};
  WriteFile(directory_ / "next.xml", "<project/>");
  int attempts = 0;
  const FilteredCalls calls([&](const projectdb::files::SystemCall& call) {
    if (call.name != std::string("flock")) return 0;
    ++attempts;
    if (attempts == 1) {
      std::this_thread::sleep_for(2 * kLongestWait);
      std::filesystem::rename(directory_ / "next.xml", path_);
    }
    return attempts == 2 ? EWOULDBLOCK : 0;
  });
  EXPECT_THROW(ProjectFileLock(path_, kLongestWait), std::runtime_error);
  EXPECT_EQ(attempts, 2);
}

TEST_F(FileLock, FileThatMayNotBeWritten_CanBeLocked) {
  SetMode(path_, 0444);
  const ProjectFileLock lock(path_);
  EXPECT_TRUE(IsLocked(path_));
}

TEST_F(FileLock, SystemWithoutLocks_IsAnErrorWithAndWithoutAnEndOfTheWait) {
  const FilteredCalls calls([](const projectdb::files::SystemCall& call) {
    return call.name == std::string("flock") ? ENOLCK : 0;
  });
  const std::string error = LockErrorText(path_, "No locks available");
  EXPECT_EQ(LockError(path_), error);
  EXPECT_EQ(ErrorOf([&] { const ProjectFileLock lock(path_); }), error);
}

TEST_F(FileLock, WhatIsNoRegularFile_IsAnErrorThatNamesIt) {
  const auto error = [&](const std::string& name) { return LockError(directory_ / name); };
  const auto text = [&](const std::string& name, const std::string& reason) {
    return LockErrorText(directory_ / name, reason);
  };
  ASSERT_EQ(::mkfifo((directory_ / "pipe.xml").c_str(), 0600), 0);
  std::filesystem::create_directory(directory_ / "directory.xml");
  std::filesystem::create_symlink("nowhere.xml", directory_ / "dangling.xml");
  EXPECT_EQ(error("missing.xml"), text("missing.xml", TextOfErrno(ENOENT)));
  EXPECT_EQ(error("dangling.xml"), text("dangling.xml", TextOfErrno(ENOENT)));
  EXPECT_EQ(error("directory.xml"), text("directory.xml", TextOfErrno(EISDIR)));
  EXPECT_EQ(error("pipe.xml"), text("pipe.xml", "not a regular file"));
}

}  // namespace
