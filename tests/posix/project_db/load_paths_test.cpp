#include <filesystem>
#include <iterator>

#include "testing/denied.h"
#include "testing/named_pipe.h"
#include "tests/project_db/path_loading.h"

namespace {

using namespace test_support;

class LoadPathsOnPosix : public PathLoading {};

TEST_F(LoadPathsOnPosix, LoadProjectData_LinkToAFile_ProjectIsInTheLinksDirectory) {
  std::filesystem::create_directory(directory / "sub");
  std::filesystem::create_symlink(Write("target", ProjectXml(DeviceInfoXml("Orrin"))),
                                  directory / "sub/p.xml");
  ExpectLoaded(directory / "sub/p.xml");
  EXPECT_EQ(database.GetProjectCurrentPath(), directory / "sub");
}

TEST_F(LoadPathsOnPosix, LoadProjectData_NameOfNoFile_CountsAsMissing) {
  const std::string existing = Write("p.xml", ProjectXml(""));
  std::filesystem::create_symlink(directory / "gone", directory / "nowhere.xml");
  std::filesystem::create_symlink(directory / "loop.xml", directory / "loop.xml");
  std::string long_path = directory.path().string();
  while (long_path.size() < 10000) long_path += "/.";
  for (const std::string& path :
       {directory / "gone.xml", directory / "no/such/p.xml", directory / "nowhere.xml",
        directory / "loop.xml", existing + '/', existing + "/p.xml", existing + '\0',
        existing + '\0' + ".xml", std::string(1, '\0') + ".xml", directory / "a" + '\0' + "/p.xml",
        directory / (std::string(300, 'n') + ".xml"), long_path + "/p.xml",
        // The message has the path as it was passed.
        std::string("./a/../{}.xml"), std::string("no//such.xml"), std::string("{0}{1:x}.xml"),
        std::string("a\"b.xml")}) {
    SCOPED_TRACE(path);
    ExpectMissing(path);
  }
}

TEST_F(LoadPathsOnPosix, LoadProjectData_DirectoryWithoutPermission_CountsAsMissing) {
  std::filesystem::create_directory(directory / "closed");
  const std::string path = Write("closed/p.xml", ProjectXml(""));
  const Denied denied(directory / "closed");
  if (!denied.effective()) GTEST_SKIP() << "cannot be denied";
  ExpectMissing(path);
}

TEST_F(LoadPathsOnPosix, LoadProjectData_SchemaInADirectoryWithoutPermission_CountsAsMissing) {
  std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
  std::filesystem::create_directory(directory / "closed");
  const std::string schema = Write("closed/s.xsd", DeviceOnlySchema());
  const std::string project = Write("p.xml", ProjectXml("<isf_info/>"));
  const Denied denied(directory / "closed");
  if (!denied.effective() || !std::filesystem::exists(project)) GTEST_SKIP() << "cannot be denied";
  EXPECT_TRUE(LoadFile(project, schema));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(project), SchemaMissingMessage(schema)));
}

TEST_F(LoadPathsOnPosix, LoadProjectData_FileThatCannotBeOpened_IsRefusedAsMalformed) {
  Write("p.xml", ProjectXml(""));
  std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
  const Denied denied(path());
  if (!denied.effective() || !std::filesystem::exists(path())) GTEST_SKIP() << "cannot be denied";
  ExpectRefused();
}

TEST_F(LoadPathsOnPosix, LoadProjectData_FileThatCannotBeReadToItsEnd_IsRefusedAsMalformed) {
  const std::string unreadable = "/proc/self/mem";
  if (!std::filesystem::exists(unreadable)) GTEST_SKIP() << "no " << unreadable;
  std::filesystem::create_symlink(unreadable, path());
  ExpectRefused();
}

TEST_F(LoadPathsOnPosix, LoadProjectData_PipeAsProjectFile_IsReadOnceWithAndWithoutSchema) {
  const NamedPipe pipe(path());
  for (const std::string& schema : {std::string(), Write("s.xsd", DeviceOnlySchema())}) {
    SCOPED_TRACE(schema);
    EXPECT_TRUE(
        pipe.RunWith(ProjectXml(DeviceInfoXml("Orrin")), [&] { ExpectLoaded(path(), schema); }));
  }
}

TEST_F(LoadPathsOnPosix, LoadProjectData_ManyLoads_LeaveNoFileOpen) {
  const auto open_files = [] {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
  };
  if (!std::filesystem::exists("/proc/self/fd")) GTEST_SKIP() << "open files cannot be listed";
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  LoadBytes(ProjectXml(""), schema);
  const auto before = open_files();
  for (const std::string& bytes :
       {ProjectXml(""), ProjectXml("<isf_info/>"), std::string("<project>")}) {
    LoadBytes(bytes, schema);
    LoadBytes(bytes);
  }
  EXPECT_EQ(open_files(), before);
}

}  // namespace
