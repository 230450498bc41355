#include <cerrno>
#include <chrono>
#include <filesystem>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "save/replace_file.h"
#include "testing/denied.h"
#include "testing/filtered_calls.h"
#include "testing/named_pipe.h"
#include "testing/sanitizers.h"
#include "testing/saving.h"
#include "testing/test.h"
#include "tests/posix/save/lock_probe.h"
#include "tests/save/writing_file.h"

namespace {

using namespace projectdb;
using namespace test_support;
using projectdb::files::SystemCall;
using projectdb::files::SystemCallFilter;

TEST_F(WritingFile, OtherContents_KeepThePermissionsOfTheFormer) {
  Write("p.xml", ProjectXml("", "name=\"former\""));
  SetMode(path(), 0640);
  EXPECT_TRUE(WriteProjectFile(path(), contents_));
  EXPECT_EQ(ModeOf(path()), 0640U);
}

// The XML library is there for each call alone, as in a program that does nothing else with it.
TEST_F(WritingFile, TooFewFilesMayBeOpen_IsAnErrorAndLeavesTheFormerFile) {
  if (kSanitized) GTEST_SKIP() << "the sanitizer needs files of its own";
  Write("p.xml", ProjectXml("", "name=\"former\""));
  const FileState former(path());
  const auto judge = [&](const std::string& error) {
    EXPECT_EQ(error, WritingError(path(), EMFILE));
    EXPECT_EQ(FileState(path()), former);
    EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
  };
  EXPECT_GE(FailuresWithTooFewFiles([&] { return WriteError(contents_); }, judge), 3);
  EXPECT_THAT(DifferencesButStamps(contents_, Contents()), IsEmpty());
}

TEST_F(WritingFile, PipeInThePlaceOfTheExpectedVersion_IsNotWaitedFor) {
  Write("p.xml", CompleteProjectXml());
  const WriteOptions options = ExpectingTheFile();
  std::filesystem::remove(path());
  const NamedPipe pipe(path());
  std::string error;
  EXPECT_TRUE(pipe.RunWith("", [&] { error = WriteError(contents_, options); }));
  EXPECT_EQ(error, WritingError(path(), "it is not the file that was expected"));
}

TEST_F(WritingFile, ExpectedVersionThatCannotBeRead_IsNotTouchedAndTheReasonTold) {
  Write("p.xml", CompleteProjectXml());
  const FileState before(path());
  const WriteOptions options = ExpectingTheFile();
  const std::vector<SystemCallFilter> failures = {
      AtCallBehind("flock", "open", [] { return EACCES; }), FailCall("read", 1, EACCES),
      FailCall("read", 2, EACCES)};
  for (const SystemCallFilter& failure : failures) {
    const FilteredCalls calls(failure);
    try {
      WriteProjectFile(path(), contents_, options);
      ADD_FAILURE() << "it was written";
    } catch (const ProjectFileChanged& error) {
      ADD_FAILURE() << error.what();
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), WritingError(path(), "it cannot be read: " + TextOfErrno(EACCES)));
    }
    EXPECT_EQ(FileState(path()), before);
    EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
  }
}

TEST_F(WritingFile, ExpectedVersionThatIsRemovedBeforeItIsRead_IsAChange) {
  Write("p.xml", CompleteProjectXml());
  const WriteOptions options = ExpectingTheFile();
  const FilteredCalls calls(AtCallBehind("flock", "open", [&] {
    std::filesystem::remove(path());
    return 0;
  }));
  EXPECT_THROW(WriteProjectFile(path(), contents_, options), ProjectFileChanged);
  EXPECT_THAT(NamesIn(directory.path()), IsEmpty());
}

TEST_F(WritingFile, FileThatCannotBeRead_IsReplacedIfNoVersionIsExpected) {
  Write("p.xml", CompleteProjectXml());
  const FilteredCalls calls(FailCall("open", 1, EACCES));
  EXPECT_TRUE(WriteProjectFile(path(), contents_));
}

TEST_F(WritingFileOfASchema, ExpectedVersionThatChangesBeforeItIsReadWithoutIt_IsNotTouched) {
  ProjectContents contents = Contents();
  contents.project_name = "next";
  Write("wdp_proj.xsd", DeviceOnlySchema());
  const WriteOptions options = ExpectingTheFile();
  const std::string bytes = FormatProjectFile(contents);
  bool is_schema_read = false;
  const FilteredCalls calls([&](const SystemCall& call) {
    if (is_schema_read && call.name == std::string("open")) WriteFile(path(), bytes);
    is_schema_read = is_schema_read || FileOf(call).filename() == "wdp_proj.xsd";
    return 0;
  });
  EXPECT_THROW(WriteProjectFile(path(), contents, options), ProjectFileChanged);
  EXPECT_EQ(ReadFile(path()), bytes);
}

TEST_F(WritingFile, FileThatIsMadeWhileItIsExpectedToBeMissing_IsNotTouched) {
  WriteOptions options;
  options.expected = ProjectFileVersion();
  const FilteredCalls calls([&](const SystemCall& call) {
    if (call.name == std::string("linkat")) WriteFile(path(), ProjectXml(""));
    return 0;
  });
  EXPECT_THROW(WriteProjectFile(path(), contents_, options), ProjectFileChanged);
  EXPECT_EQ(ReadFile(path()), ProjectXml(""));
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
}

TEST_F(WritingFile, FileSystemWithoutSecondNames_IsWrittenAllTheSame) {
  WriteOptions options;
  options.expected = ProjectFileVersion();
  const FilteredCalls calls(FailCall("linkat", 1, EPERM));
  EXPECT_EQ(WriteError(contents_, options), "");
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
}

// Another thread may have had it.
TEST_F(WritingFile, ExpectedVersionUnderALockThatIsGivenBackMeanwhile_IsWrittenUnderItsOwn) {
  Write("p.xml", ProjectXml(""));
  auto lock = std::make_unique<ProjectFileLock>(path());
  const WriteOptions options = ExpectingTheFile();
  int renamings = 0;
  const FilteredCalls calls([&](const SystemCall& call) {
    if (call.name == std::string("fsync")) lock.reset();
    if (call.name == std::string("renameat")) {
      ++renamings;
      EXPECT_TRUE(IsLockedByAnybody(path()));
    }
    return 0;
  });
  EXPECT_TRUE(WriteProjectFile(path(), contents_, options));
  EXPECT_EQ(renamings, 1);
}

TEST_F(WritingFile, OwnLockThatTheSystemDoesNotTellOf_IsNotWaitedForEither) {
  for (const char* name : {"stat", "fstat"}) {
    Write("p.xml", ProjectXml(""));
    const ProjectFileLock lock(path());
    const WriteOptions options = ExpectingTheFile();
    const FilteredCalls calls(FailCall(name, 1, EIO));
    EXPECT_EQ(WriteError(contents_, options), "");
  }
}

TEST_F(WritingFile, FileInADirectoryThatMayNotBeWritten_IsLeftWithTheReason) {
  const Denied denied(directory.path());
  if (!denied.effective()) GTEST_SKIP() << "permissions do not bind here";
  EXPECT_EQ(WriteError(contents_), WritingError(path(), EACCES));
}

TEST_F(WritingFile, AbandonedTemporaryFile_IsRemovedWhileNobodyElseCanLockIt) {
  const std::string abandoned = Write(".kel_save_0123456789abcdef0123456789abcdef", "<proj");
  int removals = 0;
  const FilteredCalls calls([&](const SystemCall& call) {
    if (call.name == std::string("unlinkat")) {
      ++removals;
      EXPECT_THROW(ProjectFileLock(abandoned, std::chrono::milliseconds::zero()),
                   std::runtime_error);
    }
    return 0;
  });
  WriteProjectFile(path(), contents_);
  EXPECT_EQ(removals, 1);
}

TEST_F(WritingFile, TemporaryFileThatSomebodyReplaces_IsAnErrorAndNoSave) {
  const auto write = [](const std::string& file) {
    std::filesystem::remove(file);
    WriteFile(file, "<project/>");
  };
  EXPECT_THAT(ErrorOf([&] { projectdb::files::ReplaceFile(path(), {write}); }),
              "the temporary file was removed");
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(WritingFile, TemporaryFileOfASaveThatIsAtWork_Stays) {
  bool has_saved = false;
  const FilteredCalls calls([&](const SystemCall& call) {
    if (call.name == std::string("renameat") && !has_saved) {
      has_saved = true;
      WriteProjectFile(directory / "other.xml", contents_);
    }
    return 0;
  });
  EXPECT_EQ(WriteError(contents_), "");
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("other.xml", "p.xml"));
}

TEST_F(WritingFile, TemporaryFileThatIsTakenForAnAbandonedOne_IsMadeAnew) {
  int created = 0;
  bool is_removed = false;
  const FilteredCalls calls([&](const SystemCall& call) {
    if (call.name == std::string("openat")) ++created;
    if (call.name == std::string("flock") && !std::exchange(is_removed, true)) {
      for (const std::string& name : NamesIn(directory.path())) {
        std::filesystem::remove(directory / name);
      }
    }
    return 0;
  });
  EXPECT_EQ(WriteError(contents_), "");
  EXPECT_EQ(created, 2);
  EXPECT_THAT(DifferencesButStamps(contents_, Contents()), IsEmpty());
}

TEST_F(WritingFile, ExpectedVersionWhileAnotherThreadReplacesTheFile_DoesNotWaitForTheOwnLock) {
  Write("p.xml", CompleteProjectXml());
  const WriteOptions options = ExpectingTheFile();
  ProjectContents next = contents_;
  next.project_name = "next";
  std::optional<ProjectFileLock> lock(std::in_place, path());
  std::future<std::string> other;
  const FilteredCalls calls([&](const SystemCall& call) {
    if (call.name == std::string("renameat")) {
      other = std::async(std::launch::async, [&] { return WriteError(contents_, options); });
      other.wait_for(std::chrono::milliseconds(200));
    }
    return 0;
  });
  EXPECT_TRUE(WriteProjectFile(path(), next));
  const std::future_status status = other.wait_for(std::chrono::seconds(30));
  lock.reset();
  EXPECT_EQ(status, std::future_status::ready);
  EXPECT_THAT(other.get(), HasSubstr("it is not the file that was expected"));
}

TEST_F(WritingFile, ExpectedVersionThatCannotBeLockedNow_IsNotTouchedAndTheReasonTold) {
  Write("p.xml", CompleteProjectXml());
  const FileState before(path());
  const WriteOptions options = ExpectingTheFile();
  ProjectContents contents = contents_;
  contents.project_name = "next";
  for (const char* name : {"open", "flock"}) {
    const FilteredCalls calls(FailCall(name, 1, EIO));
    EXPECT_EQ(WriteError(contents, options), WritingError(path(), EIO));
    EXPECT_EQ(FileState(path()), before);
  }
}

TEST_F(WritingFile, ExpectedVersionInAFileSystemWithoutLocks_IsWrittenAllTheSame) {
  for (const int error : {ENOLCK, EOPNOTSUPP, ENOSYS}) {
    Write("p.xml", ProjectXml(""));
    const WriteOptions options = ExpectingTheFile();
    const FilteredCalls calls(FailCall("flock", 1, error));
    EXPECT_TRUE(WriteProjectFile(path(), contents_, options));
  }
}

TEST_F(WritingFile, FileSystemWithoutLocks_IsWrittenAllTheSame) {
  const FilteredCalls calls(
      [&](const SystemCall& call) { return call.name == std::string("flock") ? ENOLCK : 0; });
  EXPECT_EQ(WriteError(contents_), "");
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
}

}  // namespace
