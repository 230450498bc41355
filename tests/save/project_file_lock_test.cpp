#include <projectdb/project_file.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <future>
#include <memory>
#include <string>

#include <projectdb/durable_export.h>

#include "testing/file_state.h"
#include "testing/test.h"
#include "testing/threads.h"
#include "tests/save/locked_file.h"

namespace {

using namespace std::chrono_literals;
using namespace test_support;
using projectdb::ExportProjectDataDurably;
using projectdb::ProjectFileLock;

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

TEST_F(FileLock, OtherFileOfTheDirectory_IsFree) {
  WriteFile(directory_ / "q.xml", "<project/>");
  const ProjectFileLock lock(path_);
  const ProjectFileLock second(directory_ / "q.xml");
}

TEST_F(FileLock, FileThatIsReplacedWhileOthersWait_IsLockedByOneAtATime) {
  constexpr int kLockingThreads = 8;
  constexpr int kLockingRounds = 20;
  std::atomic<int> holders{0};
  std::atomic<int> most_holders{0};
  InThreads(kLockingThreads, [&](int) {
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

TEST_F(FileLock, FileItself_IsUntouched) {
  const FileState before(path_);
  const auto time = std::filesystem::last_write_time(path_);
  { const ProjectFileLock lock(path_); }
  EXPECT_EQ(FileState(path_), before);
  EXPECT_EQ(std::filesystem::last_write_time(path_), time);
}

TEST_F(FileLock, WaitLongerThanTheClockGoes_LastsUntilTheLockIsFree) {
  auto lock = std::make_unique<ProjectFileLock>(path_);
  auto waiting = std::async(std::launch::async, [&] {
    return ErrorOf([&] { const ProjectFileLock next(path_, std::chrono::milliseconds::max()); });
  });
  EXPECT_EQ(waiting.wait_for(50ms), std::future_status::timeout);
  lock.reset();
  EXPECT_EQ(waiting.get(), "");
}

TEST_F(FileLock, PathWithAZero_IsRefused) {
  EXPECT_NE(LockError(path_ + std::string("\0x", 2)), "");
}

}  // namespace
