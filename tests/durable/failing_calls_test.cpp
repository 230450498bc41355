#include <cerrno>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <projectdb/durable_export.h>
#include <projectdb/project_db.h>

#include "testing/access_list.h"
#include "testing/message_recorder.h"
#include "testing/saving.h"
#include "testing/temporary_directory.h"
#include "tests/durable/intercepted_calls.h"

namespace {

using projectdb::KelProjectDatabase;
using test_support::AccessListFor;
using test_support::FileState;
using test_support::InterceptedCalls;
using test_support::kAccessList;
using test_support::ModeOf;
using test_support::NamesIn;
using test_support::SaveError;
using test_support::SetAccessList;
using test_support::SetMode;
using test_support::WritingError;
using testing::ElementsAre;

/// Fails one call of a save, the first of that name being number 1.
class FailingCall {
 public:
  FailingCall(const std::string& name, int number, int error)
      : calls_([this, name, number, error](const std::string& called) {
          return called == name && ++count_ == number ? error : 0;
        }),
        number_(number) {}

  bool happened() const { return count_ >= number_; }

 private:
  int count_ = 0;
  InterceptedCalls calls_;
  int number_;
};

class InterceptedSave : public testing::Test {
 protected:
  InterceptedSave() {
    KelProjectDatabase former;
    former.CreateNewProjectDatabase("former");
    former.ExportProjectData(path_);
    SetMode(path_, 0640);
    database_.CreateNewProjectDatabase("next");
  }

  std::string NameInFile() const {
    KelProjectDatabase loaded;
    return loaded.LoadProjectData(path_, "") ? loaded.GetProjectName() : "not loaded";
  }

  /// Gives the file everything that a save copies, as no new file has it.
  /// @return whether this process may do that here
  bool GiveFormerEveryPermission() const {
    return SetAccessList(path_, kAccessList, AccessListFor(4711)) &&
           ::chown(path_.c_str(), 4711, 4712) == 0;
  }

  const test_support::MessageRecorder recorder_;
  const test_support::TemporaryDirectory directory_;
  const std::string path_ = directory_ / "p.xml";
  KelProjectDatabase database_;
};

struct Failure {
  const char* call;
  int number;
  int error;
  const char* reason;
};

void PrintTo(const Failure& failure, std::ostream* out) {
  *out << failure.call << " number " << failure.number << ": " << failure.reason;
}

class SaveWithFailingCall : public InterceptedSave, public testing::WithParamInterface<Failure> {};

TEST_P(SaveWithFailingCall, IsAnErrorAndLeavesTheFormerFileAndNoOther) {
  const std::string call = GetParam().call;
  const bool is_of_permissions = call == "fchown" || call == "fsetxattr";
  if (is_of_permissions && !GiveFormerEveryPermission()) {
    GTEST_SKIP() << "only root may give files away";
  }
  const FileState former(path_);
  const FailingCall failing_call(call, GetParam().number, GetParam().error);
  EXPECT_EQ(SaveError(database_, path_), WritingError(path_, GetParam().reason));
  EXPECT_TRUE(failing_call.happened());
  EXPECT_EQ(FileState(path_), former);
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

INSTANTIATE_TEST_SUITE_P(Calls, SaveWithFailingCall,
                         testing::Values(Failure{"getentropy", 1, ENOSYS,
                                                 "Function not implemented"},
                                         Failure{"fchown", 1, EDQUOT, "Disk quota exceeded"},
                                         Failure{"fchown", 2, EIO, "Input/output error"},
                                         Failure{"getxattr", 1, EIO, "Input/output error"},
                                         Failure{"fsetxattr", 1, ENOSPC, "No space left on device"},
                                         Failure{"fremovexattr", 1, EIO, "Input/output error"},
                                         Failure{"fsync", 1, EIO, "Input/output error"},
                                         Failure{"fsync", 1, ENOSPC, "No space left on device"},
                                         Failure{"fsync", 1, EINVAL, "Invalid argument"},
                                         Failure{"renameat", 1, EIO, "Input/output error"}));

TEST_F(InterceptedSave, PermissionsCannotBeSet_IsAnErrorAndLeavesTheFormerFile) {
  const FileState former(path_);
  const FailingCall failing_call("fchmod", 1, EPERM);
  EXPECT_EQ(SaveError(database_, path_), WritingError(path_, "Operation not permitted"));
  EXPECT_EQ(FileState(path_), former);
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

TEST_F(InterceptedSave, DirectoryCannotBeFlushed_IsAnErrorWithTheNewFileInPlace) {
  const FailingCall failing_call("fsync", 2, EIO);
  EXPECT_EQ(SaveError(database_, path_), WritingError(path_, "Input/output error"));
  EXPECT_EQ(NameInFile(), "next");
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

TEST_F(InterceptedSave, FileSystemThatCannotFlushDirectories_IsNoError) {
  const FailingCall failing_call("fsync", 2, EINVAL);
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_TRUE(failing_call.happened());
}

TEST_F(InterceptedSave, InterruptedFlush_IsRepeated) {
  int flushes = 0;
  const InterceptedCalls calls(
      [&](const std::string& call) { return call == "fsync" && ++flushes % 2 == 1 ? EINTR : 0; });
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_EQ(flushes, 4);
}

TEST_F(InterceptedSave, OwnerThatIsUnknownInTheUserNamespace_IsNoError) {
  if (!GiveFormerEveryPermission()) GTEST_SKIP() << "only root may give files away";
  const FailingCall failing_call("fchown", 2, EINVAL);
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_TRUE(failing_call.happened());
}

TEST_F(InterceptedSave, GroupThatIsNotPermitted_HasNoPrivilegesByTheAccessListEither) {
  if (!GiveFormerEveryPermission()) GTEST_SKIP() << "only root may give files away";
  const FailingCall failing_call("fchown", 1, EPERM);
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_EQ(ModeOf(path_), 0600U);
}

TEST_F(InterceptedSave, FileSystemWithoutAccessLists_KeepsThePermissions) {
  const FailingCall failing_call("getxattr", 1, ENOTSUP);
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_TRUE(failing_call.happened());
  EXPECT_EQ(ModeOf(path_), 0640U);
}

TEST_F(InterceptedSave, FileThatIsReplaced_IsOnlyForItsOwnerUntilItIsWritten) {
  SetMode(path_, 0666);
  std::vector<mode_t> modes;
  const InterceptedCalls calls([&](const std::string& call) {
    if (call == "fchmod") {
      for (const std::string& name : NamesIn(directory_.path())) {
        if (name != "p.xml") modes.push_back(ModeOf(directory_ / name));
      }
    }
    return 0;
  });
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_THAT(modes, ElementsAre(0600));
}

TEST_F(InterceptedSave, TemporaryFile_HasANameThatNobodyTakesForAProject) {
  std::vector<std::string> names;
  const InterceptedCalls calls([&](const std::string& call) {
    if (call == "renameat") names = NamesIn(directory_.path());
    return 0;
  });
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_THAT(names, ElementsAre(testing::MatchesRegex("\\.kel_save_[0-9a-f]+"), "p.xml"));
}

TEST_F(InterceptedSave, TwoSaves_HaveTemporaryFilesOfDifferentNames) {
  std::vector<std::string> names;
  const InterceptedCalls calls([&](const std::string& call) {
    if (call == "renameat") names.push_back(NamesIn(directory_.path()).front());
    return 0;
  });
  SaveError(database_, path_);
  SaveError(database_, path_);
  ASSERT_EQ(names.size(), 2U);
  EXPECT_NE(names[0], names[1]);
}

TEST_F(InterceptedSave, ProjectThatIsCleanedMeanwhile_LeavesTheFormerFileAndNoOther) {
  const FileState former(path_);
  const InterceptedCalls calls([&](const std::string& call) {
    if (call == "getentropy") database_.CleanProjectDatabase();
    return 0;
  });
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_FALSE(database_.IsProjectDatabaseExist());
  EXPECT_EQ(FileState(path_), former);
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

}  // namespace
