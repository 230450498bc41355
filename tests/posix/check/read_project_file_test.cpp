#include <cerrno>
#include <filesystem>
#include <string>

#include <projectdb/project_file.h>

#include "testing/filtered_calls.h"
#include "testing/named_pipe.h"
#include "testing/test.h"
#include "tests/check/read_file.h"

namespace {

using namespace projectdb;
using namespace test_support;

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

TEST_F(ReadingFile, SystemThatOpensNoMoreFiles_IsAnErrorWithItsReason) {
  Write("p.xml", CompleteProjectXml());
  const FilteredCalls calls(FailCall("open", 1, EMFILE));
  EXPECT_THAT(ErrorsOf(Read()), ElementsAre("the file cannot be read: " + TextOfErrno(EMFILE)));
}

TEST_F(ReadingFile, Directory_IsAnErrorWithItsReason) {
  std::filesystem::create_directory(path());
  EXPECT_THAT(ErrorsOf(Read()), ElementsAre("the file cannot be read: " + TextOfErrno(EISDIR)));
}

TEST_F(ReadingFile, FirstReadThatFails_IsAnErrorWithItsReason) {
  Write("p.xml", CompleteProjectXml());
  const FilteredCalls calls(FailCall("read", 1, EIO));
  const ProjectFile file = Read();
  EXPECT_THAT(ErrorsOf(file), ElementsAre("the file cannot be read: " + TextOfErrno(EIO)));
  EXPECT_FALSE(file.contents);
}

TEST_F(ReadingFile, LaterReadThatFails_IsAnErrorWithItsReasonAndGivesNoContents) {
  Write("p.xml", ProjectXml("<!--" + std::string(200'000, '.') + "-->"));
  const FilteredCalls calls(FailCall("read", 3, EIO));
  const ProjectFile file = Read();
  EXPECT_THAT(ErrorsOf(file), ElementsAre("the file cannot be read: " + TextOfErrno(EIO)));
  EXPECT_FALSE(file.contents);
}

TEST_F(ReadingFile, FileOfWhichTheSystemDoesNotTell_IsAnErrorWithItsReason) {
  Write("p.xml", CompleteProjectXml());
  const FilteredCalls calls(FailCall("stat", 1, EIO));
  EXPECT_THAT(ErrorsOf(Read()), ElementsAre("the file cannot be read: " + TextOfErrno(EIO)));
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
  EXPECT_THAT(ErrorsOf(file), ElementsAre("the file cannot be read: " + TextOfErrno(EIO)));
  EXPECT_FALSE(file.contents);
}

TEST_F(ReadingFile, InterruptedRead_IsTriedAgain) {
  Write("p.xml", CompleteProjectXml());
  const FilteredCalls calls(FailCall("read", 1, EINTR));
  EXPECT_THAT(Read().problems, IsEmpty());
}

TEST_F(ReadingFile, FileThatCannotBeRead_HasAVersionWithoutItsBytes) {
  Write("p.xml", "<a><b></a>" + std::string(200'000, 'x'));
  const ProjectFileVersion version = Read().version;
  for (const char* name : {"open", "read"}) {
    for (int number = 1; number <= (name == std::string("open") ? 1 : 4); ++number) {
      SCOPED_TRACE(name + std::to_string(number));
      const FilteredCalls calls(FailCall(name, number, EIO));
      const ProjectFile file = Read();
      EXPECT_THAT(ErrorsOf(file), Contains("the file cannot be read: " + TextOfErrno(EIO)));
      EXPECT_EQ(file.version.file, version.file);
      EXPECT_EQ(file.version.size, version.size);
      EXPECT_EQ(file.version.bytes_digest, 0U);
    }
  }
}

TEST_F(ReadingFile, EndlessDevice_IsReadNoFurtherThanByALoadAndHasNoVersion) {
  const ProjectFile file = ReadProjectFile("/dev/zero", "");
  EXPECT_FALSE(file.contents);
  EXPECT_EQ(file.version, ProjectFileVersion());
}

}  // namespace
