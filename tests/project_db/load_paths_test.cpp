#include <clocale>
#include <filesystem>
#include <iterator>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/denied.h"
#include "testing/named_pipe.h"
#include "testing/project_loading.h"
#include "testing/temporary_directory.h"

namespace {

using namespace test_support;
using testing::ElementsAre;

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

  void ExpectSchemaMissing(const std::string& schema) {
    EXPECT_TRUE(LoadBytes(ProjectXml("<isf_info/>"), schema));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), SchemaMissingMessage(schema)));
  }
};

TEST_F(LoadPaths, LoadProjectData_ProjectFileOfAnyName_Loads) {
  for (const std::string& name : kNames) {
    SCOPED_TRACE(name);
    ExpectLoaded(Write(name + ".xml", ProjectXml(DeviceInfoXml("Orrin"))));
  }
}

TEST_F(LoadPaths, LoadProjectData_DirectoryOfAnyName_IsTheProjects) {
  for (const std::string& name : kNames) {
    SCOPED_TRACE(name);
    std::filesystem::create_directory(directory / name);
    ExpectLoaded(Write(name + "/p.xml", ProjectXml(DeviceInfoXml("Orrin"))));
    EXPECT_EQ(database.GetProjectCurrentPath(), directory / name);
  }
}

TEST_F(LoadPaths, LoadProjectData_WorkingDirectoryOfAnyName_IsTheProjects) {
  for (const std::string& name : kNames) {
    SCOPED_TRACE(name);
    std::filesystem::create_directory(directory / name);
    Write(name + "/p.xml", ProjectXml(DeviceInfoXml("Orrin")));
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

TEST_F(LoadPaths, LoadProjectData_HintInADirectoryOfAnyName_IsFollowed) {
  for (const std::string& name : kNames) {
    SCOPED_TRACE(name);
    std::filesystem::create_directory(directory / name);
    Write(name + "/s.xsd", DeviceOnlySchema());
    ExpectLoaded(Write(name + "/p.xml", HintedXml(DeviceInfoXml("Orrin"))));
    EXPECT_FALSE(LoadFile(Write(name + "/bad.xml", HintedXml("<isf_info/>"))));
  }
}

TEST_F(LoadPaths, LoadProjectData_SchemaIncludeInADirectoryOfAnyName_IsFollowed) {
  for (const std::string& name : kNames) {
    SCOPED_TRACE(name);
    std::filesystem::create_directory(directory / name);
    Write(name + "/rules.xsd", DeviceOnlySchema());
    const std::string schema = Write(name + "/s.xsd",
                                     "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\""
                                     " targetNamespace=\"http://schema.kel.example/wdp_proj\">"
                                     "<xs:include schemaLocation=\"rules.xsd\"/></xs:schema>");
    EXPECT_TRUE(LoadBytes(ProjectXml(DeviceInfoXml("Orrin")), schema));
    EXPECT_FALSE(LoadBytes(ProjectXml("<isf_info/>"), schema));
  }
}

TEST_F(LoadPaths, LoadProjectData_LongestNameOfAFile_Loads) {
  ExpectLoaded(Write(std::string(251, 'n') + ".xml", ProjectXml(DeviceInfoXml("Orrin"))));
}

TEST_F(LoadPaths, LoadProjectData_LinkToAFile_ProjectIsInTheLinksDirectory) {
  std::filesystem::create_directory(directory / "sub");
  std::filesystem::create_symlink(Write("target", ProjectXml(DeviceInfoXml("Orrin"))),
                                  directory / "sub/p.xml");
  ExpectLoaded(directory / "sub/p.xml");
  EXPECT_EQ(database.GetProjectCurrentPath(), directory / "sub");
}

TEST_F(LoadPaths, LoadProjectData_NameWithSeveralDots_EndsInTheLast) {
  ExpectLoaded(Write("a.b..xml", ProjectXml(DeviceInfoXml("Orrin"))));
}

// ---- Names that count as missing

TEST_F(LoadPaths, LoadProjectData_NameWithNul_CountsAsMissing) {
  const std::string existing = Write("p.xml", ProjectXml(""));
  for (const std::string& name :
       {existing + '\0', existing + '\0' + ".xml", std::string(1, '\0') + ".xml",
        directory / "a" + '\0' + "/p.xml"}) {
    ExpectMissing(name);
  }
}

TEST_F(LoadPaths, LoadProjectData_NameTooLong_CountsAsMissing) {
  ExpectMissing(directory / (std::string(300, 'n') + ".xml"));
}

TEST_F(LoadPaths, LoadProjectData_PathTooLong_CountsAsMissing) {
  std::string path = directory.path().string();
  while (path.size() < 10000) path += "/.";
  Write("p.xml", ProjectXml(""));
  ExpectMissing(path + "/p.xml");
}

TEST_F(LoadPaths, LoadProjectData_FileBelowAFile_CountsAsMissing) {
  ExpectMissing(Write("q.xml", ProjectXml("")) + "/p.xml");
}

TEST_F(LoadPaths, LoadProjectData_LinkToItself_CountsAsMissing) {
  std::filesystem::create_symlink(directory / "p.xml", directory / "p.xml");
  ExpectMissing(directory / "p.xml");
}

TEST_F(LoadPaths, LoadProjectData_DirectoryWithoutPermission_CountsAsMissing) {
  std::filesystem::create_directory(directory / "closed");
  const std::string path = Write("closed/p.xml", ProjectXml(""));
  const Denied denied(directory / "closed");
  if (!denied.effective()) GTEST_SKIP() << "cannot be denied";
  ExpectMissing(path);
}

TEST_F(LoadPaths, LoadProjectData_SchemaNameWithNul_CountsAsMissing) {
  const std::string existing = Write("s.xsd", DeviceOnlySchema());
  ExpectSchemaMissing(existing + '\0');
  ExpectSchemaMissing(existing + '\0' + ".xsd");
  ExpectSchemaMissing(std::string(1, '\0'));
}

TEST_F(LoadPaths, LoadProjectData_SchemaNameTooLong_CountsAsMissing) {
  ExpectSchemaMissing(directory / (std::string(300, 'n') + ".xsd"));
}

TEST_F(LoadPaths, LoadProjectData_SchemaBelowAFile_CountsAsMissing) {
  ExpectSchemaMissing(Write("q.xml", "") + "/s.xsd");
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

// ---- Files that cannot be read

TEST_F(LoadPaths, LoadProjectData_FileThatCannotBeReadToItsEnd_IsRefusedAsMalformed) {
  const std::string unreadable = "/proc/self/mem";
  if (!std::filesystem::exists(unreadable)) GTEST_SKIP() << "no " << unreadable;
  std::filesystem::create_symlink(unreadable, path());
  EXPECT_FALSE(LoadFile(path()));
  EXPECT_EQ(messages, RefusedMessages(path()));
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

// ---- The file is opened once

TEST_F(LoadPaths, LoadProjectData_PipeAsProjectFile_IsReadOnce) {
  const std::string path = directory / "p.xml";
  const NamedPipe pipe(path);
  bool result = false;
  EXPECT_TRUE(pipe.RunWith(ProjectXml(DeviceInfoXml("Orrin")), [&] { result = LoadFile(path); }));
  EXPECT_TRUE(result);
  EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
}

TEST_F(LoadPaths, LoadProjectData_PipeAsProjectFileWithSchema_IsReadOnce) {
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  const std::string path = directory / "p.xml";
  const NamedPipe pipe(path);
  bool result = false;
  EXPECT_TRUE(
      pipe.RunWith(ProjectXml(DeviceInfoXml("Orrin")), [&] { result = LoadFile(path, schema); }));
  EXPECT_TRUE(result);
  EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
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

// ---- Locales

/// Makes a locale of the C library that of the process for as long as it lives.
class ProcessLocale {
 public:
  explicit ProcessLocale(const char* name)
      : former_(std::setlocale(LC_ALL, nullptr)), set_(std::setlocale(LC_ALL, name) != nullptr) {}
  ~ProcessLocale() { std::setlocale(LC_ALL, former_.c_str()); }
  ProcessLocale(const ProcessLocale&) = delete;
  ProcessLocale& operator=(const ProcessLocale&) = delete;

  bool set() const { return set_; }

 private:
  std::string former_;
  bool set_;
};

class LoadLocale : public LoadPaths, public testing::WithParamInterface<const char*> {};

TEST_P(LoadLocale, LoadProjectData_TextOutsideAscii_IsTheSameInEveryLocale) {
  const ProcessLocale locale(GetParam());
  if (!locale.set()) GTEST_SKIP() << "no such locale";
  std::filesystem::create_directory(directory / "größe 日本");
  Write("größe 日本/schéma.xsd", DeviceOnlySchema());
  const std::string path =
      Write("größe 日本/🐟.xml",
            ProjectXml(DeviceInfoXml("Ørrin 日本 🐟"),
                       "name=\"größe\" attribüt=\"wért\""
                       " xsi:schemaLocation=\"http://schema.kel.example/wdp_proj schéma.xsd\""));
  EXPECT_TRUE(LoadFile(path));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path)));
  EXPECT_EQ(database.GetProjectName(), "größe");
  EXPECT_EQ(database.GetProjectCurrentPath(), directory / "größe 日本");
  EXPECT_EQ(database.GetDeviceFamily(), "Ørrin 日本 🐟");
  std::string value;
  EXPECT_TRUE(database.GetProjectInfoAttribute("attribüt", value));
  EXPECT_EQ(value, "wért");
}

TEST_P(LoadLocale, LoadProjectData_TagOutsideAscii_IsReportedAlikeInEveryLocale) {
  const ProcessLocale locale(GetParam());
  if (!locale.set()) GTEST_SKIP() << "no such locale";
  EXPECT_FALSE(LoadBytes(ProjectXml("<größe/>")));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), UnexpectedMessage("größe")));
}

TEST_P(LoadLocale, LoadProjectData_HintOutsideAscii_IsFollowedInEveryLocale) {
  const ProcessLocale locale(GetParam());
  if (!locale.set()) GTEST_SKIP() << "no such locale";
  Write("schéma.xsd", DeviceOnlySchema());
  EXPECT_FALSE(LoadBytes(ProjectXml(
      "<isf_info/>", "xsi:schemaLocation=\"http://schema.kel.example/wdp_proj schéma.xsd\"")));
}

INSTANTIATE_TEST_SUITE_P(All, LoadLocale, testing::Values("C", "C.UTF-8"),
                         [](const auto& test_info) {
                           return std::string(test_info.param) == "C" ? "Classic" : "Utf8";
                         });

}  // namespace
