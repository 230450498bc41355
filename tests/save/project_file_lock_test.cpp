#include <projectdb/project_file.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <projectdb/durable_export.h>
#include <projectdb/project_db.h>

#include "testing/child_process.h"
#include "testing/files.h"
#include "testing/filtered_calls.h"
#include "testing/saving.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"
#include "testing/threads.h"

namespace {

using namespace std::chrono_literals;
using projectdb::ExportProjectDataDurably;
using projectdb::KelProjectDatabase;
using projectdb::ProjectFileLock;
using test_support::InChildProcess;
using test_support::NamesIn;
using test_support::WriteFile;
using testing::ElementsAre;

/// The text of the error that an attempt to lock ends in; "" if it ends well.
std::string LockError(const std::string& path) {
  try {
    const ProjectFileLock lock(path, 0ms);
    return {};
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

std::string LockErrorText(const std::string& path, const std::string& reason) {
  return "Failed locking XML file " + path + ": " + reason + "\n";
}

class FileLock : public testing::Test {
 protected:
  void SetUp() override {
    WriteFile(path_, "<project/>");
    database_.CreateNewProjectDatabase("lantern");
  }

  bool IsLocked(const std::string& path) const {
    return LockError(path) == LockErrorText(path, "it is locked by others");
  }

  bool IsLockedForOtherProcesses(const std::string& path) const {
    return InChildProcess([&] { return std::string(IsLocked(path) ? "locked" : "free"); }) ==
           "locked";
  }

  const test_support::TemporaryDirectory directory_;
  const std::string path_ = directory_ / "p.xml";
  KelProjectDatabase database_;
};

TEST_F(FileLock, FreeFile_IsLockedForThreadsAndProcessesAsLongAsTheLockLives) {
  {
    const ProjectFileLock lock(path_);
    EXPECT_TRUE(IsLocked(path_));
    EXPECT_TRUE(IsLockedForOtherProcesses(path_));
  }
  EXPECT_EQ(LockError(path_), "");
  EXPECT_FALSE(IsLockedForOtherProcesses(path_));
}

TEST_F(FileLock, LockedFile_IsWaitedFor) {
  auto lock = std::make_unique<ProjectFileLock>(path_);
  std::atomic<bool> is_free{false};
  std::future<bool> waiting = std::async(std::launch::async, [&] {
    const ProjectFileLock next(path_);
    return is_free.load();
  });
  EXPECT_EQ(waiting.wait_for(50ms), std::future_status::timeout);
  is_free = true;
  lock.reset();
  EXPECT_TRUE(waiting.get());
}

TEST_F(FileLock, LockedFile_IsWaitedForUpToTheGivenTime) {
  auto lock = std::make_unique<ProjectFileLock>(path_);
  std::future<void> waiting =
      std::async(std::launch::async, [&] { const ProjectFileLock next(path_, 1h); });
  EXPECT_EQ(waiting.wait_for(20ms), std::future_status::timeout);
  lock.reset();
  EXPECT_NO_THROW(waiting.get());
}

TEST_F(FileLock, OtherPathsToTheFile_AreLockedToo) {
  std::filesystem::create_symlink("p.xml", directory_ / "link.xml");
  std::filesystem::create_hard_link(path_, directory_ / "other.xml");
  const ProjectFileLock lock(directory_ / "link.xml");
  EXPECT_TRUE(IsLocked(path_));
  EXPECT_TRUE(IsLocked(directory_ / "other.xml"));
  EXPECT_TRUE(IsLocked(directory_ / "./p.xml"));
}

TEST_F(FileLock, OtherFileOfTheDirectory_IsFree) {
  WriteFile(directory_ / "q.xml", "<project/>");
  const ProjectFileLock lock(path_);
  const ProjectFileLock second(directory_ / "q.xml");
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

TEST_F(FileLock, FileThatIsReplacedWhileOthersWait_IsLockedByOneAtATime) {
  constexpr int kLockingThreads = 8;
  constexpr int kLockingRounds = 20;
  std::atomic<int> holders{0};
  std::atomic<int> most_holders{0};
  test_support::InThreads(kLockingThreads, [&](int) {
    for (int round = 0; round < kLockingRounds; ++round) {
      const ProjectFileLock lock(path_);
      const int now = ++holders;
      if (now > most_holders) most_holders = now;
      ExportProjectDataDurably(database_, path_);
      --holders;
    }
  });
  EXPECT_EQ(most_holders, 1);
}

TEST_F(FileLock, SaveOfAFileThatNobodyLocks_LeavesItFree) {
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(LockError(path_), "");
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
  const test_support::FilteredCalls calls([&](const projectdb::files::SystemCall& call) {
    if (call.name == std::string("flock")) {
      ++modes;
      EXPECT_EQ(::fcntl(call.descriptor, F_GETFL) & O_ACCMODE, O_RDWR);
    }
    return 0;
  });
  const ProjectFileLock lock(path_);
  EXPECT_EQ(modes, 1);
}

TEST_F(FileLock, FileThatMayNotBeWritten_CanBeLocked) {
  test_support::SetMode(path_, 0444);
  const ProjectFileLock lock(path_);
  EXPECT_TRUE(IsLocked(path_));
}

TEST_F(FileLock, FileItself_IsUntouched) {
  const test_support::FileState before(path_);
  const auto time = std::filesystem::last_write_time(path_);
  { const ProjectFileLock lock(path_); }
  EXPECT_EQ(test_support::FileState(path_), before);
  EXPECT_EQ(std::filesystem::last_write_time(path_), time);
}

/// From now on no lock of this process succeeds.
/// @return false if the system does not let a process do that to itself
bool LetLocksFail(int error) {
  sock_filter instructions[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_flock, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned int>(error)),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog program{4, instructions};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

TEST_F(FileLock, SystemWithoutLocks_IsAnErrorWithAndWithoutAnEndOfTheWait) {
  const std::string errors = InChildProcess([this]() -> std::string {
    if (!LetLocksFail(ENOLCK)) return "no filter";
    const std::string error = LockError(path_);
    try {
      const ProjectFileLock lock(path_);
      return "locked";
    } catch (const std::runtime_error& without_end) {
      return error + without_end.what();
    }
  });
  if (errors == "no filter") GTEST_SKIP() << "system calls cannot be filtered";
  const std::string error = LockErrorText(path_, "No locks available");
  EXPECT_EQ(errors, error + error);
}

TEST_F(FileLock, WhatIsNoRegularFile_IsAnErrorThatNamesIt) {
  const auto error = [&](const std::string& name) { return LockError(directory_ / name); };
  const auto text = [&](const std::string& name, const std::string& reason) {
    return LockErrorText(directory_ / name, reason);
  };
  ASSERT_EQ(::mkfifo((directory_ / "pipe.xml").c_str(), 0600), 0);
  std::filesystem::create_directory(directory_ / "directory.xml");
  std::filesystem::create_symlink("nowhere.xml", directory_ / "dangling.xml");
  EXPECT_EQ(error("missing.xml"), text("missing.xml", "No such file or directory"));
  EXPECT_EQ(error("dangling.xml"), text("dangling.xml", "No such file or directory"));
  EXPECT_EQ(error("directory.xml"), text("directory.xml", "Is a directory"));
  EXPECT_EQ(error("pipe.xml"), text("pipe.xml", "not a regular file"));
}

TEST_F(FileLock, WaitLongerThanTheClockGoes_LastsUntilTheLockIsFree) {
  auto lock = std::make_unique<ProjectFileLock>(path_);
  auto waiting = std::async(std::launch::async, [&] {
    return test_support::ErrorOf(
        [&] { const ProjectFileLock next(path_, std::chrono::milliseconds::max()); });
  });
  EXPECT_EQ(waiting.wait_for(50ms), std::future_status::timeout);
  lock.reset();
  EXPECT_EQ(waiting.get(), "");
}

TEST_F(FileLock, PathWithAZero_IsRefused) {
  EXPECT_NE(LockError(path_ + std::string("\0x", 2)), "");
}

}  // namespace
