#include <cerrno>
#include <chrono>
#include <string>
#include <vector>

#include <projectdb/project_file.h>

#include "platform/windows/windows_system.h"
#include "testing/filtered_calls.h"
#include "testing/native_path.h"
#include "testing/saves.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"
#include "testing/threads.h"
#include "testing/windows/answered_openings.h"
#include "testing/windows/other_process.h"

namespace {

using namespace projectdb;
using namespace test_support;

class LockOnWindows : public testing::Test {
 protected:
  LockOnWindows() {
    KelProjectDatabase database;
    database.CreateNewProjectDatabase("soc");
    database.ExportProjectData(path_);
  }

  /// Why the lock cannot be had at once; "" if it can.
  std::string Refusal() const {
    return ErrorOf([&] { const ProjectFileLock lock(path_, std::chrono::milliseconds(0)); });
  }

  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "p.xml";
};

TEST_F(LockOnWindows, LockedFile_IsRefusedToOthersUntilItIsGivenBack) {
  {
    const ProjectFileLock lock(path_);
    EXPECT_EQ(Refusal(), "Failed locking XML file " + path_ + ": it is locked by others\n");
  }
  EXPECT_EQ(Refusal(), "");
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

TEST_F(LockOnWindows, LockedFile_IsReplacedByItsHolderAndStaysLocked) {
  const ProjectFileLock lock(path_);
  WriteOptions options;
  options.expected = ReadProjectFile(path_, "").version;
  ProjectContents contents = *ReadProjectFile(path_, "").contents;
  contents.project_name = "next";
  EXPECT_TRUE(WriteProjectFile(path_, contents, options));
  EXPECT_EQ(ReadProjectFile(path_, "").contents->project_name, "next");
  EXPECT_NE(Refusal(), "");
}

/// A project in a file whose name has so many characters.
class LongName {
 public:
  explicit LongName(std::size_t size) : path_(directory_ / (std::string(size - 4, 'n') + ".xml")) {
    database_.CreateNewProjectDatabase("soc");
    EXPECT_EQ(Save(), "");
  }
  ~LongName() { DeleteFileW(files::SystemName(NativePath(path_)).c_str()); }
  LongName(const LongName&) = delete;
  LongName& operator=(const LongName&) = delete;

  std::string Save() const { return SaveError(database_, path_); }

  std::string Lock() const {
    return ErrorOf([&] { const ProjectFileLock lock(path_); });
  }

  const std::string& path() const { return path_; }

 private:
  const TemporaryDirectory directory_;
  const std::string path_;
  KelProjectDatabase database_;
};

TEST(LongNameOnWindows, Of245Characters_IsLocked) { EXPECT_EQ(LongName(245).Lock(), ""); }

TEST(LongNameOnWindows, Of246Characters_IsTooLongForALock) {
  const LongName name(246);
  EXPECT_EQ(name.Lock(),
            "Failed locking XML file " + name.path() + ": " + TextOfErrno(ENAMETOOLONG) + "\n");
}

TEST(LongNameOnWindows, Of246Characters_IsSavedAgainWithoutALock) {
  EXPECT_EQ(LongName(246).Save(), "");
}

TEST_F(LockOnWindows, FileOfTheLocksNameThatIsNoLock_IsRefusedAndStays) {
  const std::string other = directory_ / ".kel_lock_p.xml";
  WriteFile(other, "precious");
  EXPECT_EQ(Refusal(),
            "Failed locking XML file " + path_ + ": \".kel_lock_p.xml\" is there and is no lock\n");
  EXPECT_EQ(ReadFile(other), "precious");
}

TEST_F(LockOnWindows, EmptyFileThatAProcessLeftBehind_IsTakenForTheLock) {
  WriteFile(directory_ / ".kel_lock_p.xml", "");
  EXPECT_EQ(Refusal(), "");
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

/// The system is about to remove each lock file, which others keep it from.
AnsweredOpenings::Answer GoingLocks(int error) {
  return Refusing([error](const AskedOpening& asked) -> DWORD {
    const bool is_lock = std::wstring(asked.name).find(L".kel_lock_") != std::wstring::npos;
    return is_lock ? static_cast<DWORD>(error) : ERROR_SUCCESS;
  });
}

TEST_F(LockOnWindows, SaveWhileALockIsBeingRemoved_IsSaved) {
  for (const int error : {ERROR_ACCESS_DENIED, ERROR_DELETE_PENDING}) {
    const AnsweredOpenings locks(GoingLocks(error));
    KelProjectDatabase database;
    database.CreateNewProjectDatabase("saved" + std::to_string(error));
    EXPECT_EQ(SaveError(database, path_), "");
    EXPECT_EQ(ReadProjectFile(path_, "").contents->project_name, "saved" + std::to_string(error));
  }
}

TEST_F(LockOnWindows, LockThatIsBeingRemovedForEver_IsRefusedAfterAWhile) {
  for (const int error : {ERROR_ACCESS_DENIED, ERROR_DELETE_PENDING}) {
    const AnsweredOpenings locks(GoingLocks(error));
    EXPECT_NE(ErrorOf([&] { const ProjectFileLock lock(path_); }), "");
  }
}

TEST_F(LockOnWindows, LockThatIsDenied_IsRefusedForThatReasonWhateverTheWait) {
  const AnsweredOpenings locks(GoingLocks(ERROR_ACCESS_DENIED));
  EXPECT_EQ(Refusal(), "Failed locking XML file " + path_ + ": " + TextOfErrno(EACCES) + "\n");
}

TEST_F(LockOnWindows, FileThatOthersHaveAlone_IsRefusedWithoutAWaitThatNobodyAskedFor) {
  const HANDLE other = CreateFileW(NativePath(path_).c_str(), GENERIC_READ, 0, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  std::size_t openings = 0;
  {
    const FilteredCalls filter([&openings](const files::SystemCall& call) {
      if (std::string(call.name) == "CreateFile") ++openings;
      return 0;
    });
    EXPECT_EQ(Refusal(),
              "Failed locking XML file " + path_ + ": others have it open and do not share it\n");
  }
  CloseHandle(other);
  EXPECT_EQ(openings, 1U);
}

TEST_F(LockOnWindows, NoFileOrADirectory_IsRefused) {
  EXPECT_EQ(
      ErrorOf([&] { const ProjectFileLock lock(directory_ / "none.xml"); }),
      "Failed locking XML file " + (directory_ / "none.xml") + ": " + TextOfErrno(ENOENT) + "\n");
  EXPECT_NE(ErrorOf([&] { const ProjectFileLock lock(directory_.path().string()); }), "");
}

TEST_F(LockOnWindows, UpdatesOfSeveralThreads_LoseNothing) {
  constexpr int kUpdaters = 4;
  constexpr int kUpdates = 10;
  InThreads(kUpdaters, [&](int thread) {
    for (int i = 0; i < kUpdates; ++i) {
      UpdateProjectFile(path_, [&](ProjectContents& contents) {
        contents.misc_files.emplace_back(std::to_string(thread) + "_" + std::to_string(i), "", "");
      });
    }
  });
  EXPECT_THAT(ReadProjectFile(path_, "").contents->misc_files, SizeIs(kUpdaters * kUpdates));
}

/// Parts of tests, for processes of their own.
class PartWithLock : public testing::Test {};

TEST_F(PartWithLock, DISABLED_HoldsTheLockUntilItIsEnded) {
  const ProjectFileLock lock(OtherProcess::FileOfTheTest());
  WriteFile(OtherProcess::FileOfTheTest() + ".locked", "");
  for (;;) Sleep(1000);
}

TEST_F(PartWithLock, DISABLED_AddsFiftyFiles) {
  for (int i = 0; i < 50; ++i) {
    UpdateProjectFile(OtherProcess::FileOfTheTest(), [](ProjectContents& contents) {
      contents.misc_files.emplace_back(std::to_string(GetCurrentProcessId()), "", "");
    });
  }
}

TEST_F(LockOnWindows, LockOfAnotherProcess_IsThereUntilThatProcessEnds) {
  {
    const OtherProcess holder("PartWithLock.DISABLED_HoldsTheLockUntilItIsEnded", path_);
    while (!std::filesystem::exists(path_ + ".locked")) Sleep(10);
    EXPECT_NE(Refusal(), "");
  }
  EXPECT_EQ(ErrorOf([&] { const ProjectFileLock lock(path_, std::chrono::seconds(10)); }), "");
}

TEST_F(LockOnWindows, UpdatesOfTwoProcesses_LoseNothing) {
  const OtherProcess one("PartWithLock.DISABLED_AddsFiftyFiles", path_);
  const OtherProcess other("PartWithLock.DISABLED_AddsFiftyFiles", path_);
  EXPECT_EQ(one.Wait(), 0U);
  EXPECT_EQ(other.Wait(), 0U);
  EXPECT_THAT(ReadProjectFile(path_, "").contents->misc_files, SizeIs(100));
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

}  // namespace
