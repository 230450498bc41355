#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <projectdb/project_db.h>

#include "testing/native_path.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"

namespace {

using namespace test_support;

/// The path under which a stored name is delivered.
std::string Delivered(const std::string& name, const std::string& directory) {
  projectdb::KelProjectDatabase database;
  database.CreateNewProjectDatabase("soc");
  database.SetProjectCurrentPath(directory);
  database.AddMiscellaneousFile(name);
  std::vector<std::string> paths;
  database.GetMiscellaneousFileList(paths);
  return paths.at(0);
}

struct DriveCase {
  std::string stored;
  std::string delivered;
};

TEST(FileListsOnWindows, StoredName_ProjectOnADrive_IsBelowTheProjectUnlessItHasADriveAndARoot) {
  const DriveCase cases[] = {{"src/top.v", "C:/work/proj\\src/top.v"},
                             {"src\\top.v", "C:/work/proj\\src\\top.v"},
                             {"D:/lib/x.v", "D:/lib/x.v"},
                             {"D:\\lib\\x.v", "D:\\lib\\x.v"},
                             {"C:/work/proj/x.v", "C:/work/proj/x.v"},
                             {"../common/x.v", "C:/work/proj\\../common/x.v"},
                             {"./x.v", "C:/work/proj\\./x.v"},
                             {"größe/漢字 50%.v", "C:/work/proj\\größe/漢字 50%.v"},
                             // A root without a drive is on the project's.
                             {"/x/y.v", "C:/x/y.v"},
                             {"\\x\\y.v", "C:\\x\\y.v"}};
  for (const auto& [stored, delivered] : cases) {
    EXPECT_EQ(Delivered(stored, "C:/work/proj"), delivered) << stored;
  }
}

TEST(FileListsOnWindows, StoredName_ProjectInARelativeDirectory_IsAbsoluteAndKeepsItsParents) {
  const TemporaryDirectory directory;
  const WorkingDirectory working_directory(directory.path());
  const std::string here = PathText(std::filesystem::current_path());
  EXPECT_EQ(Delivered("../common/x.v", "proj"), here + "\\proj\\../common/x.v");
  EXPECT_EQ(Delivered("src/x.v", ""), here + "\\src/x.v");
  EXPECT_EQ(Delivered("/x/y.v", ""), here.substr(0, 2) + "/x/y.v");
}

TEST(FileListsOnWindows, StoredName_ProjectOnAShare_IsBelowTheProject) {
  EXPECT_EQ(Delivered("src/x.v", "\\\\host\\share\\proj"), "\\\\host\\share\\proj\\src/x.v");
  EXPECT_EQ(Delivered("../x.v", "//host/share/proj"), "//host/share/proj\\../x.v");
  EXPECT_EQ(Delivered("\\\\host\\share\\x.v", "C:/work"), "\\\\host\\share\\x.v");
  EXPECT_EQ(Delivered("//host/share/x.v", "C:/work"), "//host/share/x.v");
}

TEST(FileListsOnWindows, StoredNameWithARootAlone_ProjectOnAShare_IsOnTheShare) {
  EXPECT_EQ(Delivered("/x/y.v", "//host/share/proj"), "//host/share/x/y.v");
  EXPECT_EQ(Delivered("\\x\\y.v", "\\\\host\\share"), "\\\\host\\share\\x\\y.v");
  EXPECT_EQ(Delivered("D:/lib/x.v", "//host/share/proj"), "D:/lib/x.v");
}

TEST(FileListsOnWindows, StoredName_NotUtf8_ThrowsARangeError) {
  EXPECT_THROW(Delivered("\xFF.v", "C:/work"), std::range_error);
  EXPECT_THROW(Delivered("x.v", "C:/\xFF"), std::range_error);
}

TEST(FileListsOnWindows, GetIpSrcFileList_NameBesideTheInstance_IsInTheDirectoryOfItsPath) {
  projectdb::KelProjectDatabase database;
  database.CreateNewProjectDatabase("soc");
  projectdb::ProjectContents contents = GetProjectContents(database);
  contents.current_path = "C:/work/proj";
  contents.ip_info.ips = {{"u_fifo", "ip/fifo/fifo.ip", {{"rtl/fifo.v"}, {"D:/lib/x.v"}}}};
  SetProjectContents(database, contents);
  std::vector<std::string> paths;
  database.GetIpSrcFileList(paths);
  EXPECT_THAT(paths, ElementsAre("C:/work/proj\\ip/fifo\\rtl/fifo.v", "D:/lib/x.v"));
}

TEST(FileListsOnWindows, AddTimingConstraintFile_DirectoryOrOtherEnding_IsRefused) {
  const TemporaryDirectory directory;
  const WorkingDirectory working_directory(directory.path());
  std::filesystem::create_directory("dir.sdc");
  projectdb::KelProjectDatabase database;
  database.CreateNewProjectDatabase("soc");
  for (const char* name : {"missing.sdc", "größe.sdc", "漢字.sdc", "D:/lib/x.sdc", "..\\x.sdc"}) {
    EXPECT_TRUE(database.AddTimingConstraintFile(name)) << name;
  }
  for (const char* name : {"", "dir.sdc", "dir.sdc/", "dir.sdc\\", "a.SDC", "a.sdc.bak", ".sdc"}) {
    EXPECT_FALSE(database.AddTimingConstraintFile(name)) << name;
  }
}

}  // namespace
