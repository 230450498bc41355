#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <projectdb/durable_export.h>
#include <projectdb/project_db.h>

#include "testing/access_list.h"
#include "testing/child_process.h"
#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/project_loading.h"
#include "testing/sanitizers.h"
#include "testing/saving.h"
#include "testing/temporary_directory.h"
#include "testing/xml_tree.h"

namespace {

using projectdb::ExportProjectDataDurably;
using projectdb::GetProjectContents;
using projectdb::KelProjectDatabase;
using projectdb::Parameter;
using projectdb::ParameterMap;
using projectdb::ProjectContents;
using namespace test_support;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

using namespace std::string_literals;

std::string NameInFile(const std::string& path) { return ReadXmlFile(path).attributes.at("name"); }

class DurableExport : public testing::Test {
 protected:
  DurableExport() { database_.CreateNewProjectDatabase("next"); }

  /// Puts the project file of another project there.
  void WriteFormer(const std::string& path) const {
    KelProjectDatabase former;
    former.CreateNewProjectDatabase("former");
    former.ExportProjectData(path);
  }

  const MessageRecorder recorder_;
  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "p.xml";
  KelProjectDatabase database_;
};

// What is written.

TEST_F(DurableExport, NewPath_HoldsTheWholeProject) {
  Loading loading;
  ASSERT_TRUE(loading.LoadBytes(CompleteProjectXml()));
  ExportProjectDataDurably(loading.database, path_);
  KelProjectDatabase loaded;
  ASSERT_TRUE(loaded.LoadProjectData(path_, ""));
  EXPECT_THAT(DifferencesButStamps(CompleteProject(directory_.path()), GetProjectContents(loaded)),
              IsEmpty());
}

TEST_F(DurableExport, ExistingFileThatIsLonger_LeavesNothingOfIt) {
  WriteFile(path_, std::string(1000000, 'x'));
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(NameInFile(path_), "next");
}

TEST_F(DurableExport, ExistingFileThatIsOpen_StaysAsItWasForItsReader) {
  WriteFile(path_, "former");
  std::ifstream reader(path_);
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), "former");
}

TEST_F(DurableExport, ExistingFileOfTwoNames_KeepsItsContentUnderTheOther) {
  WriteFile(path_, "former");
  std::filesystem::create_hard_link(path_, directory_ / "other.xml");
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(ReadFile(directory_ / "other.xml"), "former");
}

TEST_F(DurableExport, LeavesNoOtherFileNoMessageAndTheProjectAsItWas) {
  WriteFormer(path_);
  const ProjectContents before = GetProjectContents(database_);
  ExportProjectDataDurably(database_, path_);
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  EXPECT_THAT(recorder_.messages(), IsEmpty());
  EXPECT_THAT(AllDifferences(before, database_), IsEmpty());
}

TEST_F(DurableExport, RelativePath_IsInTheWorkingDirectory) {
  const WorkingDirectory working_directory(directory_.path());
  ExportProjectDataDurably(database_, "p.xml");
  EXPECT_EQ(NameInFile(path_), "next");
}

TEST_F(DurableExport, NameOfAnyBytesOrTheLongest_IsWritten) {
  for (const std::string& path :
       {directory_ / "gr\xFCn \x01\n.xml", directory_ / (std::string(251, 'n') + ".xml")}) {
    ExportProjectDataDurably(database_, path);
    EXPECT_EQ(NameInFile(path), "next");
  }
}

TEST_F(DurableExport, NoProject_CreatesNoFileAndLeavesTheOneThatIsThere) {
  EXPECT_EQ(SaveError(KelProjectDatabase(), path_), "");
  EXPECT_EQ(SaveError(KelProjectDatabase(), directory_ / "missing/p.xml"), "");
  EXPECT_THAT(NamesIn(directory_.path()), IsEmpty());
  WriteFormer(path_);
  const FileState former(path_);
  ExportProjectDataDurably(KelProjectDatabase(), path_);
  EXPECT_EQ(FileState(path_), former);
}

TEST_F(DurableExport, EmptyPath_CreatesNoFile) {
  const WorkingDirectory working_directory(directory_.path());
  ExportProjectDataDurably(database_, "");
  EXPECT_THAT(NamesIn(directory_.path()), IsEmpty());
}

TEST_F(DurableExport, SeveralThreadsToOnePath_LeaveOneWholeProjectAndNothingElse) {
  KelProjectDatabase other;
  other.CreateNewProjectDatabase("other");
  for (int i = 0; i < 2000; ++i) other.AddMiscellaneousFile("notes_" + std::to_string(i));
  const auto save = [this](const KelProjectDatabase& database) {
    for (int round = 0; round < 20; ++round) ExportProjectDataDurably(database, path_);
  };
  WriteFormer(path_);
  auto first = std::async(std::launch::async, save, std::cref(database_));
  auto second = std::async(std::launch::async, save, std::cref(other));
  first.get();
  second.get();
  KelProjectDatabase loaded;
  ASSERT_TRUE(loaded.LoadProjectData(path_, ""));
  const KelProjectDatabase& last = loaded.GetProjectName() == "other" ? other : database_;
  loaded.SetProjectCurrentPath(last.GetProjectCurrentPath());
  EXPECT_THAT(DifferencesButStamps(GetProjectContents(last), GetProjectContents(loaded)),
              IsEmpty());
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

TEST_F(DurableExport, ReaderDuringSaves_SeesAWholeProjectEveryTime) {
  WriteFormer(path_);
  std::atomic<bool> done = false;
  auto saving = std::async(std::launch::async, [&] {
    for (int round = 0; round < 50; ++round) ExportProjectDataDurably(database_, path_);
    done = true;
  });
  do {
    KelProjectDatabase loaded;
    EXPECT_TRUE(loaded.LoadProjectData(path_, ""));
    EXPECT_THAT(loaded.GetProjectName(), testing::AnyOf("former", "next"));
  } while (!done);
  saving.get();
}

// Permissions.

/// Sets the process's mask of permissions for as long as it lives.
class Umask {
 public:
  explicit Umask(mode_t mask) : former_(::umask(mask)) {}
  ~Umask() { ::umask(former_); }
  Umask(const Umask&) = delete;
  Umask& operator=(const Umask&) = delete;

 private:
  mode_t former_;
};

TEST_F(DurableExport, ExistingFile_KeepsItsPermissions) {
  const Umask umask(027);
  WriteFormer(path_);
  for (const mode_t mode : {0600U, 0606U, 0640U, 0644U, 0660U, 0666U, 0755U, 0777U}) {
    SetMode(path_, mode);
    ExportProjectDataDurably(database_, path_);
    EXPECT_EQ(NameInFile(path_), "next");
    EXPECT_EQ(ModeOf(path_), mode);
  }
}

TEST_F(DurableExport, NewFile_HasThePermissionsOfAnyNewFile) {
  for (const mode_t mask : {0U, 002U, 022U, 027U, 066U, 077U}) {
    const Umask umask(mask);
    std::filesystem::remove(path_);
    ExportProjectDataDurably(database_, path_);
    EXPECT_EQ(ModeOf(path_), 0666U & ~mask);
  }
}

TEST_F(DurableExport, ExistingFileWithAccessList_KeepsIt) {
  WriteFormer(path_);
  if (!SetAccessList(path_, kAccessList, AccessListFor(4711))) {
    GTEST_SKIP() << "no access control lists here";
  }
  const std::string list = AccessListOf(path_);
  const mode_t mode = ModeOf(path_);
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(AccessListOf(path_), list);
  EXPECT_EQ(ModeOf(path_), mode);
}

TEST_F(DurableExport, ExistingFileWithoutAccessList_GetsNoneFromItsDirectory) {
  WriteFormer(path_);
  SetMode(path_, 0660);
  if (!SetAccessList(directory_.path(), kAccessListOfNewFiles, AccessListFor(4711))) {
    GTEST_SKIP() << "no access control lists here";
  }
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(AccessListOf(path_), "");
  EXPECT_EQ(ModeOf(path_), 0660U);
}

TEST_F(DurableExport, NewFile_GetsTheAccessListOfItsDirectory) {
  if (!SetAccessList(directory_.path(), kAccessListOfNewFiles, AccessListFor(4711))) {
    GTEST_SKIP() << "no access control lists here";
  }
  WriteFormer(directory_ / "plain.xml");
  ExportProjectDataDurably(database_, path_);
  EXPECT_NE(AccessListOf(path_), "");
  EXPECT_EQ(AccessListOf(path_), AccessListOf(directory_ / "plain.xml"));
}

constexpr uid_t kNobody = 65534;

void GiveTo(const std::string& path, uid_t owner, gid_t group) {
  if (::chown(path.c_str(), owner, group) != 0) throw std::runtime_error("cannot give " + path);
}

/// Runs work in a child of its own without the rights of root.
template <typename Work>
std::string AsOrdinaryUser(Work work) {
  return InChildProcess([&]() -> std::string {
    if (::geteuid() == 0 &&
        (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) {
      return "root cannot give up its rights";
    }
    return work();
  });
}

TEST_F(DurableExport, ExistingFileOfAnotherOwner_KeepsOwnerAndGroupIfThatIsPermitted) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root may give files away";
  WriteFormer(path_);
  GiveTo(path_, 4711, 4712);
  SetMode(path_, 0640);
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(StatusOf(path_).st_uid, 4711U);
  EXPECT_EQ(StatusOf(path_).st_gid, 4712U);
  EXPECT_EQ(ModeOf(path_), 0640U);
}

TEST_F(DurableExport, ExistingFileOfAnotherGroup_LosesThePrivilegesOfOneThatIsNotPermitted) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root may give files away";
  GiveTo(directory_.path(), kNobody, kNobody);
  const std::pair<mode_t, mode_t> cases[] = {{0600, 0600}, {0640, 0600}, {0660, 0600},
                                             {0664, 0644}, {0604, 0604}, {0666, 0666}};
  for (const auto& [former, reduced] : cases) {
    WriteFormer(path_);
    GiveTo(path_, kNobody, 4712);
    SetMode(path_, former);
    EXPECT_EQ(AsOrdinaryUser([&] { return SaveError(database_, path_); }), "");
    EXPECT_EQ(NameInFile(path_), "next");
    EXPECT_EQ(StatusOf(path_).st_gid, kNobody);
    EXPECT_EQ(ModeOf(path_), reduced) << "from " << former;
  }
}

TEST_F(DurableExport, ExistingFileOfAnotherOwner_IsReplacedWhereOnlyItsOwnerIsNotPermitted) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root may give files away";
  WriteFormer(path_);
  GiveTo(directory_.path(), kNobody, kNobody);
  GiveTo(path_, 4711, kNobody);
  SetMode(path_, 0660);
  EXPECT_EQ(AsOrdinaryUser([&] { return SaveError(database_, path_); }), "");
  EXPECT_EQ(NameInFile(path_), "next");
  EXPECT_EQ(ModeOf(path_), 0660U);
}

// Symbolic links.

class DurableExportThroughLink : public DurableExport {
 protected:
  DurableExportThroughLink() {
    std::filesystem::create_directory(directory_ / "target");
    std::filesystem::create_directory(directory_ / "links");
  }

  static void Link(const std::string& target, const std::string& link) {
    std::filesystem::create_symlink(target, link);
  }

  /// Saves to the link and checks that only what it leads to has changed.
  void ExpectSavedThroughLink() const {
    const std::vector<std::string> links = NamesIn(directory_ / "links");
    ExportProjectDataDurably(database_, link_);
    EXPECT_EQ(NameInFile(target_), "next");
    EXPECT_TRUE(std::filesystem::is_symlink(link_));
    EXPECT_EQ(NamesIn(directory_ / "links"), links);
    EXPECT_THAT(NamesIn(directory_ / "target"), ElementsAre("p.xml"));
  }

  const std::string target_ = directory_ / "target/p.xml";
  const std::string link_ = directory_ / "links/l.xml";
};

TEST_F(DurableExportThroughLink, Link_ReplacesItsTargetWithItsPermissions) {
  for (const std::string& target : {target_, std::string("../target/p.xml")}) {
    WriteFormer(target_);
    SetMode(target_, 0600);
    std::filesystem::remove(link_);
    Link(target, link_);
    ExpectSavedThroughLink();
    EXPECT_EQ(ModeOf(target_), 0600U);
  }
}

TEST_F(DurableExportThroughLink, RelativeLinkInALinkedDirectory_IsRelativeToTheRealDirectory) {
  WriteFormer(target_);
  Link("../target/p.xml", link_);
  std::filesystem::create_directories(directory_ / "far/away");
  std::filesystem::create_directory_symlink("../../links", directory_ / "far/away/linked");
  ExportProjectDataDurably(database_, directory_ / "far/away/linked/l.xml");
  EXPECT_EQ(NameInFile(target_), "next");
}

TEST_F(DurableExportThroughLink, RelativeLinkInTheWorkingDirectory_ReplacesItsTarget) {
  WriteFormer(target_);
  Link("../target/p.xml", link_);
  const WorkingDirectory working_directory(directory_ / "links");
  ExportProjectDataDurably(database_, "l.xml");
  EXPECT_EQ(NameInFile(target_), "next");
}

TEST_F(DurableExportThroughLink, DanglingLink_CreatesItsTarget) {
  Link(target_, link_);
  ExpectSavedThroughLink();
}

TEST_F(DurableExportThroughLink, DanglingChainOfRelativeLinks_CreatesTheLastTarget) {
  Link("../target/p.xml", directory_ / "links/2.xml");
  Link("2.xml", link_);
  ExpectSavedThroughLink();
}

TEST_F(DurableExportThroughLink, AsManyLinksAsTheSystemFollows_ReplacesTheLastTarget) {
  WriteFormer(target_);
  std::string next = target_;
  for (int number = 1; number < 40; ++number) {
    const std::string link = directory_ / ("links/" + std::to_string(number));
    Link(next, link);
    next = link;
  }
  Link(next, link_);
  ExpectSavedThroughLink();
}

TEST_F(DurableExportThroughLink, Loop_IsAnError) {
  Link("2.xml", link_);
  Link("l.xml", directory_ / "links/2.xml");
  EXPECT_EQ(SaveError(database_, link_), WritingError(link_, "Too many levels of symbolic links"));
  EXPECT_THAT(NamesIn(directory_ / "links"), ElementsAre("2.xml", "l.xml"));
}

TEST_F(DurableExportThroughLink, LinkIntoAMissingDirectory_IsAnErrorAndStays) {
  Link("../missing/p.xml", link_);
  EXPECT_EQ(SaveError(database_, link_), WritingError(link_, "No such file or directory"));
  EXPECT_EQ(std::filesystem::read_symlink(link_), "../missing/p.xml");
}

// Paths that cannot be written.

struct BadPath {
  const char* name;
  std::string path;  ///< In the directory.
  std::string reason;
};

void PrintTo(const BadPath& bad_path, std::ostream* out) { *out << bad_path.name; }

class DurableExportToBadPath : public DurableExport, public testing::WithParamInterface<BadPath> {
 protected:
  DurableExportToBadPath() {
    std::filesystem::create_directory(directory_ / "directory");
    WriteFile(directory_ / "file", "former");
    if (::mkfifo((directory_ / "pipe").c_str(), 0600) != 0) throw std::runtime_error("no pipe");
    std::filesystem::create_symlink("directory", directory_ / "link_to_directory");
    std::filesystem::create_symlink("pipe", directory_ / "link_to_pipe");
  }

  const std::string bad_path_ = directory_ / GetParam().path;
};

TEST_P(DurableExportToBadPath, IsAnErrorWithTheReasonOfTheSystemAndChangesNothing) {
  const std::vector<std::string> names = NamesIn(directory_.path());
  // An exception's text ends at a zero.
  EXPECT_STREQ(SaveError(database_, bad_path_).c_str(),
               WritingError(bad_path_, GetParam().reason).c_str());
  EXPECT_EQ(NamesIn(directory_.path()), names);
  EXPECT_TRUE(std::filesystem::is_empty(directory_ / "directory"));
  EXPECT_EQ(ReadFile(directory_ / "file"), "former");
  EXPECT_TRUE(std::filesystem::is_fifo(directory_ / "pipe"));
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(NameInFile(path_), "next");
}

INSTANTIATE_TEST_SUITE_P(
    Paths, DurableExportToBadPath,
    testing::Values(BadPath{"missing directory", "missing/p.xml", "No such file or directory"},
                    BadPath{"missing directory at the end", "missing/",
                            "No such file or directory"},
                    BadPath{"a directory", "directory", "Is a directory"},
                    BadPath{"a directory with a slash", "directory/", "Is a directory"},
                    BadPath{"this directory", "directory/.", "Is a directory"},
                    BadPath{"a file as a directory", "file/p.xml", "Not a directory"},
                    BadPath{"a file with a slash", "file/", "Not a directory"},
                    BadPath{"NUL in the name", "p.xml\0.xml"s, "Invalid argument"},
                    BadPath{"name too long", std::string(256, 'n'), "File name too long"},
                    BadPath{"a pipe", "pipe", "not a regular file"},
                    BadPath{"a link to a pipe", "link_to_pipe", "not a regular file"},
                    BadPath{"a link to a directory", "link_to_directory", "Is a directory"}));

TEST_F(DurableExport, RelativePathInARemovedDirectory_IsAnError) {
  const WorkingDirectory former(directory_.path());
  std::filesystem::create_directory("removed");
  std::filesystem::current_path("removed");
  std::filesystem::remove(directory_ / "removed");
  EXPECT_EQ(SaveError(database_, "p.xml"), WritingError("p.xml", "No such file or directory"));
}

// A device of the test's own: a save that goes wrong must not replace one of the machine's.
TEST_F(DurableExport, Device_IsAnErrorAndStaysADevice) {
  constexpr unsigned kMemoryDevices = 1;
  constexpr unsigned kFull = 7;
  if (::mknod(path_.c_str(), S_IFCHR | 0600, makedev(kMemoryDevices, kFull)) != 0) {
    GTEST_SKIP() << "no device can be made here";
  }
  EXPECT_EQ(SaveError(database_, path_), WritingError(path_, "not a regular file"));
  EXPECT_TRUE(std::filesystem::is_character_file(path_));
}

// Text that no file can hold.

TEST_F(DurableExport, TextThatNoFileCanHold_IsTheErrorOfAnExportToThatPath) {
  database_.SetProjectName("broken\x01");
  std::string export_error;
  try {
    database_.ExportProjectData(path_);
  } catch (const std::runtime_error& error) {
    export_error = error.what();
  }
  ASSERT_THAT(export_error, StartsWith("Failed writing XML file " + path_ + ": "));
  EXPECT_EQ(SaveError(database_, path_), export_error);
  EXPECT_THAT(NamesIn(directory_.path()), IsEmpty());
}

TEST_F(DurableExport, TextThatNoFileCanHold_LeavesTheFileThatIsThereUntilItIsCorrected) {
  WriteFormer(path_);
  const FileState former(path_);
  database_.SetProjectName("\xFF");
  EXPECT_NE(SaveError(database_, path_), "");
  EXPECT_EQ(FileState(path_), former);
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  database_.SetProjectName("corrected");
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(NameInFile(path_), "corrected");
}

// Projects that a load would read as another.

/// Something that no adding operation brings into a project.
struct ForeignChange {
  std::string name;
  std::string reason;  ///< What the save says of it.
  std::function<void(KelProjectDatabase&)> apply;
};

void PrintTo(const ForeignChange& change, std::ostream* out) { *out << change.name; }

ParameterMap& DebuggerParameters(KelProjectDatabase& database) {
  return *database.AddFlowProcessParameterMap(projectdb::e_debugger, "param");
}

std::vector<ForeignChange> ForeignChanges() {
  std::vector<ForeignChange> changes = {
      {"parameter inserted under another key",
       "the parameter \"name\" is stored under the name \"key\"",
       [](auto& db) {
         KelProjectDatabase::InsertOrAssignParameterToMap(
             DebuggerParameters(db), "key", Parameter("name", "v", projectdb::e_string));
       }},
      {"parameter renamed under its key", "the parameter \"q\" is stored under the name \"p\"",
       [](auto& db) {
         db.AddDebuggerParameter("p", "v", projectdb::e_string);
         DebuggerParameters(db).at("p").name = "q";
       }}};
  for (const int type : {0, 1, 2, 3, 4, 7}) {
    changes.push_back({"unfit value of type " + std::to_string(type),
                       "the parameter \"p\" has a value that does not go with its type",
                       [type](auto& db) {
                         const char* const value = type == projectdb::e_noarg ? "on" : "";
                         DebuggerParameters(db).emplace(
                             "p", Parameter("p", value, projectdb::ParameterType(type)));
                       }});
  }
  for (const char* name : {"debugger", "device_info", "design_info", "constraint_info", "isf_info",
                           "sim_info", "misc_info", "ip_info"}) {
    changes.push_back({std::string("synthesis named ") + name,
                       "the flow process \"synthesis\" is named \"" + std::string(name) + "\"",
                       [name](auto& db) { db.SetFlowProcessName(projectdb::e_synthesis, name); }});
  }
  return changes;
}

class DurableExportOfForeign : public DurableExport,
                               public testing::WithParamInterface<ForeignChange> {};

TEST_P(DurableExportOfForeign, IsAnErrorThatTellsItAndLeavesTheFileThatIsThere) {
  WriteFormer(path_);
  const FileState former(path_);
  GetParam().apply(database_);
  EXPECT_EQ(SaveError(database_, path_), WritingError(path_, GetParam().reason));
  EXPECT_EQ(FileState(path_), former);
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  EXPECT_NO_THROW(database_.ExportProjectData(path_));
  EXPECT_EQ(NameInFile(path_), "next");
}

INSTANTIATE_TEST_SUITE_P(Changes, DurableExportOfForeign, testing::ValuesIn(ForeignChanges()));

TEST_F(DurableExport, ProcessesWithoutNames_AreWrittenUnderTheirOwn) {
  KelProjectDatabase unnamed;
  unnamed.SetupProjectDatabase();
  unnamed.AddDebuggerParameter("p", "v", projectdb::e_string);
  ExportProjectDataDurably(unnamed, path_);
  KelProjectDatabase loaded;
  ASSERT_TRUE(loaded.LoadProjectData(path_, ""));
  EXPECT_EQ(loaded.GetDebuggerParameterValue("p"), "v");
}

// Refused and failing file systems. The former file is there in all of these.

class FailingDurableExport : public DurableExport {
 protected:
  FailingDurableExport() { WriteFormer(path_); }

  /// What a save ends in; "" if it succeeds. Throws if it fails and changes the former file or
  /// leaves another one.
  std::string SaveErrorWithoutTrace() {
    const FileState former(path_);
    const std::vector<std::string> names = NamesIn(directory_.path());
    std::string error = SaveError(database_, path_);
    if (!error.empty() && !(FileState(path_) == former)) {
      throw std::runtime_error("the former file was changed");
    }
    if (NamesIn(directory_.path()) != names) throw std::runtime_error("a file was left");
    return error;
  }

  void AddManyFiles() {
    for (int i = 0; i < 10000; ++i) database_.AddMiscellaneousFile("notes_" + std::to_string(i));
  }

  std::size_t SizeOfNext() const {
    const TemporaryDirectory directory;
    database_.ExportProjectData(directory / "p.xml");
    return static_cast<std::size_t>(std::filesystem::file_size(directory / "p.xml"));
  }
};

TEST_F(FailingDurableExport, DirectoryThatIsNotWritable_IsAnErrorAndLeavesTheFormerFile) {
  SetMode(path_, 0666);
  SetMode(directory_.path(), 0555);
  EXPECT_EQ(AsOrdinaryUser([&] { return SaveErrorWithoutTrace(); }),
            WritingError(path_, "Permission denied"));
  SetMode(directory_.path(), 0700);
}

TEST_F(FailingDurableExport, DirectoryThatCannotBeSearched_IsAnError) {
  SetMode(directory_.path(), 0666);
  EXPECT_EQ(AsOrdinaryUser([&] { return SaveError(database_, path_); }),
            WritingError(path_, "Permission denied"));
  SetMode(directory_.path(), 0700);
}

TEST_F(FailingDurableExport, FileThatIsProtectedAgainstWriting_IsAnErrorAndStays) {
  SetMode(path_, 0444);
  SetMode(directory_.path(), 0777);
  EXPECT_EQ(AsOrdinaryUser([&] { return SaveErrorWithoutTrace(); }),
            WritingError(path_, "Permission denied"));
}

/// Saves under each limit of the file's size. @return the errors, one for each line
std::string SaveUnderSizeLimits(const std::vector<std::size_t>& limits,
                                const std::function<std::string()>& save) {
  return InChildProcess([&] {
    std::string errors;
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    for (const std::size_t size : limits) {
      limit.rlim_cur = size;
      if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) throw std::runtime_error("setrlimit failed");
      errors += save();
    }
    return errors;
  });
}

std::string Repeated(const std::string& text, std::size_t count) {
  std::string repeated;
  while (count-- > 0) repeated += text;
  return repeated;
}

TEST_F(FailingDurableExport, FileSizeLimitBelowTheWhole_IsAnErrorAndLeavesTheFormerFile) {
  std::vector<std::size_t> limits(SizeOfNext());
  for (std::size_t size = 0; size < limits.size(); ++size) limits[size] = size;
  EXPECT_EQ(SaveUnderSizeLimits(limits, [&] { return SaveErrorWithoutTrace(); }),
            Repeated(WritingError(path_, "File too large"), limits.size()));
  AddManyFiles();
  const std::size_t size = SizeOfNext();
  limits = {0, 1, 4096, 262143, 262144, 262145, size / 2, size - 1};
  EXPECT_EQ(SaveUnderSizeLimits(limits, [&] { return SaveErrorWithoutTrace(); }),
            Repeated(WritingError(path_, "File too large"), limits.size()));
  EXPECT_EQ(SaveUnderSizeLimits({size}, [&] { return SaveErrorWithoutTrace(); }), "");
  EXPECT_EQ(NameInFile(path_), "next");
}

/// Runs work while the process may have so many files open.
template <typename Work>
std::string WithOpenFileLimit(rlim_t files, Work work) {
  rlimit former{};
  ::getrlimit(RLIMIT_NOFILE, &former);
  rlimit limit = former;
  limit.rlim_cur = files;
  ::setrlimit(RLIMIT_NOFILE, &limit);
  std::string result = work();
  ::setrlimit(RLIMIT_NOFILE, &former);
  return result;
}

TEST_F(FailingDurableExport, TooFewFilesMayBeOpen_IsAnErrorAndLeavesTheFormerFile) {
  if (kSanitized) GTEST_SKIP() << "the sanitizer needs files of its own";
  const FileState former(path_);
  int failures = 0;
  for (rlim_t files = 0; files < 1000; ++files) {
    const std::string error = WithOpenFileLimit(files, [&] { return SaveError(database_, path_); });
    if (error.empty()) break;
    ++failures;
    ASSERT_EQ(error, WritingError(path_, "Too many open files"));
    ASSERT_EQ(FileState(path_), former);
    ASSERT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  }
  EXPECT_EQ(NameInFile(path_), "next");
  EXPECT_GE(failures, 3);
}

/// Does the work in a process that alone sees a small file system in the place of a directory.
/// @return the work's text; "cannot mount" if there is none
std::string WithFileSystem(const std::filesystem::path& directory, const char* options,
                           const std::function<std::string()>& work) {
  return InChildProcess([&]() -> std::string {
    const bool mounted = ::unshare(CLONE_NEWNS) == 0 &&
                         ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                         ::mount("tmpfs", directory.c_str(), "tmpfs", 0, options) == 0;
    return mounted ? work() : "cannot mount";
  });
}

TEST_F(FailingDurableExport, FullFileSystem_IsAnErrorHoweverMuchFitsAndLeavesTheFormerFile) {
  AddManyFiles();
  constexpr std::size_t kBlock = 4096;
  const std::size_t whole = SizeOfNext() / kBlock;
  const std::vector<std::size_t> rooms = {0, 1, 2, whole / 2, whole - 1, whole};
  const std::string errors = WithFileSystem(directory_.path(), "size=1m", [&] {
    WriteFormer(path_);
    const std::size_t free = std::filesystem::space(directory_.path()).available / kBlock;
    std::string text;
    for (const std::size_t room : rooms) {
      std::ofstream(directory_ / "filler") << std::string((free - room) * kBlock, 'x');
      text += SaveErrorWithoutTrace();
    }
    return text;
  });
  if (errors == "cannot mount") GTEST_SKIP() << errors;
  EXPECT_EQ(errors, Repeated(WritingError(path_, "No space left on device"), rooms.size()));
}

/// A file system that refuses a save.
struct RefusingFileSystem {
  const char* name;
  const char* options;
  /// Makes it refuse; it already holds the former file. @return whether that can be done
  bool (*refuse)(const std::string& directory);
  const char* reason;
};

void PrintTo(const RefusingFileSystem& system, std::ostream* out) { *out << system.name; }

class DurableExportToRefusing : public FailingDurableExport,
                                public testing::WithParamInterface<RefusingFileSystem> {};

TEST_P(DurableExportToRefusing, IsAnErrorAndLeavesTheFormerFile) {
  const std::string error = WithFileSystem(directory_.path(), GetParam().options, [&] {
    WriteFormer(path_);
    return GetParam().refuse(directory_.path()) ? SaveErrorWithoutTrace() : "cannot mount";
  });
  if (error == "cannot mount") GTEST_SKIP() << error;
  EXPECT_EQ(error, WritingError(path_, GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(
    FileSystems, DurableExportToRefusing,
    testing::Values(RefusingFileSystem{"no room for another name", "nr_inodes=2",
                                       [](const std::string&) { return true; },
                                       "No space left on device"},
                    RefusingFileSystem{"read-only", nullptr,
                                       [](const std::string& directory) {
                                         return ::mount(nullptr, directory.c_str(), nullptr,
                                                        MS_REMOUNT | MS_RDONLY, nullptr) == 0;
                                       },
                                       "Read-only file system"},
                    RefusingFileSystem{"the file is a mount point", nullptr,
                                       [](const std::string& directory) {
                                         const std::string other = directory + "/other.xml";
                                         WriteFile(other, ReadFile(directory + "/p.xml"));
                                         return ::mount(other.c_str(),
                                                        (directory + "/p.xml").c_str(), nullptr,
                                                        MS_BIND, nullptr) == 0;
                                       },
                                       "Device or resource busy"}));

TEST_F(FailingDurableExport, NewFileOnAReadOnlyFileSystem_IsAnError) {
  const std::string path = directory_ / "new.xml";
  const std::string error =
      WithFileSystem(directory_.path(), "ro", [&] { return SaveError(database_, path); });
  if (error == "cannot mount") GTEST_SKIP() << error;
  EXPECT_EQ(error, WritingError(path, "Read-only file system"));
}

}  // namespace
