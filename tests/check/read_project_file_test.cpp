#include <projectdb/project_file.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "testing/denied.h"
#include "testing/filtered_calls.h"
#include "testing/named_pipe.h"
#include "testing/project_loading.h"
#include "testing/saving.h"

namespace {

using namespace projectdb;
using namespace test_support;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Lines ErrorsOf(const ProjectFile& file) {
  Lines errors;
  for (const FileProblem& problem : file.problems) {
    if (IsError(problem)) errors.push_back(problem.message);
  }
  return errors;
}

class ReadingFile : public testing::Test, public Loading {
 protected:
  ProjectFile Read(const std::string& schema = "") const { return ReadProjectFile(path(), schema); }

  ProjectFile ReadBytes(const std::string& bytes) const {
    Write("p.xml", bytes);
    return Read();
  }

  ProjectContents CompleteContents() const { return CompleteProject(directory.path().string()); }
};

TEST_F(ReadingFile, GoodFile_GivesTheContentsOfALoad) {
  const ProjectFile file = ReadBytes(CompleteProjectXml());
  EXPECT_THAT(file.problems, IsEmpty());
  ASSERT_TRUE(file.contents);
  EXPECT_THAT(AllDifferences(CompleteContents(), *file.contents), IsEmpty());
}

TEST_F(ReadingFile, GoodFile_IsOpenedOnce) {
  Write("p.xml", CompleteProjectXml());
  int opened = 0;
  const FilteredCalls calls([&](const projectdb::files::SystemCall& call) {
    if (call.name == std::string("open")) ++opened;
    return 0;
  });
  Read();
  EXPECT_EQ(opened, 1);
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

TEST_F(ReadingFile, Pipe_IsReadToItsEndAndHasNoVersion) {
  const NamedPipe pipe(directory / "pipe");
  ProjectFile file;
  EXPECT_TRUE(
      pipe.RunWith(CompleteProjectXml(), [&] { file = ReadProjectFile(directory / "pipe", ""); }));
  ASSERT_TRUE(file.contents);
  EXPECT_THAT(AllDifferences(CompleteContents(), *file.contents), IsEmpty());
  EXPECT_EQ(file.version, ProjectFileVersion());
}

TEST_F(ReadingFile, PipeWithTextThatIsNoUtf8_IsReadOnceAlone) {
  const NamedPipe pipe(directory / "pipe");
  ProjectFile file;
  EXPECT_TRUE(pipe.RunWith(ProjectXml("", "name=\"\xFF\""),
                           [&] { file = ReadProjectFile(directory / "pipe", ""); }));
  EXPECT_FALSE(file.contents);
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
  EXPECT_THAT(ErrorsOf(file), ElementsAre("the file cannot be read: Is a directory"));
  EXPECT_FALSE(file.contents);
}

TEST_F(ReadingFile, SystemThatOpensNoMoreFiles_IsAnErrorWithItsReason) {
  Write("p.xml", CompleteProjectXml());
  const FilteredCalls calls(FailCall("open", 1, EMFILE));
  EXPECT_THAT(ErrorsOf(Read()), ElementsAre("the file cannot be read: Too many open files"));
}

TEST_F(ReadingFile, FirstReadThatFails_IsAnErrorWithItsReason) {
  Write("p.xml", CompleteProjectXml());
  const FilteredCalls calls(FailCall("read", 1, EIO));
  const ProjectFile file = Read();
  EXPECT_THAT(ErrorsOf(file), ElementsAre("the file cannot be read: Input/output error"));
  EXPECT_FALSE(file.contents);
}

TEST_F(ReadingFile, LaterReadThatFails_IsAnErrorAndGivesNoContents) {
  Write("p.xml", ProjectXml("<!--" + std::string(200'000, '.') + "-->"));
  const FilteredCalls calls(FailCall("read", 3, EIO));
  const ProjectFile file = Read();
  EXPECT_EQ(ErrorsOf(file).size(), 1U);
  EXPECT_FALSE(file.contents);
}

TEST_F(ReadingFile, FileOfWhichTheSystemDoesNotTell_IsAnErrorWithItsReason) {
  Write("p.xml", CompleteProjectXml());
  const FilteredCalls calls(FailCall("stat", 1, EIO));
  EXPECT_THAT(ErrorsOf(Read()), ElementsAre("the file cannot be read: Input/output error"));
}

TEST_F(ReadingFile, RestThatCannotBeRead_IsAnErrorAndGivesNoContents) {
  Write("p.xml", CompleteProjectXml());
  int reads = 0;
  {
    const FilteredCalls calls([&](const projectdb::files::SystemCall& call) {
      if (call.name == std::string("read")) ++reads;
      return 0;
    });
    Read();
  }
  const FilteredCalls calls(FailCall("read", reads, EIO));
  const ProjectFile file = Read();
  EXPECT_THAT(ErrorsOf(file), ElementsAre("the file cannot be read: Input/output error"));
  EXPECT_FALSE(file.contents);
}

TEST_F(ReadingFile, InterruptedRead_IsTriedAgain) {
  Write("p.xml", CompleteProjectXml());
  const FilteredCalls calls(FailCall("read", 1, EINTR));
  EXPECT_THAT(Read().problems, IsEmpty());
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

TEST_F(ReadingFile, FileThatDoesNotLoad_HasAVersionWithoutItsBytesAndIsNotReadToItsEnd) {
  Write("p.xml", "<a><b></a>" + std::string(1'000'000, 'x'));
  int reads = 0;
  const FilteredCalls calls([&](const projectdb::files::SystemCall& call) {
    if (call.name == std::string("read")) ++reads;
    return 0;
  });
  const ProjectFileVersion version = Read().version;
  EXPECT_EQ(version.size, 1'000'010U);
  EXPECT_EQ(version.bytes_digest, 0U);
  EXPECT_LE(reads, 3);
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
      ProjectXml("<design_info/>",
                 "xsi:schemaLocation=\"http://schema.kel.example/wdp_proj file://" + schema + "\"");
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
