#include <filesystem>

#include "testing/difficult_names.h"
#include "testing/native_path.h"
#include "tests/project_db/path_loading.h"

namespace {

using namespace test_support;

/// A hint to a schema that accepts nothing but "device_info".
std::string HintedXml(const std::string& sections) {
  return ProjectXml(sections, "xsi:schemaLocation=\"http://schema.kel.example/wdp_proj s.xsd\"");
}

class LoadPaths : public PathLoading {};

TEST_F(LoadPaths, LoadProjectData_ProjectFileOfAnyName_Loads) {
  for (const std::string& name : DifficultNames()) {
    SCOPED_TRACE(name);
    ExpectLoaded(Write(name + ".xml", ProjectXml(DeviceInfoXml("Orrin"))));
  }
}

TEST_F(LoadPaths, LoadProjectData_DirectoryOfAnyName_IsTheProjectsByAnyPath) {
  for (const std::string& name : DifficultNames()) {
    SCOPED_TRACE(name);
    std::filesystem::create_directory(NativePath(directory / name));
    ExpectLoaded(Write(name + "/p.xml", ProjectXml(DeviceInfoXml("Orrin"))));
    EXPECT_EQ(database.GetProjectCurrentPath(), directory / name);
    const WorkingDirectory working_directory(NativePath(directory / name));
    ExpectLoaded("p.xml");
    EXPECT_EQ(database.GetProjectCurrentPath(), directory / name);
  }
}

TEST_F(LoadPaths, LoadProjectData_SchemaOfAnyName_IsApplied) {
  Write("p.xml", ProjectXml(DeviceInfoXml("Orrin")));
  Write("bad.xml", ProjectXml("<isf_info/>"));
  for (const std::string& name : DifficultNames()) {
    SCOPED_TRACE(name);
    const std::string schema = Write(name + ".xsd", DeviceOnlySchema());
    ExpectLoaded(directory / "p.xml", schema);
    EXPECT_FALSE(LoadFile(directory / "bad.xml", schema));
  }
}

TEST_F(LoadPaths, LoadProjectData_HintAndIncludeInADirectoryOfAnyName_AreFollowed) {
  for (const std::string& name : DifficultNames()) {
    SCOPED_TRACE(name);
    std::filesystem::create_directory(NativePath(directory / name));
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

TEST_F(LoadPaths, LoadProjectData_FileAndSchemaMissing_SaysNothingOfTheSchemaAndLeavesTheProject) {
  ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
  EXPECT_FALSE(LoadFile(directory / "gone.xml", directory / "gone.xsd"));
  EXPECT_THAT(messages, ElementsAre(MissingMessage(directory / "gone.xml")));
  EXPECT_THAT(AllDifferences(CompleteProject(directory.path()), database), IsEmpty());
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

TEST_F(LoadPaths, LoadProjectData_Directory_IsReadAndRefusedAsMalformed) {
  std::filesystem::create_directory(path());
  ExpectRefused();
}

}  // namespace
