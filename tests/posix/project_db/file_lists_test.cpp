#include <filesystem>
#include <functional>
#include <stdexcept>
#include <tuple>

#include "contents/record_text.h"
#include "testing/project_loading.h"
#include "testing/test.h"

namespace {

using namespace projectdb;
using namespace test_support;

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
};

void AppendDesignFiles(const KelProjectDatabase& database, Strings& names) {
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
}

const PathList kPathLists[] = {
    {"Design", [](auto& db, auto& name) { db.AddDesignRTLFile(name, "v2001", "work"); },
     AppendDesignFiles},
    {"SimulationTestBench",
     [](auto& db, auto& name) { db.AddSimulationTestBenchFile(name, "v2001"); },
     [](auto& db, auto& names) { db.GetSimulationTestBenchFileList(names); }},
    {"Miscellaneous", [](auto& db, auto& name) { db.AddMiscellaneousFile(name); },
     [](auto& db, auto& names) { db.GetMiscellaneousFileList(names); }},
    {"TimingConstraint",
     [](auto& db, auto& name) { ASSERT_TRUE(db.AddTimingConstraintFile(name)) << name; },
     [](auto& db, auto& names) { db.GetTimingConstraintFileList(names); }}};

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

class PathListTest : public FileLists, public testing::WithParamInterface<PathList> {
 protected:
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
};

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

TEST_P(PathListTest, Add_OneList_LeavesTheOthers) {
  Add("src/top.sdc");
  for (const PathList& list : kPathLists) {
    Strings names;
    list.append_to(database_, names);
    EXPECT_EQ(names.size(), list.name == GetParam().name ? 1u : 0u) << list.name;
  }
}

TEST_P(PathListTest, Get_ProjectDirectoryIsNoUtf8_ThrowsRangeErrorAndAppendsNothing) {
  database_.SetProjectCurrentPath("/work/\xFF");
  EXPECT_THAT(List(), IsEmpty());
  Add("src/top.sdc");
  for (const char* directory :
       {"/work/\xFF", "/work/\xC3", "\xE6\x9C/proj", "/\xC0\xAF", "/\xED\xA0\x80"}) {
    database_.SetProjectCurrentPath(directory);
    Strings names = {"former"};
    EXPECT_THROW(GetParam().append_to(database_, names), std::range_error);
    EXPECT_THAT(names, ElementsAre("former"));
  }
}

INSTANTIATE_TEST_SUITE_P(Lists, PathListTest, testing::ValuesIn(kPathLists), ByName());

/// The lists that take any name, also the empty one and one that is not UTF-8: all but the last.
class AnyNameListTest : public PathListTest {};

TEST_P(AnyNameListTest, Get_EmptyName_IsTheDirectory) {
  EXPECT_EQ(Resolved(""), "/work/proj/");
  Add("/a.v");
  const TemporaryDirectory directory;
  const WorkingDirectory working_directory(directory.path());
  database_.SetProjectCurrentPath("");
  EXPECT_THAT(List(), ElementsAre(std::filesystem::current_path().string(), "/a.v"));
}

TEST_P(AnyNameListTest, Get_NameIsNoUtf8_ThrowsRangeErrorWithTheEntriesBeforeItAppended) {
  for (const char* name : {"/a.sdc", "/b.sdc", "c\xFF.sdc", "/d.sdc"}) Add(name);
  Strings names = {"former"};
  EXPECT_THROW(GetParam().append_to(database_, names), std::range_error);
  EXPECT_THAT(names, ElementsAre("former", "/a.sdc", "/b.sdc"));
  Add("/e.sdc");  // Would wait for ever if the lock were still held.
}

INSTANTIATE_TEST_SUITE_P(Lists, AnyNameListTest,
                         testing::Values(kPathLists[0], kPathLists[1], kPathLists[2]), ByName());

TEST_F(FileLists, Adders_AppendNameVersionAndLibraryAndLeaveTheirVectors) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.SetupProjectDatabase());
  std::vector<DesignFile> files = {{"b.v", "v2001", "lib_b"}, {"a.v", "", ""}};
  Strings names = {"notes.txt", ""};
  std::vector<DesignFile> none;
  database.AddDesignRTLFile("top.v", "v1995", "work");
  database.AddSimulationTestBenchFile("tb.v", "v2001");
  database.AddMiscellaneousFile("readme.txt");
  database.AddDesignRTLFile(none);
  database.AddSimulationTestBenchFile(none);
  for (int round = 0; round < 2; ++round) {
    database.AddDesignRTLFile(files);
    database.AddSimulationTestBenchFile(files);
    database.AddMiscellaneousFile(names);
  }
  EXPECT_THAT(
      ProjectLines(database),
      ElementsAre(
          "design.files[0]: top.v version=v1995 library=work",
          "design.files[1]: b.v version=v2001 library=lib_b", "design.files[2]: a.v",
          "design.files[3]: b.v version=v2001 library=lib_b", "design.files[4]: a.v",
          "simulation.files[0]: tb.v version=v2001 library=default",
          "simulation.files[1]: b.v version=v2001 library=lib_b", "simulation.files[2]: a.v",
          "simulation.files[3]: b.v version=v2001 library=lib_b", "simulation.files[4]: a.v",
          "misc.files[0]: readme.txt library=default", "misc.files[1]: notes.txt library=default",
          "misc.files[2]: \"\" library=default", "misc.files[3]: notes.txt library=default",
          "misc.files[4]: \"\" library=default"));
  EXPECT_THAT(RowsOf(files), ElementsAre(Row("b.v", "v2001", "lib_b"), Row("a.v", "", "")));
  EXPECT_THAT(names, ElementsAre("notes.txt", ""));
}

TEST_F(FileLists, FlatListGetters_EmptyVector_ReserveTheirCountAndNoMore) {
  constexpr std::size_t kCount = 3;  // Growing one by one, a vector would have room for four.
  for (const char* name : {"a.sdc", "b.sdc", "c.sdc"}) {
    database_.AddDesignRTLFile(name, "v2001", "work");
    database_.AddSimulationTestBenchFile(name, "v2001");
    database_.AddMiscellaneousFile(name);
    ASSERT_TRUE(database_.AddTimingConstraintFile(name));
  }
  std::vector<DesignFile> files;
  database_.GetDesignFileList(files);
  EXPECT_EQ(files.capacity(), kCount);
  for (const auto get : {&KelProjectDatabase::GetSimulationTestBenchFileList,
                         &KelProjectDatabase::GetMiscellaneousFileList,
                         &KelProjectDatabase::GetTimingConstraintFileList}) {
    Strings paths;
    (database_.*get)(paths);
    EXPECT_EQ(paths.capacity(), kCount);
  }
}

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
  EXPECT_THAT([this] { database_.AddTimingConstraintFile("a\xFF.txt"); },
              testing::ThrowsMessage<std::range_error>("a path is not UTF-8 text"));
  EXPECT_THAT(FileLists::TimingConstraints(), IsEmpty());
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

TEST_F(FileLists, SetInterfaceConstraint_OtherName_ReturnsFalseWithoutMessageOrChange) {
  const MessageRecorder recorder;
  ASSERT_TRUE(database_.SetInterfaceConstraint("former.interface.csv"));
  for (const char* name :
       {"", "io.csv", "pins.interface.CSV", "pins.Interface.csv", ".interface.csv",
        "io/.interface.csv", "interface.csv", "pins.interface", "pins.interface.csv.bak",
        "pins.interface.csv/", "pins.interface.csv ", "x.interface.csv/pins", "pins.csv.interface",
        "pins.interface..csv", "pinsinterface.csv", "pins.interface.csvx", ".csv", ".", "/"}) {
    EXPECT_FALSE(database_.SetInterfaceConstraint(name)) << name;
    EXPECT_EQ(database_.GetInterfaceConstraint(), "former.interface.csv") << name;
  }
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

TEST_F(FileLists, SetInterfaceConstraint_DirectoryOfThatName_IsStored) {
  const TemporaryDirectory directory;
  const std::string name = directory / "dir.interface.csv";
  std::filesystem::create_directory(name);
  EXPECT_TRUE(database_.SetInterfaceConstraint(name));
}

/// A project read from a file with the given sections.
class LoadedLists : public testing::Test, protected Loading {
 protected:
  void Load(const std::string& sections) { ASSERT_TRUE(LoadBytes(ProjectXml(sections))); }
  void LoadTwoInstances() {
    Load(R"(<ip_info><ip instance_name="fifo_0" path="ip/fifo/fifo.ipx">)"
         R"(<ip_src_file name="rtl/fifo.v"/><ip_src_file name="../shared/ram.v"/></ip>)"
         R"(<ip instance_name="pll_0" path="pll.ipx"/>)"
         R"(<ip instance_name="uart_0" path="/opt/ip/uart.ipx">)"
         R"(<ip_src_file name="uart.v"/><ip_src_file name="/lib/sync.v"/></ip></ip_info>)");
  }
  Strings IpSources(Strings names = {}) const {
    database.GetIpSrcFileList(names);
    return names;
  }
};

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

TEST_F(LoadedLists, IpGetters_NoInstances_LeaveTheVectors) {
  Load("");
  std::vector<IP> instances(1);
  database.GetIpInstanceList(instances);
  EXPECT_EQ(instances.size(), 1u);
  EXPECT_THAT(IpSources({"former"}), ElementsAre("former"));
}

TEST_F(LoadedLists, GetIpSrcFileList_ProjectDirectoryIsNoUtf8_ThrowsRangeErrorAndFreesTheLock) {
  LoadTwoInstances();
  database.SetProjectCurrentPath("/work/\xFF");
  Strings names = {"former"};
  EXPECT_THROW(database.GetIpSrcFileList(names), std::range_error);
  EXPECT_THAT(names, ElementsAre("former"));
  database.SetProjectCurrentPath("/work/proj");  // Would wait for ever if the lock were held.
  EXPECT_EQ(IpSources().size(), 4u);
}

TEST_F(LoadedLists, GetIpInstanceList_SeveralInstances_AppendsCopiesOfThemAsStored) {
  LoadTwoInstances();
  database.SetProjectCurrentPath("/work/\xFF");
  std::vector<IP> instances = {{"former", "", {}}};
  database.GetIpInstanceList(instances);
  ASSERT_EQ(instances.size(), 4u);
  EXPECT_EQ(TextOf(instances[0]), "former");
  EXPECT_EQ(TextOf(instances[1]),
            "fifo_0 path=ip/fifo/fifo.ipx file=rtl/fifo.v file=../shared/ram.v");
  EXPECT_EQ(TextOf(instances[2]), "pll_0 path=pll.ipx");
  instances[1].src_files.clear();
  database.SetProjectCurrentPath("/work/proj");
  EXPECT_EQ(IpSources().size(), 4u);
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
  for (int i = 0; i < 5; ++i) ips += "<ip path=\"a/b\"><ip_src_file name=\"c.v\"/></ip>";
  Load("<ip_info>" + ips + "</ip_info>");
  std::vector<IP> instances;
  database.GetIpInstanceList(instances);
  EXPECT_EQ(instances.capacity(), CapacityAfterAppending<IP>(5));
  Strings names;
  database.GetIpSrcFileList(names);
  EXPECT_EQ(names.capacity(), CapacityAfterAppending<std::string>(5));
}

}  // namespace
