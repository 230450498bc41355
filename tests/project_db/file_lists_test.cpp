#include <filesystem>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/temporary_directory.h"

namespace {

using projectdb::DesignFile;
using projectdb::IP;
using projectdb::KelProjectDatabase;
using test_support::TemporaryDirectory;
using test_support::WorkingDirectory;
using testing::ElementsAre;
using testing::IsEmpty;

using Strings = std::vector<std::string>;

/// A design file in a form that compares.
using Row = std::tuple<std::string, std::string, std::string>;

std::vector<Row> RowsOf(const std::vector<DesignFile>& files) {
  std::vector<Row> rows;
  rows.reserve(files.size());
  for (const DesignFile& file : files) rows.emplace_back(file.name, file.version, file.library);
  return rows;
}

std::vector<Row> DesignFiles(const KelProjectDatabase& database) {
  std::vector<DesignFile> files;
  database.GetDesignFileList(files);
  return RowsOf(files);
}

/// A list of files whose getter delivers resolved names.
struct PathList {
  const char* name;
  std::function<void(KelProjectDatabase&, const std::string&)> add;
  std::function<void(const KelProjectDatabase&, Strings&)> append_to;
  bool takes_any_name;  ///< Or only UTF-8 that ends in ".sdc".
};

const std::vector<PathList>& PathLists() {
  static const std::vector<PathList> lists = {
      {"Design",
       [](KelProjectDatabase& database, const std::string& name) {
         database.AddDesignRTLFile(name, "v2001", "work");
       },
       [](const KelProjectDatabase& database, Strings& names) {
         std::vector<DesignFile> files;
         for (const std::string& name : names) files.emplace_back(name, "", "");
         const auto keep = [&] {
           names.clear();
           for (const DesignFile& file : files) names.push_back(file.name);
         };
         try {
           database.GetDesignFileList(files);
         } catch (...) {
           keep();
           throw;
         }
         keep();
       },
       true},
      {"SimulationTestBench",
       [](KelProjectDatabase& database, const std::string& name) {
         database.AddSimulationTestBenchFile(name, "v2001");
       },
       [](const KelProjectDatabase& database, Strings& names) {
         database.GetSimulationTestBenchFileList(names);
       },
       true},
      {"Miscellaneous",
       [](KelProjectDatabase& database, const std::string& name) {
         database.AddMiscellaneousFile(name);
       },
       [](const KelProjectDatabase& database, Strings& names) {
         database.GetMiscellaneousFileList(names);
       },
       true},
      {"TimingConstraint",
       [](KelProjectDatabase& database, const std::string& name) {
         ASSERT_TRUE(database.AddTimingConstraintFile(name)) << name;
       },
       [](const KelProjectDatabase& database, Strings& names) {
         database.GetTimingConstraintFileList(names);
       },
       false},
  };
  return lists;
}

class PathListTest : public testing::TestWithParam<PathList> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker"));
    database_.SetProjectCurrentPath("/work/proj");
  }

  void Add(const std::string& name) { GetParam().add(database_, name); }
  Strings List() const {
    Strings names;
    GetParam().append_to(database_, names);
    return names;
  }
  /// The only entry of a list to which the name is added.
  std::string Resolved(const std::string& name) {
    Add(name);
    const Strings names = List();
    return names.empty() ? "nothing" : names.back();
  }

  KelProjectDatabase database_;
};

struct Resolution {
  const char* stored;
  const char* delivered;
};

TEST_P(PathListTest, Get_NameStored_IsResolvedAgainstTheProjectDirectory) {
  constexpr Resolution kCases[] = {
      {"src/top.sdc", "/work/proj/src/top.sdc"},
      {"top.sdc", "/work/proj/top.sdc"},
      {"../common/x.sdc", "/work/proj/../common/x.sdc"},
      {"./x.sdc", "/work/proj/./x.sdc"},
      {"a/./b/../c.sdc", "/work/proj/a/./b/../c.sdc"},
      {"a//b.sdc", "/work/proj/a//b.sdc"},
      {"/lib/x.sdc", "/lib/x.sdc"},
      {"/x.sdc", "/x.sdc"},
      {"/lib/../x.sdc", "/lib/../x.sdc"},
      {"größe/数.sdc", "/work/proj/größe/数.sdc"},
      {"two words.sdc", "/work/proj/two words.sdc"},
      {"a\\b.sdc", "/work/proj/a\\b.sdc"},
      {"C:/lib/x.sdc", "/work/proj/C:/lib/x.sdc"},
      {"~/x.sdc", "/work/proj/~/x.sdc"},
      {"$HOME/x.sdc", "/work/proj/$HOME/x.sdc"},
  };
  for (const auto& [stored, delivered] : kCases) EXPECT_EQ(Resolved(stored), delivered);
}

TEST_P(PathListTest, Get_ProjectDirectoryInSomeForm_IsTakenAsItIs) {
  constexpr Resolution kCases[] = {
      {"/work/proj/", "/work/proj/x.sdc"},
      {"/", "/x.sdc"},
      {"/work/../proj", "/work/../proj/x.sdc"},
      {"/größe", "/größe/x.sdc"},
  };
  Add("x.sdc");
  for (const auto& [directory, delivered] : kCases) {
    database_.SetProjectCurrentPath(directory);
    EXPECT_THAT(List(), ElementsAre(delivered));
  }
}

TEST_P(PathListTest, Get_ProjectDirectoryChangedLater_IsResolvedAgainstTheNewOne) {
  Add("src/top.sdc");
  database_.SetProjectCurrentPath("/elsewhere");
  EXPECT_THAT(List(), ElementsAre("/elsewhere/src/top.sdc"));
}

TEST_P(PathListTest, Get_ProjectDirectoryEmpty_IsResolvedAgainstTheWorkingDirectory) {
  const TemporaryDirectory directory;
  const WorkingDirectory working_directory(directory.path());
  database_.SetProjectCurrentPath("");
  EXPECT_EQ(Resolved("src/top.sdc"), (std::filesystem::current_path() / "src/top.sdc").string());
}

TEST_P(PathListTest, Get_ProjectDirectoryRelative_IsResolvedAgainstTheWorkingDirectory) {
  const TemporaryDirectory directory;
  const WorkingDirectory working_directory(directory.path());
  database_.SetProjectCurrentPath("proj");
  EXPECT_EQ(Resolved("top.sdc"), (std::filesystem::current_path() / "proj/top.sdc").string());
}

TEST_P(PathListTest, Get_ProjectDirectoryRelativeAndNameAbsolute_IsTheName) {
  database_.SetProjectCurrentPath("proj");
  EXPECT_EQ(Resolved("/lib/x.sdc"), "/lib/x.sdc");
}

TEST_P(PathListTest, Add_SeveralNames_AreDeliveredInOrder) {
  for (const char* name : {"/c.sdc", "/a.sdc", "/b.sdc"}) Add(name);
  EXPECT_THAT(List(), ElementsAre("/c.sdc", "/a.sdc", "/b.sdc"));
}

TEST_P(PathListTest, Add_SameNameTwice_IsDeliveredTwice) {
  Add("src/top.sdc");
  Add("src/top.sdc");
  EXPECT_THAT(List(), ElementsAre("/work/proj/src/top.sdc", "/work/proj/src/top.sdc"));
}

TEST_P(PathListTest, Add_OneList_LeavesTheOthers) {
  Add("src/top.sdc");
  for (const PathList& list : PathLists()) {
    Strings names;
    list.append_to(database_, names);
    EXPECT_EQ(names.size(), list.name == GetParam().name ? 1u : 0u) << list.name;
  }
}

TEST_P(PathListTest, Get_VectorHasEntries_AppendsBehindThem) {
  Add("/a.sdc");
  Strings names = {"former 1", "former 2", "former 3"};
  GetParam().append_to(database_, names);
  EXPECT_THAT(names, ElementsAre("former 1", "former 2", "former 3", "/a.sdc"));
}

TEST_P(PathListTest, Get_EmptyList_LeavesTheVector) {
  Strings names = {"former"};
  GetParam().append_to(database_, names);
  EXPECT_THAT(names, ElementsAre("former"));
}

TEST_P(PathListTest, Get_CalledTwice_DeliversTheSame) {
  Add("src/top.sdc");
  EXPECT_EQ(List(), List());
  EXPECT_THAT(List(), ElementsAre("/work/proj/src/top.sdc"));
}

TEST_P(PathListTest, Get_ProjectDirectoryIsNoUtf8_ThrowsRangeErrorAndAppendsNothing) {
  Add("src/top.sdc");
  for (const char* directory :
       {"/work/\xFF", "/work/\xC3", "\xE6\x9C/proj", "/\xC0\xAF", "/\xED\xA0\x80"}) {
    database_.SetProjectCurrentPath(directory);
    Strings names = {"former"};
    EXPECT_THROW(GetParam().append_to(database_, names), std::range_error);
    EXPECT_THAT(names, ElementsAre("former"));
  }
}

TEST_P(PathListTest, Get_ProjectDirectoryIsNoUtf8AndListEmpty_LeavesTheVector) {
  database_.SetProjectCurrentPath("/work/\xFF");
  EXPECT_THAT(List(), IsEmpty());
}

TEST_P(PathListTest, Clean_FilesAdded_NextProjectHasNone) {
  Add("/a.sdc");
  database_.CleanProjectDatabase();
  ASSERT_TRUE(database_.CreateNewProjectDatabase("next"));
  EXPECT_THAT(List(), IsEmpty());
}

std::string NameOf(const testing::TestParamInfo<PathList>& param_info) {
  return param_info.param.name;
}

void PrintTo(const PathList& list, std::ostream* out) { *out << list.name; }

INSTANTIATE_TEST_SUITE_P(Lists, PathListTest, testing::ValuesIn(PathLists()), NameOf);

/// The lists that take any name, also the empty one and one that is not UTF-8.
class AnyNameListTest : public PathListTest {};

TEST_P(AnyNameListTest, Get_EmptyName_IsTheProjectDirectory) {
  EXPECT_EQ(Resolved(""), "/work/proj/");
}

TEST_P(AnyNameListTest, Get_EmptyNameAndEmptyProjectDirectory_IsTheWorkingDirectory) {
  const TemporaryDirectory directory;
  const WorkingDirectory working_directory(directory.path());
  database_.SetProjectCurrentPath("");
  EXPECT_EQ(Resolved(""), std::filesystem::current_path().string());
}

TEST_P(AnyNameListTest, Get_EntriesBehindEmptyName_AreDelivered) {
  database_.SetProjectCurrentPath("");
  Add("");
  Add("/a.v");
  EXPECT_THAT(List(), ElementsAre(std::filesystem::current_path().string(), "/a.v"));
}

TEST_P(AnyNameListTest, Get_NameIsNoUtf8_ThrowsRangeErrorWithTheEntriesBeforeItAppended) {
  for (const char* name : {"/a.sdc", "/b.sdc", "c\xFF.sdc", "/d.sdc"}) Add(name);
  Strings names = {"former"};
  EXPECT_THROW(GetParam().append_to(database_, names), std::range_error);
  EXPECT_THAT(names, ElementsAre("former", "/a.sdc", "/b.sdc"));
}

TEST_P(AnyNameListTest, Get_ThrewRangeError_LeavesTheLockFree) {
  Add("c\xFF.sdc");
  EXPECT_THROW(List(), std::range_error);
  Add("/d.sdc");  // Would wait for ever if the lock were still held.
  EXPECT_THROW(List(), std::range_error);
}

std::vector<PathList> AnyNameLists() {
  std::vector<PathList> lists;
  for (const PathList& list : PathLists()) {
    if (list.takes_any_name) lists.push_back(list);
  }
  return lists;
}

INSTANTIATE_TEST_SUITE_P(Lists, AnyNameListTest, testing::ValuesIn(AnyNameLists()), NameOf);

class FileLists : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker"));
    database_.SetProjectCurrentPath("/work/proj");
  }

  Strings TimingConstraints() const {
    Strings names;
    database_.GetTimingConstraintFileList(names);
    return names;
  }

  KelProjectDatabase database_;
};

TEST_F(FileLists, AddDesignRTLFile_OneFile_KeepsVersionAndLibrary) {
  database_.AddDesignRTLFile("src/top.v", "v2001", "work");
  database_.AddDesignRTLFile("src/alu.vhd", "", "");
  EXPECT_THAT(DesignFiles(database_), ElementsAre(Row("/work/proj/src/top.v", "v2001", "work"),
                                                  Row("/work/proj/src/alu.vhd", "", "")));
}

TEST_F(FileLists, AddDesignRTLFile_Vector_AppendsEachRecordInOrder) {
  database_.AddDesignRTLFile("/first.v", "v1995", "work");
  std::vector<DesignFile> files = {{"/b.v", "v2001", "lib_b"}, {"/a.v", "v2005", "lib_a"}};
  database_.AddDesignRTLFile(files);
  EXPECT_THAT(DesignFiles(database_),
              ElementsAre(Row("/first.v", "v1995", "work"), Row("/b.v", "v2001", "lib_b"),
                          Row("/a.v", "v2005", "lib_a")));
}

/// An adder that takes a vector of records, with the list that it adds to.
struct VectorAdder {
  const char* name;
  void (KelProjectDatabase::*add)(std::vector<DesignFile>&);
  std::size_t (*count)(const KelProjectDatabase&);
};

constexpr VectorAdder kVectorAdders[] = {
    {"AddDesignRTLFile", &KelProjectDatabase::AddDesignRTLFile,
     [](const KelProjectDatabase& database) { return DesignFiles(database).size(); }},
    {"AddSimulationTestBenchFile", &KelProjectDatabase::AddSimulationTestBenchFile,
     [](const KelProjectDatabase& database) {
       Strings names;
       database.GetSimulationTestBenchFileList(names);
       return names.size();
     }},
};

TEST_F(FileLists, VectorAdders_Files_AreCopiedNotTakenOver) {
  for (const VectorAdder& adder : kVectorAdders) {
    std::vector<DesignFile> files = {{"/b.v", "v2001", "lib_b"}, {"/a.v", "v2005", "lib_a"}};
    (database_.*adder.add)(files);
    EXPECT_THAT(RowsOf(files),
                ElementsAre(Row("/b.v", "v2001", "lib_b"), Row("/a.v", "v2005", "lib_a")))
        << adder.name;
  }
}

TEST_F(FileLists, VectorAdders_SameVectorTwice_AddsItTwice) {
  for (const VectorAdder& adder : kVectorAdders) {
    std::vector<DesignFile> files = {{"/b.v", "v2001", "lib_b"}, {"/a.v", "v2005", "lib_a"}};
    (database_.*adder.add)(files);
    (database_.*adder.add)(files);
    EXPECT_EQ(adder.count(database_), 4u) << adder.name;
  }
}

TEST_F(FileLists, VectorAdders_EmptyVector_AddsNothing) {
  for (const VectorAdder& adder : kVectorAdders) {
    std::vector<DesignFile> files;
    (database_.*adder.add)(files);
    EXPECT_EQ(adder.count(database_), 0u) << adder.name;
  }
}

TEST_F(FileLists, AddSimulationTestBenchFile_Vector_AppendsInOrder) {
  database_.AddSimulationTestBenchFile("/tb_top.v", "v2001");
  std::vector<DesignFile> files = {{"/tb_b.v", "v2001", "sim"}, {"/tb_a.v", "v2005", "sim"}};
  database_.AddSimulationTestBenchFile(files);
  Strings names;
  database_.GetSimulationTestBenchFileList(names);
  EXPECT_THAT(names, ElementsAre("/tb_top.v", "/tb_b.v", "/tb_a.v"));
}

TEST_F(FileLists, AddMiscellaneousFile_Vector_AppendsInOrderAndLeavesIt) {
  database_.AddMiscellaneousFile("/readme.txt");
  Strings added = {"/notes.txt", "", "/board.pdf"};
  database_.AddMiscellaneousFile(added);
  Strings names;
  database_.GetMiscellaneousFileList(names);
  EXPECT_THAT(names, ElementsAre("/readme.txt", "/notes.txt", "/work/proj/", "/board.pdf"));
  EXPECT_THAT(added, ElementsAre("/notes.txt", "", "/board.pdf"));
}

/// What a project file says about a list; version and library have no getter.
TEST_F(FileLists, AddSimulationAndMiscellaneousFiles_Exported_HaveTheirVersionAndLibrary) {
  database_.AddSimulationTestBenchFile("tb.v", "v2001");
  std::vector<DesignFile> benches = {{"tb2.v", "v2005", "sim"}};
  database_.AddSimulationTestBenchFile(benches);
  database_.AddMiscellaneousFile("one.txt");
  Strings names = {"two.txt"};
  database_.AddMiscellaneousFile(names);

  const TemporaryDirectory directory;
  database_.ExportProjectData(directory / "out.xml");
  const std::string text = test_support::ReadFile(directory / "out.xml");
  for (const char* element : {"sim_file library=\"default\" name=\"tb.v\" version=\"v2001\"",
                              "sim_file library=\"sim\" name=\"tb2.v\" version=\"v2005\"",
                              "misc_file library=\"default\" name=\"one.txt\" version=\"\"",
                              "misc_file library=\"default\" name=\"two.txt\" version=\"\""}) {
    EXPECT_THAT(text, testing::HasSubstr(element));
  }
}

TEST_F(FileLists, GetDesignFileList_ResultChanged_LeavesTheProject) {
  database_.AddDesignRTLFile("/a.v", "v2001", "work");
  std::vector<DesignFile> files;
  database_.GetDesignFileList(files);
  files[0].library = "changed";
  EXPECT_THAT(DesignFiles(database_), ElementsAre(Row("/a.v", "v2001", "work")));
}

// --- timing constraints ---

/// A project and a working directory with some files of unusual kinds.
class TimingConstraints : public FileLists {
 protected:
  void SetUp() override {
    FileLists::SetUp();
    namespace fs = std::filesystem;
    fs::create_directory("dir.sdc");
    test_support::WriteFile("file.sdc", "");
    test_support::WriteFile("file.txt", "");
    fs::create_directory_symlink("dir.sdc", "link_to_dir.sdc");
    fs::create_symlink("file.sdc", "link_to_file.sdc");
    fs::create_symlink("gone", "dangling.sdc");
    fs::create_directory_symlink("dir.sdc", "link_to_dir");
  }

  TemporaryDirectory directory_;
  WorkingDirectory working_directory_{directory_.path()};
};

const Strings& AcceptedTimingNames() {
  static const Strings names = {
      "missing.sdc",   "file.sdc",         "link_to_file.sdc", "dangling.sdc", "dir.sdc/x.sdc",
      "missing/x.sdc", "file.txt/x.sdc",   "a.b.sdc",          "..sdc",        "a..sdc",
      "größe.sdc",     "two words.sdc",    "../common/x.sdc",  "/abs/x.sdc",   " .sdc",
      "x\n.sdc",       "link_to_dir/x.sdc"};
  return names;
}

const Strings& RefusedTimingNames() {
  static const Strings names = {"",           "dir.sdc",
                                "dir.sdc/",   "link_to_dir.sdc",
                                "a.SDC",      "a.Sdc",
                                "a.sdc.bak",  "a.sdc ",
                                "a.sdcx",     "a.sd",
                                "a",          "sdc",
                                ".sdc",       "x/.sdc",
                                "a.sdc/",     "a.sdc/.",
                                "file.txt",   "b.txt",
                                ".",          "..",
                                "/",          "./dir.sdc",
                                "a.sdc.",     "a.xml",
                                "missing/..", "dir.sdc/../dir.sdc"};
  return names;
}

TEST_F(TimingConstraints, AddTimingConstraintFile_NameOfThatKind_IsAddedAsGiven) {
  database_.SetProjectCurrentPath("/p");
  Strings expected;
  for (const std::string& name : AcceptedTimingNames()) {
    EXPECT_TRUE(database_.AddTimingConstraintFile(name)) << name;
    expected.push_back(name[0] == '/' ? name : "/p/" + name);
    EXPECT_EQ(FileLists::TimingConstraints(), expected);
  }
}

TEST_F(TimingConstraints, AddTimingConstraintFile_OtherName_ReturnsFalseAndAddsNothing) {
  for (const std::string& name : RefusedTimingNames()) {
    EXPECT_FALSE(database_.AddTimingConstraintFile(name)) << name;
    EXPECT_THAT(FileLists::TimingConstraints(), IsEmpty()) << name;
  }
}

TEST_F(TimingConstraints, AddTimingConstraintFile_DirectoryOfTheProjectOnly_IsAdded) {
  // The name is looked up as it stands, not below the project's directory.
  const TemporaryDirectory project;
  std::filesystem::create_directory(project / "sub.sdc");
  database_.SetProjectCurrentPath(project.path().string());
  EXPECT_TRUE(database_.AddTimingConstraintFile("sub.sdc"));
}

TEST_F(TimingConstraints, AddTimingConstraintFile_Refused_PostsNothing) {
  const test_support::MessageRecorder recorder;
  for (const std::string& name : RefusedTimingNames()) database_.AddTimingConstraintFile(name);
  database_.AddTimingConstraintFile(RefusedTimingNames());
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

TEST_F(TimingConstraints, AddTimingConstraintFile_ListWithSomeOfThatKind_AddsThoseInOrder) {
  EXPECT_TRUE(database_.AddTimingConstraintFile(Strings{"/a.sdc", "/b.txt", "", "/c.sdc"}));
  EXPECT_THAT(FileLists::TimingConstraints(), ElementsAre("/a.sdc", "/c.sdc"));
}

TEST_F(TimingConstraints, AddTimingConstraintFile_List_DecidesAsTheSingleForm) {
  Strings names = RefusedTimingNames();
  names.insert(names.end(), AcceptedTimingNames().begin(), AcceptedTimingNames().end());
  KelProjectDatabase single;
  ASSERT_TRUE(single.SetupProjectDatabase());
  single.SetProjectCurrentPath("/work/proj");
  for (const std::string& name : names) single.AddTimingConstraintFile(name);
  Strings expected;
  single.GetTimingConstraintFileList(expected);

  EXPECT_TRUE(database_.AddTimingConstraintFile(names));
  EXPECT_EQ(FileLists::TimingConstraints(), expected);
}

TEST_F(TimingConstraints, AddTimingConstraintFile_ListWithNoneOfThatKind_ReturnsFalse) {
  ASSERT_TRUE(database_.AddTimingConstraintFile("/a.sdc"));
  for (const Strings& names : {Strings{}, Strings{"/b.txt"}, RefusedTimingNames()}) {
    EXPECT_FALSE(database_.AddTimingConstraintFile(names));
    EXPECT_THAT(FileLists::TimingConstraints(), ElementsAre("/a.sdc"));
  }
}

TEST_F(TimingConstraints, AddTimingConstraintFile_ListWithDuplicates_AddsEach) {
  EXPECT_TRUE(database_.AddTimingConstraintFile(Strings{"/a.sdc", "/a.sdc"}));
  EXPECT_THAT(FileLists::TimingConstraints(), ElementsAre("/a.sdc", "/a.sdc"));
}

/// A name whose status cannot be read, for it is longer than a name can be.
const std::string& UnreadableName() {
  static const std::string name = std::string(5000, 'n') + ".sdc";
  return name;
}

TEST_F(TimingConstraints, AddTimingConstraintFile_StatusUnreadable_ThrowsAndAddsNothing) {
  EXPECT_THROW(database_.AddTimingConstraintFile(UnreadableName()),
               std::filesystem::filesystem_error);
  EXPECT_THAT(FileLists::TimingConstraints(), IsEmpty());
}

TEST_F(TimingConstraints, AddTimingConstraintFile_LinkToItself_Throws) {
  std::filesystem::create_symlink("loop.sdc", "loop.sdc");
  EXPECT_THROW(database_.AddTimingConstraintFile("loop.sdc"), std::filesystem::filesystem_error);
}

TEST_F(TimingConstraints, AddTimingConstraintFile_ListWithStatusUnreadable_KeepsThoseBeforeIt) {
  EXPECT_THROW(database_.AddTimingConstraintFile(
                   Strings{"/a.sdc", "/b.txt", "/c.sdc", UnreadableName(), "/d.sdc"}),
               std::filesystem::filesystem_error);
  // Would wait for ever if the lock were still held.
  EXPECT_THAT(FileLists::TimingConstraints(), ElementsAre("/a.sdc", "/c.sdc"));
}

/// Names that no conversion to a path takes, each of which would end in an extension.
Strings NamesThatAreNotUtf8(const std::string& extension) {
  Strings names;
  for (const char* stem : {"\xFF", "a\xC3", "\xE6\x9C/x", "\xC0\xAF", "\xED\xA0\x80"}) {
    names.push_back(stem + extension);
  }
  return names;
}

TEST_F(TimingConstraints, AddTimingConstraintFile_NameIsNoUtf8_ThrowsRangeErrorAndAddsNothing) {
  for (const std::string& name : NamesThatAreNotUtf8(".sdc")) {
    EXPECT_THROW(database_.AddTimingConstraintFile(name), std::range_error) << name;
  }
  EXPECT_THAT(FileLists::TimingConstraints(), IsEmpty());
}

TEST_F(TimingConstraints, AddTimingConstraintFile_NameIsNoUtf8AndOfAnotherKind_ThrowsRangeError) {
  EXPECT_THROW(database_.AddTimingConstraintFile("a\xFF.txt"), std::range_error);
}

TEST_F(TimingConstraints, AddTimingConstraintFile_ListWithNameThatIsNoUtf8_KeepsThoseBeforeIt) {
  EXPECT_THROW(
      database_.AddTimingConstraintFile(Strings{"/a.sdc", "", "/c.sdc", "b\xFF.sdc", "/d.sdc"}),
      std::range_error);
  // Would wait for ever if the lock were still held.
  EXPECT_THAT(FileLists::TimingConstraints(), ElementsAre("/a.sdc", "/c.sdc"));
}

TEST_F(TimingConstraints, AddTimingConstraintFile_NameIsNoUtf8_TheProjectCanBeExported) {
  EXPECT_ANY_THROW(database_.AddTimingConstraintFile("a\xFF.sdc"));
  EXPECT_NO_THROW(database_.ExportProjectData("out.xml"));
}

// --- interface constraint ---

TEST_F(FileLists, SetInterfaceConstraint_NameIsNoUtf8_ThrowsRangeErrorAndKeepsTheFormer) {
  ASSERT_TRUE(database_.SetInterfaceConstraint("former.interface.csv"));
  for (const std::string& name : NamesThatAreNotUtf8(".interface.csv")) {
    EXPECT_THROW(database_.SetInterfaceConstraint(name), std::range_error) << name;
  }
  EXPECT_EQ(database_.GetInterfaceConstraint(), "former.interface.csv");
}

TEST_F(FileLists, SetInterfaceConstraint_NameOfThatKind_IsStoredAsGiven) {
  for (const char* name :
       {"io.interface.csv", "pins.interface.csv", "a.b.interface.csv", "io/pins.interface.csv",
        "../pins.interface.csv", "/abs/pins.interface.csv", "a..interface.csv",
        "größe.interface.csv", "two words.interface.csv", " .interface.csv",
        "x.interface.csv/y.interface.csv", "..interface.csv", "io.interface.csv.interface.csv"}) {
    EXPECT_TRUE(database_.SetInterfaceConstraint(name)) << name;
    EXPECT_EQ(database_.GetInterfaceConstraint(), name);
  }
}

TEST_F(FileLists, SetInterfaceConstraint_OtherName_ReturnsFalseAndKeepsTheFormer) {
  ASSERT_TRUE(database_.SetInterfaceConstraint("former.interface.csv"));
  for (const char* name :
       {"", "io.csv", "pins.interface.CSV", "pins.Interface.csv", ".interface.csv",
        "io/.interface.csv", "interface.csv", "pins.interface", "pins.interface.csv.bak",
        "pins.interface.csv/", "pins.interface.csv ", "x.interface.csv/pins", "pins.csv.interface",
        "pins.interface..csv", "pinsinterface.csv", "pins.interface.csvx", ".csv", ".", "/"}) {
    EXPECT_FALSE(database_.SetInterfaceConstraint(name)) << name;
    EXPECT_EQ(database_.GetInterfaceConstraint(), "former.interface.csv") << name;
  }
}

TEST_F(FileLists, SetInterfaceConstraint_DirectoryOfThatName_IsStored) {
  const TemporaryDirectory directory;
  const std::string name = directory / "dir.interface.csv";
  std::filesystem::create_directory(name);
  EXPECT_TRUE(database_.SetInterfaceConstraint(name));
}

TEST_F(FileLists, SetInterfaceConstraint_Refused_PostsNothing) {
  const test_support::MessageRecorder recorder;
  database_.SetInterfaceConstraint("io.csv");
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

// --- lists that a project file fills ---

std::string ProjectFile(const std::string& sections) {
  return "<kel:project xmlns:kel=\"http://schema.kel.example/wdp_proj\" name=\"blinker\">" +
         sections + "</kel:project>";
}

/// A project read from a file with the given sections.
class LoadedLists : public testing::Test {
 protected:
  void Load(const std::string& sections) {
    test_support::WriteFile(directory_ / "blinker.xml", ProjectFile(sections));
    const test_support::MessageRecorder recorder;
    ASSERT_TRUE(database_.LoadProjectData(directory_ / "blinker.xml", ""));
  }
  void LoadTwoInstances() {
    Load(
        "<kel:ip_info>"
        "<kel:ip instance_name=\"fifo_0\" path=\"ip/fifo/fifo.ipx\">"
        "<kel:ip_src_file name=\"rtl/fifo.v\"/><kel:ip_src_file name=\"../shared/ram.v\"/>"
        "</kel:ip>"
        "<kel:ip instance_name=\"uart_0\" path=\"/opt/ip/uart.ipx\">"
        "<kel:ip_src_file name=\"uart.v\"/><kel:ip_src_file name=\"/lib/sync.v\"/>"
        "</kel:ip>"
        "</kel:ip_info>");
  }
  Strings IpSources() const {
    Strings names;
    database_.GetIpSrcFileList(names);
    return names;
  }

  TemporaryDirectory directory_;
  KelProjectDatabase database_;
};

TEST_F(LoadedLists, GetIpSrcFileList_SeveralInstances_ResolvesAgainstEachOnesDirectory) {
  LoadTwoInstances();
  database_.SetProjectCurrentPath("/work/proj");
  EXPECT_THAT(IpSources(),
              ElementsAre("/work/proj/ip/fifo/rtl/fifo.v", "/work/proj/ip/fifo/../shared/ram.v",
                          "/opt/ip/uart.v", "/lib/sync.v"));
}

TEST_F(LoadedLists, GetIpSrcFileList_JustLoaded_ResolvesAgainstTheFilesDirectory) {
  LoadTwoInstances();
  EXPECT_EQ(IpSources().at(0), directory_ / "ip/fifo/rtl/fifo.v");
}

TEST_F(LoadedLists, GetIpSrcFileList_PathsOfUnusualForm_TakeTheParentDirectory) {
  const std::pair<const char*, const char*> cases[] = {
      {"ip/fifo/", "/work/proj/ip/fifo/x.v"},
      {"fifo.ipx", "/work/proj/x.v"},
      {"", "/work/proj/x.v"},
      {"../fifo.ipx", "/work/proj/../x.v"},
      {"/fifo.ipx", "/x.v"},
      {"ip/./fifo.ipx", "/work/proj/ip/./x.v"},
  };
  std::string instances;
  Strings expected;
  for (const auto& [path, delivered] : cases) {
    instances += std::string("<kel:ip instance_name=\"i\" path=\"") + path +
                 "\"><kel:ip_src_file name=\"x.v\"/></kel:ip>";
    expected.push_back(delivered);
  }
  Load("<kel:ip_info>" + instances + "</kel:ip_info>");
  database_.SetProjectCurrentPath("/work/proj");
  EXPECT_EQ(IpSources(), expected);
}

TEST_F(LoadedLists, GetIpSrcFileList_RelativeProjectDirectory_GivesAbsolutePaths) {
  LoadTwoInstances();
  const WorkingDirectory working_directory(directory_.path());
  database_.SetProjectCurrentPath("proj");
  EXPECT_EQ(IpSources().at(0),
            (std::filesystem::current_path() / "proj/ip/fifo/rtl/fifo.v").string());
}

TEST_F(LoadedLists, GetIpSrcFileList_NoPathAndNoProjectDirectory_IsInTheWorkingDirectory) {
  Load("<kel:ip_info><kel:ip path=\"\"><kel:ip_src_file name=\"x.v\"/></kel:ip></kel:ip_info>");
  const WorkingDirectory working_directory(directory_.path());
  database_.SetProjectCurrentPath("");
  EXPECT_THAT(IpSources(), ElementsAre((std::filesystem::current_path() / "x.v").string()));
}

TEST_F(LoadedLists, GetIpSrcFileList_PathAndNoProjectDirectory_IsBelowTheWorkingDirectory) {
  Load(
      "<kel:ip_info><kel:ip path=\"a.ipx\"><kel:ip_src_file name=\"x.v\"/></kel:ip>"
      "<kel:ip path=\"ip/a.ipx\"><kel:ip_src_file name=\"x.v\"/></kel:ip></kel:ip_info>");
  const WorkingDirectory working_directory(directory_.path());
  database_.SetProjectCurrentPath("");
  const std::filesystem::path here = std::filesystem::current_path();
  EXPECT_THAT(IpSources(), ElementsAre((here / "x.v").string(), (here / "ip/x.v").string()));
}

TEST_F(LoadedLists, GetIpSrcFileList_VectorHasEntries_AppendsBehindThem) {
  LoadTwoInstances();
  Strings names = {"former"};
  database_.GetIpSrcFileList(names);
  EXPECT_EQ(names.size(), 5u);
  EXPECT_EQ(names.front(), "former");
}

TEST_F(LoadedLists, GetIpSrcFileList_NoInstances_LeavesTheVector) {
  Load("");
  Strings names = {"former"};
  database_.GetIpSrcFileList(names);
  EXPECT_THAT(names, ElementsAre("former"));
}

TEST_F(LoadedLists, GetIpSrcFileList_InstanceWithoutFiles_ContributesNothing) {
  Load("<kel:ip_info><kel:ip instance_name=\"pll_0\" path=\"pll.ipx\"/></kel:ip_info>");
  EXPECT_THAT(IpSources(), IsEmpty());
}

TEST_F(LoadedLists, GetIpSrcFileList_ProjectDirectoryIsNoUtf8_ThrowsRangeErrorAndFreesTheLock) {
  LoadTwoInstances();
  database_.SetProjectCurrentPath("/work/\xFF");
  Strings names = {"former"};
  EXPECT_THROW(database_.GetIpSrcFileList(names), std::range_error);
  EXPECT_THAT(names, ElementsAre("former"));
  database_.SetProjectCurrentPath("/work/proj");  // Would wait for ever if the lock were held.
  EXPECT_EQ(IpSources().size(), 4u);
}

TEST_F(LoadedLists, GetIpInstanceList_SeveralInstances_GivesThemAsStored) {
  LoadTwoInstances();
  std::vector<IP> instances;
  database_.GetIpInstanceList(instances);
  std::vector<Strings> rows;
  for (const IP& instance : instances) {
    rows.push_back({instance.instance_name, instance.path});
    for (const auto& file : instance.src_files) rows.back().push_back(file.name);
  }
  EXPECT_THAT(
      rows, ElementsAre(ElementsAre("fifo_0", "ip/fifo/fifo.ipx", "rtl/fifo.v", "../shared/ram.v"),
                        ElementsAre("uart_0", "/opt/ip/uart.ipx", "uart.v", "/lib/sync.v")));
}

TEST_F(LoadedLists, GetIpInstanceList_VectorHasEntries_AppendsBehindThem) {
  LoadTwoInstances();
  std::vector<IP> instances(1);
  instances[0].instance_name = "former";
  database_.GetIpInstanceList(instances);
  Strings names;
  for (const IP& instance : instances) names.push_back(instance.instance_name);
  EXPECT_THAT(names, ElementsAre("former", "fifo_0", "uart_0"));
}

/// The capacity of a vector to which so many entries were appended one by one.
template <typename Entry>
std::size_t CapacityAfterAppending(std::size_t count) {
  std::vector<Entry> entries;
  for (std::size_t i = 0; i < count; ++i) entries.emplace_back();
  return entries.capacity();
}

TEST_F(LoadedLists, IpGetters_AppendWithoutReservation) {
  std::string ips;
  for (int i = 0; i < 5; ++i)
    ips += "<kel:ip path=\"a/b\"><kel:ip_src_file name=\"c.v\"/></kel:ip>";
  Load("<kel:ip_info>" + ips + "</kel:ip_info>");
  std::vector<IP> instances;
  database_.GetIpInstanceList(instances);
  EXPECT_EQ(instances.capacity(), CapacityAfterAppending<IP>(5));
  Strings names;
  database_.GetIpSrcFileList(names);
  EXPECT_EQ(names.capacity(), CapacityAfterAppending<std::string>(5));
}

TEST_F(LoadedLists, GetIpInstanceList_ProjectDirectoryIsNoUtf8_GivesThemAsStored) {
  LoadTwoInstances();
  database_.SetProjectCurrentPath("/work/\xFF");
  std::vector<IP> instances;
  database_.GetIpInstanceList(instances);
  EXPECT_EQ(instances.size(), 2u);
}

TEST_F(LoadedLists, GetIpInstanceList_ResultChanged_LeavesTheProject) {
  LoadTwoInstances();
  std::vector<IP> instances;
  database_.GetIpInstanceList(instances);
  instances[0].src_files.clear();
  EXPECT_EQ(IpSources().size(), 4u);
}

TEST_F(LoadedLists, IsfFiles_Exported_AreWrittenAsTheyWereRead) {
  Load(
      "<kel:isf_info><kel:isf_file name=\"board/b.isf\"/><kel:isf_file name=\"\"/>"
      "<kel:isf_file name=\"../a.isf\"/></kel:isf_info>");
  database_.ExportProjectData(directory_ / "out.xml");
  const std::string text = test_support::ReadFile(directory_ / "out.xml");
  const std::size_t first = text.find("isf_file name=\"board/b.isf\"");
  const std::size_t second = text.find("isf_file name=\"../a.isf\"");
  EXPECT_NE(second, std::string::npos);
  EXPECT_LT(first, second);
  EXPECT_EQ(text.find("isf_file name=\"\""), std::string::npos);
}

}  // namespace
