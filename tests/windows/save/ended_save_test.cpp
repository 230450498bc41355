#include <cstddef>
#include <filesystem>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>

#include <projectdb/project_file.h>

#include <windows.h>

#include "testing/filtered_calls.h"
#include "testing/saves.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"
#include "testing/windows/other_process.h"
#include "testing/windows/system_renaming.h"
#include "tests/save/file_changes.h"

namespace {

using namespace projectdb;
using namespace test_support;
using namespace test_support::file_changes;

constexpr DWORD kEndedStatus = 99;

/// A change of a file in another process, which is ended at a call.
struct EndedChange {
  const char* name;
  FileChange change;
  bool knows_renaming;
  std::size_t stride;  ///< From one call to the next at which it is ended.
};

const EndedChange kEndedChanges[] = {{"UpdateByRenaming", {"", true, false, UpdateToNext}, true, 3},
                                     {"SaveByMoving", {"", true, false, SaveNext}, false, 1},
                                     {"SaveNewByMoving", {"", false, false, SaveNext}, false, 1}};

/// Parts of tests, for processes of their own.
class PartThatIsEnded : public testing::Test {};

TEST_F(PartThatIsEnded, DISABLED_ChangesAFile) {
  const std::string choice = OtherProcess::ChoiceOfTheTest();
  const std::size_t blank = choice.find(' ');
  const EndedChange& ended = kEndedChanges[std::stoul(choice)];
  const std::size_t number = std::stoul(choice.substr(blank));
  const SystemRenaming renaming(ended.knows_renaming);
  std::size_t count = 0;
  const FilteredCalls filter([&](const files::SystemCall&) {
    if (count++ == number) TerminateProcess(GetCurrentProcess(), kEndedStatus);
    return 0;
  });
  ended.change.run(OtherProcess::FileOfTheTest(), {});
}

/// Which of them.
class EndedChangeOfAFile : public testing::TestWithParam<std::size_t> {
 protected:
  static const EndedChange& ended() { return kEndedChanges[GetParam()]; }

  void Prepare() const {
    std::filesystem::remove(path_);
    if (ended().change.has_former) WriteFile(path_, former_);
  }

  /// Has another process change the file.
  /// @return whether it was ended before the call of that number, the first being 0
  bool IsEndedAtCall(std::size_t number) const {
    const std::string choice = std::to_string(GetParam()) + " " + std::to_string(number);
    const DWORD status =
        OtherProcess("PartThatIsEnded.DISABLED_ChangesAFile", path_, choice).Wait();
    if (status != 0 && status != kEndedStatus) throw std::runtime_error("the part has failed");
    return status == kEndedStatus;
  }

  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "p.xml";
  const std::string former_ = FormatProjectFile(ProjectOfName("former"));
};

INSTANTIATE_TEST_SUITE_P(Changes, EndedChangeOfAFile,
                         testing::Range(std::size_t{0}, std::size(kEndedChanges)),
                         [](const auto& test_info) {
                           return std::string(kEndedChanges[test_info.param].name);
                         });

TEST_P(EndedChangeOfAFile, AtAnyCall_LeavesAWholeFileAndTheNextSaveRemovesWhatItLeft) {
  std::map<std::string, int> found;
  std::size_t abandoned = 0;
  for (std::size_t number = 0; Prepare(), IsEndedAtCall(number); number += ended().stride) {
    SCOPED_TRACE(number);
    const std::string name = NameFoundIn(path_);
    ++found[name];
    EXPECT_TRUE(name == "nothing" || IsFree(path_));
    abandoned += NamesIn(directory_.path()).size() - (name == "nothing" ? 0 : 1);
    WriteProjectFile(path_, CompleteProject());
    EXPECT_EQ(NameFoundIn(path_), "demo");
    EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  }
  EXPECT_THAT(found, UnorderedElementsAre(
                         Pair(ended().change.has_former ? "former" : "nothing", testing::Ge(10)),
                         Pair("next", testing::Ge(1))));
  EXPECT_GE(abandoned, 3U);
}

}  // namespace
