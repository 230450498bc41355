#include <cerrno>
#include <csignal>
#include <filesystem>
#include <map>
#include <set>

#include <sys/stat.h>
#include <unistd.h>

#include "testing/access_list.h"
#include "testing/child_process.h"
#include "testing/filtered_calls.h"
#include "testing/project_loading.h"
#include "testing/saving.h"
#include "testing/test.h"

namespace {

using namespace test_support;
using namespace projectdb;
using projectdb::files::SystemCall;

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

/// One failing call, the first of that name or the first behind another one, and what the save then
/// comes to.
struct FailingCall {
  const char* call;
  const char* former;
  int error;
  bool fails = true;  ///< False if the save succeeds all the same.
  const char* found = fails ? "former" : "next";
};

TEST_F(FilteredSave, FailingCall_LeavesTheFormerFileOrTheNextAndNoOther) {
  const FailingCall cases[] = {{"getentropy", "", ENOSYS},
                               {"openat", "", EMFILE},
                               {"fchown", "", EDQUOT},
                               {"fchown", "getxattr", EIO},
                               {"getxattr", "", EIO},
                               {"fsetxattr", "", ENOSPC},
                               {"fremovexattr", "", EIO},
                               {"fchmod", "", EPERM},
                               {"fsync", "", EIO},
                               {"fsync", "", ENOSPC},
                               {"fsync", "", EINVAL},
                               {"renameat", "", EIO},
                               {"fsync", "renameat", EIO, true, "next"},
                               {"stat", "", EIO},
                               {"faccessat", "", EROFS},
                               {"readlink", "", EIO},
                               {"open", "", EMFILE},
                               {"write", "", ENOSPC},
                               {"close", "", EIO},
                               // A file that was left behind stays for the next save.
                               {"opendir", "", EMFILE, false},
                               {"readdir", "", EIO, false},
                               {"fsync", "", EINTR, false},
                               {"fsync", "renameat", EINTR, false},
                               // The file system cannot flush directories.
                               {"fsync", "renameat", EINVAL, false},
                               // The user namespace does not know the owner.
                               {"fchown", "getxattr", EINVAL, false},
                               // The file system has no access lists.
                               {"getxattr", "", ENOTSUP, false}};
  for (const FailingCall& failing : cases) {
    SCOPED_TRACE(std::string(failing.call) + " behind \"" + failing.former + "\" with errno " +
                 std::to_string(failing.error));
    std::filesystem::remove(path_);
    WriteFormer();
    const std::string name = failing.call;
    const bool is_of_permissions = name == "fchown" || name == "fsetxattr";
    if (is_of_permissions && !GiveFormerEveryPermission()) continue;  // Only root may do that.
    const FileState former(path_);
    bool is_made = false;
    const FilteredCalls calls(AtCallBehind(failing.former, name, [&] {
      is_made = true;
      return failing.error;
    }));
    EXPECT_EQ(SaveError(database_, path_), failing.fails ? WritingError(path_, failing.error) : "");
    EXPECT_TRUE(is_made);
    EXPECT_EQ(Found(path_), failing.found);
    EXPECT_EQ(FileState(path_) == former, failing.found == std::string("former"));
    EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  }
}

TEST_F(FilteredSave, SymbolicLinkThatCannotBeRead_StaysALink) {
  WriteFormer();
  const std::string link = directory_ / "link.xml";
  std::filesystem::create_symlink("p.xml", link);
  const FilteredCalls calls(FailCall("readlink", 1, EIO));
  EXPECT_EQ(SaveError(database_, link), WritingError(link, EIO));
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(Found(path_), "former");
}

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
  const FilteredCalls calls(FailCall("fchown", 1, EPERM));
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
  const std::set<std::string> names_of_steps = {"openat", "write", "fchmod", "fsync", "renameat"};
  WriteFormer();
  std::vector<std::string> steps;
  const FilteredCalls calls([&](const SystemCall& call) {
    if (names_of_steps.count(call.name) == 0) return 0;
    const std::filesystem::path file = FileOf(call);
    const bool is_temporary = file.filename() == TemporaryFileIn(directory_.path());
    const std::string name = is_temporary                ? "temporary"
                             : file == directory_.path() ? "directory"
                                                         : "none";
    steps.push_back(std::string(call.name) + ' ' + name + ", " + Found(path_));
    return 0;
  });
  EXPECT_EQ(SaveError(database_, path_), "");
  EXPECT_THAT(steps, ElementsAre("openat directory, former", "write temporary, former",
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
  EXPECT_THAT(names, Each(testing::MatchesRegex("\\.kel_save_[0-9a-f]{32}")));
  const std::set<std::string> random_numbers = {names[0].substr(10, 16), names[0].substr(26),
                                                names[1].substr(10, 16), names[1].substr(26)};
  EXPECT_EQ(random_numbers.size(), 4U);
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

class KilledSave : public FilteredSave {
 protected:
  /// Saves in another process, which is killed before a call, the first being number 1.
  /// @return false if the save came to its end before
  bool SaveAndKill(const std::string& path, int number) {
    const std::string end = InChildProcess([&] {
      int count = 0;
      const FilteredCalls calls([&](const SystemCall&) {
        if (++count == number) std::raise(SIGKILL);
        return 0;
      });
      ExportProjectDataDurably(database_, path);
      return "saved";
    });
    if (end == "saved") return false;
    EXPECT_EQ(end, " (child ended with status " + std::to_string(SIGKILL) + ")");
    return true;
  }
};

TEST_F(KilledSave, BeforeAnySystemCall_LeavesTheFormerOrTheNextProjectWhole) {
  const std::string link = directory_ / "link.xml";
  std::filesystem::create_symlink("p.xml", link);
  for (const bool has_former : {true, false}) {
    for (const std::string& path : {path_, link}) {
      SCOPED_TRACE(path + (has_former ? " over a file" : " where no file is"));
      const auto prepare = [&] {
        for (const std::string& name : NamesIn(directory_.path())) {
          if (name != "link.xml") std::filesystem::remove(directory_ / name);
        }
        if (has_former) WriteFormer();
      };
      std::map<std::string, int> found;
      for (int number = 1; prepare(), SaveAndKill(path, number); ++number) ++found[Found(path)];
      const std::string former = has_former ? "former" : "nothing";
      EXPECT_THAT(
          found, UnorderedElementsAre(Pair(former, testing::Ge(15)), Pair("next", testing::Ge(2))));
      EXPECT_EQ(Found(path), "next");
    }
  }
}

}  // namespace
