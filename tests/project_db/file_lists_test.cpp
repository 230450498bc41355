#include <filesystem>
#include <stdexcept>

#include "contents/record_text.h"
#include "testing/project_loading.h"
#include "testing/test.h"
#include "tests/project_db/file_lists.h"

namespace {

using namespace projectdb;
using namespace test_support;
using namespace test_support::file_lists;

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

TEST_P(AnyNameListTest, Get_NameIsNoUtf8_ThrowsRangeErrorWithTheEntriesBeforeItAppended) {
  const std::string a = InRoot("a.sdc");
  const std::string b = InRoot("b.sdc");
  for (const std::string& name : {a, b, std::string("c\xFF.sdc"), InRoot("d.sdc")}) Add(name);
  Strings names = {"former"};
  EXPECT_THROW(GetParam().append_to(database_, names), std::range_error);
  EXPECT_THAT(names, ElementsAre("former", a, b));
  Add("/e.sdc");  // Would wait for ever if the lock were still held.
}

INSTANTIATE_TEST_SUITE_P(Lists, AnyNameListTest,
                         testing::Values(kPathLists[0], kPathLists[1], kPathLists[2]), ByName());

/// Names of timing constraint files, where one directory has such a name.
class TimingNames : public FileLists {
 protected:
  TimingNames() { std::filesystem::create_directory("dir.sdc"); }

  static Strings InProject(const Strings& names) {
    Strings paths;
    paths.reserve(names.size());
    for (const std::string& name : names) {
      const auto base = NativePath(InRoot("work/proj"));
      paths.push_back(PathText(base / NativePath(name)));
    }
    return paths;
  }

  void SetUp() override {
    FileLists::SetUp();
    database_.SetProjectCurrentPath(InRoot("work/proj"));
  }

  const TemporaryDirectory directory_;
  const WorkingDirectory working_directory_{directory_.path()};
};

TEST_F(TimingNames, AddTimingConstraintFile_List_AddsInOrderWhatTheSingleFormWould) {
  EXPECT_TRUE(database_.AddTimingConstraintFile(Strings{"", "b.sdc", "dir.sdc", "größe.sdc",
                                                        "a.SDC", "b.txt", "a.sdc", "missing/x.sdc",
                                                        ".sdc", "b.sdc", "../x.sdc"}));
  EXPECT_EQ(TimingConstraints(),
            InProject({"b.sdc", "größe.sdc", "a.sdc", "missing/x.sdc", "b.sdc", "../x.sdc"}));
}

TEST_F(TimingNames, AddTimingConstraintFile_ListOfOtherNames_ReturnsFalseAndAddsNothing) {
  EXPECT_FALSE(database_.AddTimingConstraintFile(Strings{"", "dir.sdc", "a.SDC", "b.txt", ".sdc"}));
  EXPECT_FALSE(database_.AddTimingConstraintFile(Strings{}));
  EXPECT_THAT(TimingConstraints(), IsEmpty());
}

TEST_F(TimingNames, AddTimingConstraintFile_NameIsNoUtf8_ThrowsRangeErrorAndAddsNothing) {
  for (const std::string& name : NamesThatAreNotUtf8(".sdc")) {
    EXPECT_THROW(database_.AddTimingConstraintFile(name), std::range_error) << name;
  }
  EXPECT_THAT([this] { database_.AddTimingConstraintFile("a\xFF.txt"); },
              testing::ThrowsMessage<std::range_error>("a path is not UTF-8 text"));
  EXPECT_THAT(TimingConstraints(), IsEmpty());
}

TEST_F(TimingNames, AddTimingConstraintFile_ListWithNameThatIsNoUtf8_KeepsThoseBeforeIt) {
  EXPECT_THROW(
      database_.AddTimingConstraintFile(Strings{"a.sdc", "", "c.sdc", "b\xFF.sdc", "d.sdc"}),
      std::range_error);
  // Would wait for ever if the lock were still held.
  EXPECT_EQ(TimingConstraints(), InProject({"a.sdc", "c.sdc"}));
}

TEST_F(TimingNames, AddTimingConstraintFile_NameIsNoUtf8_TheProjectCanBeExported) {
  EXPECT_ANY_THROW(database_.AddTimingConstraintFile("a\xFF.sdc"));
  EXPECT_NO_THROW(database_.ExportProjectData("out.xml"));
}

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
  EXPECT_THAT(RowsOfFiles(files), ElementsAre(Row("b.v", "v2001", "lib_b"), Row("a.v", "", "")));
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
