#include <filesystem>
#include <iterator>

#include "testing/denied.h"
#include "testing/named_pipe.h"
#include "testing/project_loading.h"
#include "testing/test.h"

namespace {

using namespace test_support;

/// Names that a URI or a locale could get wrong. The last one is not UTF-8.
const std::string kNames[] = {"two words", " blanks at both ends ",
                              "50%",       "a%20b",
                              "%41",       "%",
                              "a#b",       "a?b=c",
                              "a&b<c>",    "a;b",
                              "a+b",       "[a]{b}",
                              "a\\b",      "a:b",
                              "http:x",    "'a'\"b\"",
                              "größe",     "日本",
                              "🐟",         "new\nline",
                              "\x01",      "-",
                              "~",         "\xff\xfe\x80"};

/// A hint to a schema that accepts nothing but "device_info".
std::string HintedXml(const std::string& sections) {
  return ProjectXml(sections, "xsi:schemaLocation=\"http://schema.kel.example/wdp_proj s.xsd\"");
}

class LoadPaths : public testing::Test, public Loading {
 protected:
  void ExpectLoaded(const std::string& path, const std::string& schema = "") {
    database.CleanProjectDatabase();
    EXPECT_TRUE(LoadFile(path, schema));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path)));
    EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
  }

  void ExpectMissing(const std::string& path) {
    EXPECT_FALSE(LoadFile(path));
    EXPECT_THAT(messages, ElementsAre(MissingMessage(path)));
    EXPECT_FALSE(database.IsProjectDatabaseExist());
  }

  void ExpectRefused() {
    EXPECT_FALSE(LoadFile(path()));
    EXPECT_EQ(messages, RefusedMessages(path()));
    EXPECT_FALSE(database.IsProjectDatabaseExist());
  }
};

TEST_F(LoadPaths, LoadProjectData_ProjectFileOfAnyName_Loads) {
  for (const std::string& name : kNames) {
    SCOPED_TRACE(name);
    ExpectLoaded(Write(name + ".xml", ProjectXml(DeviceInfoXml("Orrin"))));
  }
}

TEST_F(LoadPaths, LoadProjectData_DirectoryOfAnyName_IsTheProjectsByAnyPath) {
  for (const std::string& name : kNames) {
    SCOPED_TRACE(name);
    std::filesystem::create_directory(directory / name);
    ExpectLoaded(Write(name + "/p.xml", ProjectXml(DeviceInfoXml("Orrin"))));
    EXPECT_EQ(database.GetProjectCurrentPath(), directory / name);
    const WorkingDirectory working_directory(directory / name);
    ExpectLoaded("p.xml");
    EXPECT_EQ(database.GetProjectCurrentPath(), directory / name);
  }
}

TEST_F(LoadPaths, LoadProjectData_SchemaOfAnyName_IsApplied) {
  Write("p.xml", ProjectXml(DeviceInfoXml("Orrin")));
  Write("bad.xml", ProjectXml("<isf_info/>"));
  for (const std::string& name : kNames) {
    SCOPED_TRACE(name);
    const std::string schema = Write(name + ".xsd", DeviceOnlySchema());
    ExpectLoaded(directory / "p.xml", schema);
    EXPECT_FALSE(LoadFile(directory / "bad.xml", schema));
  }
}

TEST_F(LoadPaths, LoadProjectData_HintAndIncludeInADirectoryOfAnyName_AreFollowed) {
  for (const std::string& name : kNames) {
    SCOPED_TRACE(name);
    std::filesystem::create_directory(directory / name);
    Write(name + "/rules.xsd", DeviceOnlySchema());
    Write(name + "/s.xsd",
          "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\""
          " targetNamespace=\"http://schema.kel.example/wdp_proj\">"
          "<xs:include schemaLocation=\"rules.xsd\"/></xs:schema>");
    ExpectLoaded(Write(name + "/p.xml", HintedXml(DeviceInfoXml("Orrin"))));
    EXPECT_FALSE(LoadFile(Write(name + "/bad.xml", HintedXml("<isf_info/>"))));
  }
}

TEST_F(LoadPaths, LoadProjectData_LongestNameOfAFileOrSeveralDots_Loads) {
  ExpectLoaded(Write(std::string(251, 'n') + ".xml", ProjectXml(DeviceInfoXml("Orrin"))));
  ExpectLoaded(Write("a.b..xml", ProjectXml(DeviceInfoXml("Orrin"))));
}

TEST_F(LoadPaths, LoadProjectData_LinkToAFile_ProjectIsInTheLinksDirectory) {
  std::filesystem::create_directory(directory / "sub");
  std::filesystem::create_symlink(Write("target", ProjectXml(DeviceInfoXml("Orrin"))),
                                  directory / "sub/p.xml");
  ExpectLoaded(directory / "sub/p.xml");
  EXPECT_EQ(database.GetProjectCurrentPath(), directory / "sub");
}

TEST_F(LoadPaths, LoadProjectData_EmptyName_ReturnsFalseWithoutMessage) {
  EXPECT_FALSE(LoadFile("", directory / "missing.xsd"));
  EXPECT_THAT(messages, IsEmpty());
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

TEST_F(LoadPaths, LoadProjectData_OtherExtension_CountsAsMissing) {
  for (const std::string name : {"p.XML", "p.Xml", "p.xmL", "p.xmlx", "p.xm", "p.xml.bak", "p.xml ",
                                 "p.xml.", "p", "pxml", ".xml"}) {
    SCOPED_TRACE(name);
    ExpectMissing(Write(name, ProjectXml("")));
  }
}

TEST_F(LoadPaths, LoadProjectData_NameOfNoFile_CountsAsMissing) {
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

TEST_F(LoadPaths, LoadProjectData_FileAndSchemaMissing_SaysNothingOfTheSchemaAndLeavesTheProject) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  EXPECT_FALSE(LoadFile(directory / "gone.xml", directory / "gone.xsd"));
  EXPECT_THAT(messages, ElementsAre(MissingMessage(directory / "gone.xml")));
  EXPECT_THAT(AllDifferences(CompleteProject(directory.path()), database), IsEmpty());
}

TEST_F(LoadPaths, LoadProjectData_DirectoryWithoutPermission_CountsAsMissing) {
  std::filesystem::create_directory(directory / "closed");
  const std::string path = Write("closed/p.xml", ProjectXml(""));
  const Denied denied(directory / "closed");
  if (!denied.effective()) GTEST_SKIP() << "cannot be denied";
  ExpectMissing(path);
}

TEST_F(LoadPaths, LoadProjectData_NameOfNoSchema_CountsAsMissing) {
  const std::string existing = Write("s.xsd", DeviceOnlySchema());
  for (const std::string& schema :
       {existing + '\0', existing + '\0' + ".xsd", std::string(1, '\0'), existing + "/s.xsd",
        directory / (std::string(300, 'n') + ".xsd")}) {
    SCOPED_TRACE(schema);
    EXPECT_TRUE(LoadBytes(ProjectXml("<isf_info/>"), schema));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), SchemaMissingMessage(schema)));
  }
}

TEST_F(LoadPaths, LoadProjectData_SchemaInADirectoryWithoutPermission_CountsAsMissing) {
  std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
  std::filesystem::create_directory(directory / "closed");
  const std::string schema = Write("closed/s.xsd", DeviceOnlySchema());
  const std::string project = Write("p.xml", ProjectXml("<isf_info/>"));
  const Denied denied(directory / "closed");
  if (!denied.effective() || !std::filesystem::exists(project)) GTEST_SKIP() << "cannot be denied";
  EXPECT_TRUE(LoadFile(project, schema));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(project), SchemaMissingMessage(schema)));
}

TEST_F(LoadPaths, LoadProjectData_Directory_IsReadAndRefusedAsMalformed) {
  std::filesystem::create_directory(path());
  ExpectRefused();
}

TEST_F(LoadPaths, LoadProjectData_FileThatCannotBeOpened_IsRefusedAsMalformed) {
  Write("p.xml", ProjectXml(""));
  std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
  const Denied denied(path());
  if (!denied.effective() || !std::filesystem::exists(path())) GTEST_SKIP() << "cannot be denied";
  ExpectRefused();
}

TEST_F(LoadPaths, LoadProjectData_FileThatCannotBeReadToItsEnd_IsRefusedAsMalformed) {
  const std::string unreadable = "/proc/self/mem";
  if (!std::filesystem::exists(unreadable)) GTEST_SKIP() << "no " << unreadable;
  std::filesystem::create_symlink(unreadable, path());
  ExpectRefused();
}

TEST_F(LoadPaths, LoadProjectData_PipeAsProjectFile_IsReadOnceWithAndWithoutSchema) {
  const NamedPipe pipe(path());
  for (const std::string& schema : {std::string(), Write("s.xsd", DeviceOnlySchema())}) {
    SCOPED_TRACE(schema);
    EXPECT_TRUE(
        pipe.RunWith(ProjectXml(DeviceInfoXml("Orrin")), [&] { ExpectLoaded(path(), schema); }));
  }
}

TEST_F(LoadPaths, LoadProjectData_ManyLoads_LeaveNoFileOpen) {
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
