#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <projectdb/durable_export.h>
#include <projectdb/project_db.h>
#include <projectdb/project_file.h>

#include "testing/child_process.h"
#include "testing/filtered_calls.h"
#include "testing/project_loading.h"
#include "testing/saving.h"
#include "testing/shipped_files.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "tests/save/file_changes.h"

namespace {

using namespace std::chrono_literals;
using namespace projectdb;
using namespace test_support;
using namespace test_support::file_changes;
using projectdb::files::SystemCall;
using testing::Ge;
using testing::IsSupersetOf;

constexpr int kErrors[] = {EIO, ENOSPC, EINTR};

/// The names of the calls that an action makes.
template <typename Action>
std::vector<std::string> CallsOf(const Action& action) {
  std::vector<std::string> calls;
  const FilteredCalls filter([&](const SystemCall& call) {
    calls.emplace_back(call.name);
    return 0;
  });
  action();
  return calls;
}

/// Does an action in which the call of a number, the first being 0, fails.
template <typename Action>
void WithFailingCall(std::size_t number, int error, const Action& action) {
  std::size_t count = 0;
  const FilteredCalls filter([&](const SystemCall&) { return count++ == number ? error : 0; });
  action();
}

/// Does an action in a process that is killed before the call of a number, the first being 0.
/// @return false if the action came to its end before
template <typename Action>
bool IsKilledAtCall(std::size_t number, const Action& action) {
  const std::string end = InChildProcess([&] {
    std::size_t count = 0;
    const FilteredCalls filter([&](const SystemCall&) {
      if (count++ == number) std::raise(SIGKILL);
      return 0;
    });
    action();
    return "ended";
  });
  if (end == "ended") return false;
  EXPECT_EQ(end, " (child ended with status " + std::to_string(SIGKILL) + ")");
  return true;
}

/// Whether a call that a signal interrupts is made again, so that nobody sees the interruption.
bool IsMadeAgain(const std::string& call) {
  const std::vector<std::string> made_once = {"close",   "closedir", "getcwd",   "linkat",
                                              "opendir", "readdir",  "renameat", "unlinkat"};
  return std::find(made_once.begin(), made_once.end(), call) == made_once.end();
}

// --- Writing ---

/// Changes of a file in the working directory through a symbolic link, beside what a killed save
/// has left behind.
class ChangeAmongSystemCalls : public testing::TestWithParam<FileChange>, public Loading {
 protected:
  ChangeAmongSystemCalls() { std::filesystem::create_symlink("p.xml", kLink); }

  void Prepare() {
    std::filesystem::remove(path());
    if (GetParam().has_former) Write("p.xml", former_);
    Write(kAbandoned, "<proj");
    if (GetParam().is_expected) version_ = ReadProjectFile(path(), "").version;
  }

  /// @return the text of the error; "" if it ended well
  std::string ChangeError() const {
    try {
      GetParam().run(kLink, version_);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return {};
  }

  std::string former_name() const { return GetParam().has_former ? "former" : "nothing"; }

  /// What a change leaves is the file; what killed ones have left goes at the latest with the next.
  void ExpectNothingElse(bool may_be_abandoned) const {
    std::vector<std::string> names = NamesIn(directory.path());
    names.erase(std::remove(names.begin(), names.end(), "p.xml"), names.end());
    if (may_be_abandoned) {
      names.erase(std::remove(names.begin(), names.end(), kAbandoned), names.end());
    }
    EXPECT_THAT(names, ElementsAre(kLink));
    EXPECT_TRUE(std::filesystem::is_symlink(kLink));
  }

  static constexpr const char* kAbandoned = ".kel_save_0123456789abcdef0123456789abcdef";
  static constexpr const char* kLink = "link.xml";

  const XmlPlatform platform_;  // Starting it takes longer than a change.
  const WorkingDirectory working_directory_{directory.path()};
  const std::string former_ = FormatProjectFile(ProjectOfName("former"));
  ProjectFileVersion version_;
};

INSTANTIATE_TEST_SUITE_P(Changes, ChangeAmongSystemCalls, testing::ValuesIn(kFileChanges),
                         [](const auto& test_info) { return std::string(test_info.param.name); });

TEST_P(ChangeAmongSystemCalls, CallThatFails_LeavesTheFormerFileOrTheNextAndATellingError) {
  Prepare();
  const std::vector<std::string> calls = CallsOf([&] { ASSERT_EQ(ChangeError(), ""); });
  EXPECT_THAT(calls, IsSupersetOf({"getcwd", "stat", "readlink", "open", "opendir", "readdir",
                                   "openat", "flock", "unlinkat", "closedir", "write", "close",
                                   "fstat", "fsync", "fsync"}));
  const auto naming = std::find_if(calls.begin(), calls.end(), [](const std::string& call) {
    return call == "renameat" || call == "linkat";
  });
  for (const int error_number : kErrors) {
    int errors = 0;
    for (auto call = calls.begin(); call != calls.end(); ++call) {
      const auto number = static_cast<std::size_t>(call - calls.begin());
      const std::string reason = TextOfErrno(error_number);
      SCOPED_TRACE(*call + ", call number " + std::to_string(number) + ": " + reason);
      Prepare();
      std::string error;
      WithFailingCall(number, error_number, [&] { error = ChangeError(); });
      const bool has_failed = !error.empty();
      // The file is in its place by the time that its directory cannot be flushed.
      const std::string found = NameFoundIn(path());
      EXPECT_EQ(found, !has_failed || call > naming ? "next" : former_name());
      // The next save removes what this one could not.
      if (*call == "unlinkat") WriteProjectFile(path(), CompleteProject());
      ExpectNothingElse(*call != "unlinkat");
      EXPECT_TRUE(found == "nothing" || IsFree(path()));
      if (has_failed) {
        ++errors;
        EXPECT_THAT(error, HasSubstr(kLink));
        // The XML library knows that it could not open a file to write it, but not why.
        EXPECT_THAT(error, HasSubstr(*call != "open" ? reason : ""));
      }
      EXPECT_FALSE(has_failed && error_number == EINTR && IsMadeAgain(*call));
    }
    EXPECT_GE(errors, error_number == EINTR ? 2 : 10);
  }
}

TEST_P(ChangeAmongSystemCalls, ProcessKilledAtACall_LeavesAWholeFileThatTheNextFindsFree) {
  std::map<std::string, int> found;
  for (std::size_t number = 0;; ++number) {
    SCOPED_TRACE(number);
    Prepare();
    if (!IsKilledAtCall(number, [&] { ChangeError(); })) break;
    const std::string name = NameFoundIn(path());
    ++found[name];
    EXPECT_TRUE(name == "nothing" || IsFree(path()));
    WriteProjectFile(path(), CompleteProject());
    EXPECT_EQ(NameFoundIn(path()), "demo");
    ExpectNothingElse(false);
  }
  EXPECT_THAT(found, UnorderedElementsAre(Pair(former_name(), Ge(15)), Pair("next", Ge(2))));
}

/// Writes what a file says already over it, although the schema beside it refuses it.
class WriteOfARefusedFile : public testing::Test, public Loading {
 protected:
  void SetUp() override {
    Write("wdp_proj.xsd", DeviceOnlySchema());
    WriteProjectFile(path(), project_);
    former_ = InFile();
  }

  ProjectContents InFile() const {
    std::filesystem::rename("wdp_proj.xsd", "away.xsd");
    ProjectContents project = Contents();
    std::filesystem::rename("away.xsd", "wdp_proj.xsd");
    return project;
  }

  const XmlPlatform platform_;
  const WorkingDirectory working_directory_{directory.path()};
  const ProjectContents project_ = LargeProject("refused");
  ProjectContents former_;
};

TEST_F(WriteOfARefusedFile, CallThatFails_LeavesWhatItSays) {
  const std::vector<std::string> calls =
      CallsOf([&] { ASSERT_FALSE(WriteProjectFile(path(), project_)); });
  for (const int error_number : kErrors) {
    std::vector<std::string> failed;
    for (std::size_t number = 0; number < calls.size(); ++number) {
      SCOPED_TRACE(calls[number] + ", call number " + std::to_string(number) + ": " +
                   TextOfErrno(error_number));
      try {
        WithFailingCall(number, error_number, [&] { WriteProjectFile(path(), project_); });
      } catch (const std::runtime_error& error) {
        failed.push_back(calls[number]);
        EXPECT_THAT(error.what(), HasSubstr(TextOfErrno(error_number)));
      }
      EXPECT_THAT(DifferencesButStamps(former_, InFile()), IsEmpty());
      EXPECT_THAT(NamesIn(directory.path()), UnorderedElementsAre("p.xml", "wdp_proj.xsd"));
    }
    // What cannot be read is written anew.
    EXPECT_EQ(failed, error_number == EINTR ? Lines() : Lines{"stat"});
  }
}

TEST_F(WriteOfARefusedFile, ProcessKilledAtACall_LeavesWhatItSays) {
  std::size_t number = 0;
  for (; IsKilledAtCall(number, [&] { WriteProjectFile(path(), project_); }); ++number) {
    EXPECT_THAT(DifferencesButStamps(former_, InFile()), IsEmpty());
  }
  EXPECT_GE(number, 10U);
}

// --- Reading ---

class ReadAmongSystemCalls : public testing::Test, public Loading {
 protected:
  ProjectFile Read() const { return ReadProjectFile("p.xml", ShippedSchema()); }

  const XmlPlatform platform_;
  const WorkingDirectory working_directory_{directory.path()};
};

TEST_F(ReadAmongSystemCalls, CallThatFails_GivesTheContentsOrNoneAndAnError) {
  Write("p.xml", FormatProjectFile(LargeProject("demo")));
  const ProjectFile expected = Read();
  ASSERT_THAT(expected.problems, IsEmpty());
  const std::vector<std::string> calls = CallsOf([&] { Read(); });
  EXPECT_THAT(calls, IsSupersetOf({"getcwd", "stat", "open", "fstat", "read", "read", "read",
                                   "open", "read", "close", "close"}));
  for (const int error_number : kErrors) {
    int errors = 0;
    for (std::size_t number = 0; number < calls.size(); ++number) {
      SCOPED_TRACE(calls[number] + ", call number " + std::to_string(number) + ": " +
                   TextOfErrno(error_number));
      ProjectFile file;
      WithFailingCall(number, error_number, [&] { file = Read(); });
      const bool has_error = std::any_of(file.problems.begin(), file.problems.end(), IsError);
      EXPECT_EQ(has_error, !file.contents);
      if (has_error) ++errors;
      EXPECT_FALSE(has_error && error_number == EINTR && IsMadeAgain(calls[number]));
      if (!file.contents) continue;
      EXPECT_THAT(AllDifferences(*expected.contents, *file.contents), IsEmpty());
      EXPECT_EQ(file.version, expected.version);
    }
    EXPECT_GE(errors, error_number == EINTR ? 0 : 8);
  }
}

TEST_F(ReadAmongSystemCalls, CallThatFailsOfAFileThatIsNoProject_GivesNoneAndAnError) {
  Write("p.xml", ProjectXml("", "name=\"\xFF\""));
  const std::vector<std::string> calls = CallsOf([&] { Read(); });
  for (std::size_t number = 0; number < calls.size(); ++number) {
    SCOPED_TRACE(calls[number] + ", call number " + std::to_string(number));
    ProjectFile file;
    WithFailingCall(number, EIO, [&] { file = Read(); });
    EXPECT_FALSE(file.contents);
    EXPECT_TRUE(std::any_of(file.problems.begin(), file.problems.end(), IsError));
  }
}

// --- Locking ---

class LockAmongSystemCalls : public testing::TestWithParam<bool>, public Loading {
 protected:
  LockAmongSystemCalls() { Write("p.xml", ""); }

  /// @return the text of the error; "" if the lock was there
  std::string LockError() const {
    try {
      if (GetParam()) {
        const ProjectFileLock lock(path(), 100ms);
      } else {
        const ProjectFileLock lock(path());
      }
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return {};
  }
};

INSTANTIATE_TEST_SUITE_P(Waits, LockAmongSystemCalls, testing::Bool(), [](const auto& test_info) {
  return test_info.param ? "UpToATime" : "ForEver";
});

TEST_P(LockAmongSystemCalls, CallThatFails_LeavesTheFileFreeWithTheReason) {
  const std::vector<std::string> calls = CallsOf([&] { ASSERT_EQ(LockError(), ""); });
  EXPECT_THAT(calls, ElementsAre("open", "fstat", "flock", "stat", "fstat", "close"));
  for (const int error_number : kErrors) {
    const std::string text =
        "Failed locking XML file " + path() + ": " + TextOfErrno(error_number) + "\n";
    for (std::size_t number = 0; number < calls.size(); ++number) {
      SCOPED_TRACE(calls[number] + ": " + TextOfErrno(error_number));
      std::string error;
      WithFailingCall(number, error_number, [&] { error = LockError(); });
      EXPECT_EQ(error, error_number == EINTR || calls[number] == "close" ? "" : text);
      EXPECT_TRUE(IsFree(path()));
    }
  }
}

TEST_P(LockAmongSystemCalls, ProcessKilledAtACall_LeavesTheFileFree) {
  std::size_t number = 0;
  for (; IsKilledAtCall(number, [&] { LockError(); }); ++number) {
    EXPECT_TRUE(IsFree(path()));
    EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
  }
  EXPECT_EQ(number, 6U);
}

}  // namespace
