#include <projectdb/project_file.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "testing/file_state.h"
#include "testing/test.h"
#include "tests/check/read_file.h"
#include "xml/file_uri.h"

namespace {

using namespace projectdb;
using namespace test_support;

TEST_F(ReadingFile, GoodFile_GivesTheContentsOfALoad) {
  const ProjectFile file = ReadBytes(CompleteProjectXml());
  EXPECT_THAT(file.problems, IsEmpty());
  ASSERT_TRUE(file.contents);
  EXPECT_THAT(AllDifferences(CompleteContents(), *file.contents), IsEmpty());
}

TEST_F(ReadingFile, ReadFile_PostsNoMessages) {
  Write("p.xml", ProjectXml("<unknown/>"));
  const MessageRecorder recorder;
  Read();
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

TEST_F(ReadingFile, FileThatLoadsWithFalse_GivesItsContentsAndTheError) {
  const ProjectFile file = ReadBytes(ProjectXml("<unknown/>", "name=\"kiln\""));
  EXPECT_THAT(ErrorsOf(file), ElementsAre(HasSubstr("<unknown> is not a section")));
  ASSERT_TRUE(file.contents);
  EXPECT_EQ(file.contents->project_name, "kiln");
}

TEST_F(ReadingFile, FileThatDoesNotLoad_GivesNoContentsAndTheErrors) {
  const ProjectFile file = ReadBytes("<project><device_info>");
  EXPECT_FALSE(file.contents);
  EXPECT_EQ(ErrorsOf(file).size(), 1U);
}

TEST_F(ReadingFile, FileThatBreaksTheSchema_GivesNoContents) {
  Write("p.xml", CompleteProjectXml());
  const ProjectFile file = Read(Write("device.xsd", DeviceOnlySchema()));
  EXPECT_FALSE(file.contents);
  EXPECT_FALSE(ErrorsOf(file).empty());
}

TEST_F(ReadingFile, NameThatIsNoProjectFiles_IsAnErrorButNoObstacle) {
  const ProjectFile file = ReadProjectFile(Write("p.txt", CompleteProjectXml()), "");
  EXPECT_THAT(ErrorsOf(file), ElementsAre("the name of a project file must end in \".xml\""));
  ASSERT_TRUE(file.contents);
  EXPECT_THAT(AllDifferences(CompleteContents(), *file.contents), IsEmpty());
}

TEST_F(ReadingFile, MissingFile_HasNoContentsAndNoVersion) {
  const ProjectFile file = Read();
  EXPECT_THAT(ErrorsOf(file), ElementsAre("the project file does not exist"));
  EXPECT_FALSE(file.contents);
  EXPECT_EQ(file.version, ProjectFileVersion());
}

TEST_F(ReadingFile, Directory_CannotBeRead) {
  std::filesystem::create_directory(path());
  const ProjectFile file = Read();
  EXPECT_THAT(ErrorsOf(file), ElementsAre(StartsWith("the file cannot be read: ")));
  EXPECT_FALSE(file.contents);
}

// --- What is not kept ---

TEST_F(ReadingFile, CommentsAndSecuritySections_AreUnkeptAndNoProblems) {
  const ProjectFile file = ReadBytes(
      "<!-- one --><project>\n text<!-- two\n --> <security/><!-- three -->\n"
      "<device_info><!-- four --></device_info></project>\n<!-- five -->");
  EXPECT_THAT(file.problems, IsEmpty());
  Lines unkept;
  for (const FileProblem& each : file.unkept) {
    EXPECT_EQ(each.severity, ProblemSeverity::kWarning);
    unkept.push_back(std::to_string(each.line) + ":" + std::to_string(each.column) + ": " +
                     each.message);
  }
  EXPECT_THAT(unkept, ElementsAre("1:1: the comment is not kept", "2:6: the comment is not kept",
                                  "3:6: <security> is not kept", "3:17: the comment is not kept",
                                  "4:14: the comment is not kept", "5:1: the comment is not kept"));
}

TEST_F(ReadingFile, FileThatIsKeptWhole_HasNothingUnkept) {
  EXPECT_THAT(ReadBytes(CompleteProjectXml()).unkept, IsEmpty());
}

// --- Versions ---

TEST_F(ReadingFile, UnchangedFile_HasItsVersionAgain) {
  Write("p.xml", CompleteProjectXml());
  const ProjectFileVersion version = Read().version;
  EXPECT_NE(version, ProjectFileVersion());
  EXPECT_EQ(Read().version, version);
}

TEST_F(ReadingFile, BytesChangedWithinOneClockTick_AreAnotherVersion) {
  const ProjectFileVersion version = ReadBytes(ProjectXml("", "name=\"one\"")).version;
  const FileTimes times(path());
  WriteFile(path(), ProjectXml("", "name=\"two\""));
  times.Restore();
  const ProjectFileVersion other = Read().version;
  EXPECT_EQ(other.changed_at, version.changed_at);
  EXPECT_EQ(other.size, version.size);
  EXPECT_NE(other, version);
}

TEST_F(ReadingFile, FileThatDoesNotLoad_BytesChangedWithinOneClockTick_AreAnotherVersion) {
  const std::string far_behind(200'000, 'x');
  for (const std::string begin :
       {"", "<a><b></a>", "<!DOCTYPE a><a/>", "<a>\xFF</a>", "<?xml encoding=\"none\"?><a/>"}) {
    SCOPED_TRACE(begin);
    const ProjectFile file = ReadBytes(begin + far_behind + "1");
    const FileTimes times(path());
    WriteFile(path(), begin + far_behind + "2");
    times.Restore();
    const ProjectFileVersion other = Read().version;
    EXPECT_FALSE(file.contents);
    EXPECT_EQ(other.changed_at, file.version.changed_at);
    EXPECT_EQ(other.size, file.version.size);
    EXPECT_NE(other, file.version);
  }
}

TEST_F(ReadingFile, FileThatASchemaRefuses_HasItsVersionAllTheSame) {
  Write("p.xml", CompleteProjectXml());
  const ProjectFile refused = Read(Write("device.xsd", DeviceOnlySchema()));
  EXPECT_FALSE(refused.contents);
  EXPECT_EQ(refused.version, Read().version);
}

TEST_F(ReadingFile, SchemaThatCannotBeRead_LeavesTheFileItsVersion) {
  Write("p.xml", CompleteProjectXml());
  const ProjectFile unread = Read(directory.path().string());
  EXPECT_FALSE(unread.contents);
  EXPECT_EQ(unread.version, Read().version);
}

TEST_F(ReadingFile, OtherFileOfTheSameBytesAndTime_IsAnotherVersion) {
  const ProjectFileVersion version = ReadBytes(CompleteProjectXml()).version;
  const FileTimes times(path());
  std::filesystem::copy_file(path(), directory / "copy.xml");
  std::filesystem::rename(directory / "copy.xml", path());
  times.Restore();
  EXPECT_NE(Read().version, version);
}

TEST_F(ReadingFile, FileThatWasTouched_IsAnotherVersion) {
  const ProjectFileVersion version = ReadBytes(CompleteProjectXml()).version;
  std::filesystem::last_write_time(path(), std::filesystem::file_time_type::min());
  EXPECT_NE(Read().version, version);
}

// --- Bytes ---

TEST(ParsingBytes, GoodBytes_GiveTheContentsWithoutDirectoryAndVersion) {
  const ProjectFile file = ParseProjectFile(CompleteProjectXml(), "");
  EXPECT_THAT(file.problems, IsEmpty());
  ASSERT_TRUE(file.contents);
  EXPECT_THAT(AllDifferences(CompleteProject(""), *file.contents), IsEmpty());
  EXPECT_EQ(file.version, ProjectFileVersion());
}

TEST(ParsingBytes, OtherEncoding_IsTheOneOfTheDeclaration) {
  const std::string declaration = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>";
  const ProjectFile file = ParseProjectFile(declaration + ProjectXml("", "name=\"\xFC\""), "");
  ASSERT_TRUE(file.contents);
  EXPECT_EQ(file.contents->project_name, "\xC3\xBC");
}

TEST(ParsingBytes, Problems_HaveTheirPlaces) {
  const ProjectFile file = ParseProjectFile("<project>\n <unknown/></project>", "");
  ASSERT_EQ(file.problems.size(), 1U);
  EXPECT_EQ(file.problems[0].line, 2U);
  EXPECT_EQ(file.problems[0].column, 2U);
}

TEST(ParsingBytes, TextThatIsNotUtf8_IsAnErrorWithItsPlace) {
  const ProjectFile file = ParseProjectFile("<project>\n<x y=\"\xFF\"/></project>", "");
  EXPECT_FALSE(file.contents);
  ASSERT_EQ(file.problems.size(), 1U);
  EXPECT_THAT(file.problems[0].message, HasSubstr("the text is not UTF-8"));
  EXPECT_EQ(file.problems[0].line, 2U);
  EXPECT_EQ(file.problems[0].column, 7U);
}

TEST_F(ReadingFile, BytesThatNameASchema_AreParsedWithoutIt) {
  const std::string schema = Write("device.xsd", DeviceOnlySchema());
  const std::string bytes =
      ProjectXml("<design_info/>", "xsi:schemaLocation=\"http://schema.kel.example/wdp_proj " +
                                       projectdb::xml::FileUri(NativePath(schema)) + "\"");
  ASSERT_FALSE(ReadBytes(bytes).contents);
  const ProjectFile file = ParseProjectFile(bytes, "");
  EXPECT_THAT(file.problems, IsEmpty());
  EXPECT_TRUE(file.contents);
}

TEST(ParsingBytes, NoBytes_AreNoProject) {
  const ProjectFile file = ParseProjectFile("", "");
  EXPECT_FALSE(file.contents);
  EXPECT_EQ(ErrorsOf(file).size(), 1U);
}

}  // namespace
