#include "save/system_calls.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <projectdb/durable_export.h>
#include <projectdb/project_db.h>

#include "testing/access_list.h"
#include "testing/child_process.h"
#include "testing/project_loading.h"
#include "testing/saving.h"
#include "testing/temporary_directory.h"

namespace {

using namespace test_support;
using projectdb::GetProjectContents;
using projectdb::KelProjectDatabase;
using projectdb::ProjectContents;
using projectdb::files::FilterOfSystemCalls;
using projectdb::files::SystemCall;
using projectdb::files::SystemCallFilter;
using testing::ElementsAre;

/// Stands before the system calls of this process's saves for as long as it lives.
class FilteredCalls {
 public:
  explicit FilteredCalls(SystemCallFilter filter) { FilterOfSystemCalls() = std::move(filter); }
  ~FilteredCalls() { FilterOfSystemCalls() = nullptr; }
  FilteredCalls(const FilteredCalls&) = delete;
  FilteredCalls& operator=(const FilteredCalls&) = delete;
};

void FillProject(KelProjectDatabase& database, const std::string& name, int files) {
  database.CreateNewProjectDatabase(name);
  for (int number = 0; number < files; ++number) {
    database.AddDesignRTLFile("rtl/" + name + std::to_string(number) + ".v", "v2k", "work");
  }
}

class FilteredSave : public testing::Test {
 protected:
  FilteredSave() {
    FillProject(former_, "former", 5);
    FillProject(database_, "next", 20);
  }

  void WriteFormer() const {
    former_.ExportProjectData(path_);
    SetMode(path_, 0640);
  }

  /// Gives the file everything that a save copies, as no new file has it.
  /// @return whether this process may do that here
  bool GiveFormerEveryPermission() const {
    return SetAccessList(path_, kAccessList, AccessListFor(4711)) &&
           ::chown(path_.c_str(), 4711, 4712) == 0;
  }

  /// What is at a path: "former", "next", "nothing" or "damaged".
  std::string Found(const std::string& path) const {
    if (!std::filesystem::exists(path)) return "nothing";
    const MessageRecorder recorder;
    KelProjectDatabase loaded;
    loaded.LoadProjectData(path, "");
    loaded.SetProjectCurrentPath(database_.GetProjectCurrentPath());
    const ProjectContents found = GetProjectContents(loaded);
    if (DifferencesButStamps(GetProjectContents(former_), found).empty()) return "former";
    return DifferencesButStamps(GetProjectContents(database_), found).empty() ? "next" : "damaged";
  }

  const MessageRecorder recorder_;
  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "p.xml";
  KelProjectDatabase former_;
  KelProjectDatabase database_;
};

// --- Calls that fail ---

/// One failing call, the first of that name being number 1, and what the save then comes to.
struct FailingCall {
  const char* call;
  int number;
  int error;
  const char* reason;  ///< "" if the save succeeds all the same.
  const char* found = *reason ? "former" : "next";
};

void PrintTo(const FailingCall& call, std::ostream* out) {
  *out << call.call << " number " << call.number << " with errno " << call.error;
}

class SaveWithFailingCall : public FilteredSave, public testing::WithParamInterface<FailingCall> {
 protected:
  SaveWithFailingCall() { WriteFormer(); }

  /// Saves with the failing call. @return the error's text
  std::string Save() {
    int count = 0;
    const FilteredCalls calls([&](const SystemCall& call) {
      return call.name == std::string(GetParam().call) && ++count == GetParam().number
                 ? GetParam().error
                 : 0;
    });
    const std::string error = SaveError(database_, path_);
    EXPECT_GE(count, GetParam().number) << "the call was not made";
    return error;
  }
};

TEST_P(SaveWithFailingCall, LeavesTheFormerFileOrTheNextAndNoOther) {
  const std::string call = GetParam().call;
  const bool is_of_permissions = call == "fchown" || call == "fsetxattr";
  if (is_of_permissions && !GiveFormerEveryPermission()) {
    GTEST_SKIP() << "only root may give files away";
  }
  const FileState former(path_);
  const std::string reason = GetParam().reason;
  EXPECT_EQ(Save(), reason.empty() ? "" : WritingError(path_, reason));
  EXPECT_EQ(Found(path_), GetParam().found);
  if (Found(path_) == "former") {
    EXPECT_EQ(FileState(path_), former);
  }
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

INSTANTIATE_TEST_SUITE_P(
    Errors, SaveWithFailingCall,
    testing::Values(FailingCall{"getentropy", 1, ENOSYS, "Function not implemented"},
                    FailingCall{"openat", 1, EMFILE, "Too many open files"},
                    FailingCall{"fchown", 1, EDQUOT, "Disk quota exceeded"},
                    FailingCall{"fchown", 2, EIO, "Input/output error"},
                    FailingCall{"getxattr", 1, EIO, "Input/output error"},
                    FailingCall{"fsetxattr", 1, ENOSPC, "No space left on device"},
                    FailingCall{"fremovexattr", 1, EIO, "Input/output error"},
                    FailingCall{"fchmod", 1, EPERM, "Operation not permitted"},
                    FailingCall{"fsync", 1, EIO, "Input/output error"},
                    FailingCall{"fsync", 1, ENOSPC, "No space left on device"},
                    FailingCall{"fsync", 1, EINVAL, "Invalid argument"},
                    FailingCall{"renameat", 1, EIO, "Input/output error"},
                    FailingCall{"fsync", 2, EIO, "Input/output error", "next"}));

INSTANTIATE_TEST_SUITE_P(NoErrors, SaveWithFailingCall,
                         testing::Values(FailingCall{"fsync", 1, EINTR, ""},
                                         FailingCall{"fsync", 2, EINTR, ""},
                                         // The file system cannot flush directories.
                                         FailingCall{"fsync", 2, EINVAL, ""},
                                         // The user namespace does not know the owner.
                                         FailingCall{"fchown", 2, EINVAL, ""},
                                         // The file system has no access lists.
                                         FailingCall{"getxattr", 1, ENOTSUP, ""}));

TEST_F(FilteredSave, FileSystemWithoutAccessLists_KeepsThePermissions) {
  WriteFormer();
  const FilteredCalls calls(
      [&](const SystemCall& call) { return call.name == std::string("getxattr") ? ENOTSUP : 0; });
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_EQ(ModeOf(path_), 0640U);
}

TEST_F(FilteredSave, GroupThatIsNotPermitted_HasNoPrivilegesByTheAccessListEither) {
  WriteFormer();
  if (!GiveFormerEveryPermission()) GTEST_SKIP() << "only root may give files away";
  int changes = 0;
  const FilteredCalls calls([&](const SystemCall& call) {
    return call.name == std::string("fchown") && ++changes == 1 ? EPERM : 0;
  });
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_EQ(ModeOf(path_), 0600U);
}

// --- Between the calls ---

/// The only other file beside the one that is saved.
std::string TemporaryFileIn(const std::filesystem::path& directory) {
  for (const std::string& name : NamesIn(directory)) {
    if (name != "p.xml") return name;
  }
  return "none";
}

TEST_F(FilteredSave, FlushesTheWholeFileBeforeItsRenamingAndTheDirectoryAfterIt) {
  WriteFormer();
  std::vector<std::string> steps;
  const FilteredCalls calls([&](const SystemCall& call) {
    std::error_code error;
    const std::filesystem::path file =
        std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(call.descriptor), error);
    const bool is_temporary = file.filename() == TemporaryFileIn(directory_.path());
    const std::string name = is_temporary                ? "temporary"
                             : file == directory_.path() ? "directory"
                                                         : "none";
    steps.push_back(std::string(call.name) + ' ' + name + ", " + Found(path_));
    return 0;
  });
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_THAT(steps, ElementsAre("getentropy none, former", "openat directory, former",
                                 "getxattr none, former", "fremovexattr temporary, former",
                                 "fchmod temporary, former", "fsync temporary, former",
                                 "renameat directory, former", "fsync directory, next"));
}

TEST_F(FilteredSave, TemporaryFile_IsForItsOwnerOnlyAndWholeUnderNoProjectsNameUntilRenamed) {
  WriteFormer();
  SetMode(path_, 0666);
  std::vector<std::string> names;
  const FilteredCalls calls([&](const SystemCall& call) {
    const std::string name = TemporaryFileIn(directory_.path());
    if (call.name == std::string("fchmod")) {
      EXPECT_EQ(ModeOf(directory_ / name), 0600U);
    }
    if (call.name == std::string("renameat")) {
      names.push_back(name);
      std::filesystem::copy_file(directory_ / name, directory_ / "copy.xml");
      EXPECT_EQ(Found(directory_ / "copy.xml"), "next");
      std::filesystem::remove(directory_ / "copy.xml");
    }
    return 0;
  });
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_EQ(SaveError(database_, path_), "");
  ASSERT_EQ(names.size(), 2U);
  EXPECT_THAT(names, testing::Each(testing::MatchesRegex("\\.kel_save_[0-9a-f]+")));
  EXPECT_NE(names[0], names[1]);
}

TEST_F(FilteredSave, ProjectThatIsCleanedMeanwhile_LeavesTheFormerFileAndNoOther) {
  WriteFormer();
  const FileState former(path_);
  const FilteredCalls calls([&](const SystemCall& call) {
    if (call.name == std::string("getentropy")) database_.CleanProjectDatabase();
    return 0;
  });
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_FALSE(database_.IsProjectDatabaseExist());
  EXPECT_EQ(FileState(path_), former);
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

/// What a save that is killed finds.
struct Situation {
  const char* name;
  bool has_former;
  bool has_link;
};

void PrintTo(const Situation& situation, std::ostream* out) { *out << situation.name; }

class KilledSave : public FilteredSave, public testing::WithParamInterface<Situation> {
 protected:
  void Prepare() const {
    std::filesystem::remove(path_);
    if (GetParam().has_former) WriteFormer();
  }

  /// Saves in another process, which is killed before a call, the first being number 1.
  /// @return false if the save came to its end before
  bool SaveAndKill(int number) {
    const std::string end = InChildProcess([&] {
      int count = 0;
      const FilteredCalls calls([&](const SystemCall&) {
        if (++count == number) std::raise(SIGKILL);
        return 0;
      });
      projectdb::ExportProjectDataDurably(database_, saved_path_);
      return "saved";
    });
    if (end == "saved") return false;
    EXPECT_EQ(end, " (child ended with status " + std::to_string(SIGKILL) + ")");
    return true;
  }

  const std::string saved_path_ = GetParam().has_link ? directory_ / "link.xml" : path_;
};

TEST_P(KilledSave, BeforeAnySystemCall_LeavesTheFormerOrTheNextProjectWhole) {
  if (GetParam().has_link) std::filesystem::create_symlink("p.xml", saved_path_);
  const std::string former = GetParam().has_former ? "former" : "nothing";
  std::map<std::string, int> found;
  for (int number = 1; Prepare(), SaveAndKill(number); ++number) ++found[Found(saved_path_)];
  EXPECT_THAT(found, testing::UnorderedElementsAre(testing::Pair(former, testing::Ge(4)),
                                                   testing::Pair("next", 1)));
  EXPECT_EQ(Found(saved_path_), "next");
}

INSTANTIATE_TEST_SUITE_P(Situations, KilledSave,
                         testing::Values(Situation{"over a file", true, false},
                                         Situation{"to a new path", false, false},
                                         Situation{"over a file behind a link", true, true},
                                         Situation{"behind a link to nowhere", false, true}));

}  // namespace
