#include <filesystem>
#include <stdexcept>

#include "testing/project_loading.h"
#include "testing/test.h"
#include "tests/project_db/file_lists.h"

namespace {

using namespace projectdb;
using namespace test_support;
using namespace test_support::file_lists;

std::vector<Row> DesignFiles(const KelProjectDatabase& database) {
  std::vector<DesignFile> files;
  database.GetDesignFileList(files);
  return RowsOfFiles(files);
}

TEST_P(PathListTest, Get_NameStored_IsResolvedAgainstTheProjectDirectory) {
  const std::pair<const char*, const char*> cases[] = {
      {"src/top.sdc", "/work/proj/src/top.sdc"},
      {"top.sdc", "/work/proj/top.sdc"},
      {"../common/x.sdc", "/work/proj/../common/x.sdc"},
      {"./x.sdc", "/work/proj/./x.sdc"},
      {"a/./b/../c.sdc", "/work/proj/a/./b/../c.sdc"},
      {"a//b.sdc", "/work/proj/a//b.sdc"},
      {"/lib/x.sdc", "/lib/x.sdc"},
      {"/lib/../x.sdc", "/lib/../x.sdc"},
      {"größe/数.sdc", "/work/proj/größe/数.sdc"},
      {"two words.sdc", "/work/proj/two words.sdc"},
      {"a\\b.sdc", "/work/proj/a\\b.sdc"},
      {"C:/lib/x.sdc", "/work/proj/C:/lib/x.sdc"},
      {"~/x.sdc", "/work/proj/~/x.sdc"},
      {"$HOME/x.sdc", "/work/proj/$HOME/x.sdc"}};
  for (const auto& [stored, delivered] : cases) EXPECT_EQ(Resolved(stored), delivered);
}

TEST_P(PathListTest, Get_ProjectDirectoryInSomeForm_IsTakenAsItIs) {
  Add("x.sdc");
  for (const std::string directory : {"/work/proj/", "/", "/work/../proj/", "/größe/"}) {
    database_.SetProjectCurrentPath(directory);
    EXPECT_THAT(List(), ElementsAre(directory + "x.sdc"));
  }
  database_.SetProjectCurrentPath("/work/../proj");
  EXPECT_THAT(List(), ElementsAre("/work/../proj/x.sdc"));
}

TEST_P(PathListTest, Get_ProjectDirectoryEmptyOrRelative_IsResolvedAgainstTheWorkingDirectory) {
  const TemporaryDirectory directory;
  const WorkingDirectory working_directory(directory.path());
  const std::filesystem::path here = std::filesystem::current_path();
  database_.SetProjectCurrentPath("");
  EXPECT_EQ(Resolved("src/top.sdc"), (here / "src/top.sdc").string());
  database_.SetProjectCurrentPath("proj");
  EXPECT_EQ(Resolved("top.sdc"), (here / "proj/top.sdc").string());
  EXPECT_EQ(Resolved("/lib/x.sdc"), "/lib/x.sdc");
}

TEST_P(PathListTest, Get_VectorHasEntries_AppendsAllInOrderBehindThem) {
  Strings names = {"former 1", "former 2"};
  GetParam().append_to(database_, names);
  EXPECT_THAT(names, ElementsAre("former 1", "former 2"));
  for (const char* name : {"/c.sdc", "/a.sdc", "/c.sdc"}) Add(name);
  GetParam().append_to(database_, names);
  EXPECT_THAT(names, ElementsAre("former 1", "former 2", "/c.sdc", "/a.sdc", "/c.sdc"));
  EXPECT_THAT(List(), ElementsAre("/c.sdc", "/a.sdc", "/c.sdc"));
}

/// As AnyPosixNameListTest, for names of POSIX.
class AnyPosixNameListTest : public PathListTest {};

TEST_P(AnyPosixNameListTest, Get_EmptyName_IsTheDirectory) {
  EXPECT_EQ(Resolved(""), "/work/proj/");
  Add("/a.v");
  const TemporaryDirectory directory;
  const WorkingDirectory working_directory(directory.path());
  database_.SetProjectCurrentPath("");
  EXPECT_THAT(List(), ElementsAre(std::filesystem::current_path().string(), "/a.v"));
}

INSTANTIATE_TEST_SUITE_P(Lists, AnyPosixNameListTest,
                         testing::Values(kPathLists[0], kPathLists[1], kPathLists[2]), ByName());

TEST_F(FileLists, GetDesignFileList_ResultChanged_LeavesTheProject) {
  database_.AddDesignRTLFile("/a.v", "v2001", "work");
  std::vector<DesignFile> files;
  database_.GetDesignFileList(files);
  files[0].library = "changed";
  EXPECT_THAT(DesignFiles(database_), ElementsAre(Row("/a.v", "v2001", "work")));
}

/// A project and a working directory with some files of unusual kinds.
class TimingConstraints : public FileLists {
 protected:
  void SetUp() override {
    FileLists::SetUp();
    namespace fs = std::filesystem;
    fs::create_directory("dir.sdc");
    WriteFile("file.sdc", "");
    WriteFile("file.txt", "");
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
  static const Strings names = {
      "",    "dir.sdc", "dir.sdc/", "link_to_dir.sdc", "a.SDC",      "a.Sdc",
      "sdc", ".sdc",    "x/.sdc",   "a.sdc.bak",       "a.sdc ",     "a.sdcx",
      "a",   "a.sd",    "a.sdc/",   "a.sdc/.",         "file.txt",   "b.txt",
      ".",   "..",      "/",        "./dir.sdc",       "missing/..", "dir.sdc/../dir.sdc"};
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

TEST_F(TimingConstraints, AddTimingConstraintFile_OtherName_ReturnsFalseWithoutMessageOrChange) {
  const MessageRecorder recorder;
  for (const std::string& name : RefusedTimingNames()) {
    EXPECT_FALSE(database_.AddTimingConstraintFile(name)) << name;
  }
  EXPECT_FALSE(database_.AddTimingConstraintFile(RefusedTimingNames()));
  EXPECT_FALSE(database_.AddTimingConstraintFile(Strings{}));
  EXPECT_THAT(FileLists::TimingConstraints(), IsEmpty());
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

TEST_F(TimingConstraints, AddTimingConstraintFile_DirectoryOfTheProjectOnly_IsAdded) {
  // The name is looked up as it stands, not below the project's directory.
  const TemporaryDirectory project;
  std::filesystem::create_directory(project / "sub.sdc");
  database_.SetProjectCurrentPath(project.path().string());
  EXPECT_TRUE(database_.AddTimingConstraintFile("sub.sdc"));
}

TEST_F(TimingConstraints, AddTimingConstraintFile_List_AddsInOrderWhatTheSingleFormWould) {
  Strings names = RefusedTimingNames();
  names.insert(names.end(), AcceptedTimingNames().rbegin(), AcceptedTimingNames().rend());
  names.insert(names.end(), {"/a.sdc", "/b.txt", "/a.sdc"});
  Strings expected;
  for (auto name = AcceptedTimingNames().rbegin(); name != AcceptedTimingNames().rend(); ++name) {
    expected.push_back((*name)[0] == '/' ? *name : "/work/proj/" + *name);
  }
  expected.insert(expected.end(), {"/a.sdc", "/a.sdc"});
  EXPECT_TRUE(database_.AddTimingConstraintFile(names));
  EXPECT_EQ(FileLists::TimingConstraints(), expected);
}

/// A name whose status cannot be read, for it is longer than a name can be.
const std::string& UnreadableName() {
  static const std::string name = std::string(5000, 'n') + ".sdc";
  return name;
}

TEST_F(TimingConstraints, AddTimingConstraintFile_StatusUnreadable_ThrowsAndAddsNothing) {
  std::filesystem::create_symlink("loop.sdc", "loop.sdc");
  for (const std::string& name : {UnreadableName(), std::string("loop.sdc")}) {
    EXPECT_THROW(database_.AddTimingConstraintFile(name), std::filesystem::filesystem_error);
  }
  EXPECT_THAT(FileLists::TimingConstraints(), IsEmpty());
}

TEST_F(TimingConstraints, AddTimingConstraintFile_ListWithStatusUnreadable_KeepsThoseBeforeIt) {
  EXPECT_THROW(database_.AddTimingConstraintFile(
                   Strings{"/a.sdc", "/b.txt", "/c.sdc", UnreadableName(), "/d.sdc"}),
               std::filesystem::filesystem_error);
  // Would wait for ever if the lock were still held.
  EXPECT_THAT(FileLists::TimingConstraints(), ElementsAre("/a.sdc", "/c.sdc"));
}

TEST_F(LoadedLists, GetIpSrcFileList_SeveralInstances_ResolvesAgainstEachOnesDirectory) {
  LoadTwoInstances();
  EXPECT_EQ(IpSources().at(0), directory / "ip/fifo/rtl/fifo.v");
  database.SetProjectCurrentPath("/work/proj");
  EXPECT_THAT(IpSources({"former"}),
              ElementsAre("former", "/work/proj/ip/fifo/rtl/fifo.v",
                          "/work/proj/ip/fifo/../shared/ram.v", "/opt/ip/uart.v", "/lib/sync.v"));
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
    instances += std::string("<ip instance_name=\"i\" path=\"") + path +
                 "\"><ip_src_file name=\"x.v\"/></ip>";
    expected.push_back(delivered);
  }
  Load("<ip_info>" + instances + "</ip_info>");
  database.SetProjectCurrentPath("/work/proj");
  EXPECT_EQ(IpSources(), expected);
}

TEST_F(LoadedLists, GetIpSrcFileList_NoOrRelativeProjectDirectory_IsBelowTheWorkingDirectory) {
  Load(R"(<ip_info><ip path=""><ip_src_file name="x.v"/></ip>)"
       R"(<ip path="a.ipx"><ip_src_file name="x.v"/></ip>)"
       R"(<ip path="ip/a.ipx"><ip_src_file name="x.v"/></ip></ip_info>)");
  const WorkingDirectory working_directory(directory.path());
  const std::string here = std::filesystem::current_path().string();
  database.SetProjectCurrentPath("");
  EXPECT_THAT(IpSources(), ElementsAre(here + "/x.v", here + "/x.v", here + "/ip/x.v"));
  database.SetProjectCurrentPath("proj");
  EXPECT_EQ(IpSources().back(), here + "/proj/ip/x.v");
}

}  // namespace
