#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "testing/filtered_calls.h"
#include "testing/sanitizers.h"
#include "testing/saving.h"
#include "testing/test.h"
#include "testing/threads.h"
#include "testing/xml_platform.h"
#include "tests/posix/save/lock_probe.h"
#include "tests/save/updated_file.h"

namespace {

using namespace projectdb;
using namespace test_support;
using namespace std::chrono_literals;

// The XML library is there for each call alone, as in a program that does nothing else with it.
TEST_F(Update, TooFewFilesMayBeOpen_IsAnErrorAndLeavesTheFormerFile) {
  if (kSanitized) GTEST_SKIP() << "the sanitizer needs files of its own";
  const FileState former(path());
  const auto change = [](ProjectContents& project) { project.project_name = "next"; };
  const auto judge = [&](const std::string& error) {
    EXPECT_THAT(error, HasSubstr(TextOfErrno(EMFILE)));
    EXPECT_EQ(FileState(path()), former);
    EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
  };
  EXPECT_GE(FailuresWithTooFewFiles([&] { return UpdateError(change); }, judge), 3);
  EXPECT_EQ(Contents().project_name, "next");
}

// The one that is read is not the one that was locked.
TEST_F(Update, FileThatIsReplacedBeforeItIsRead_IsWrittenUnderItsOwnLock) {
  Write("next.xml", ProjectXml("", "name=\"other\""));
  bool is_locked = false;
  bool is_replaced = false;
  const FilteredCalls calls([&](const projectdb::files::SystemCall& call) {
    const std::string name = call.name;
    if (name == "open" && is_locked && !is_replaced) {
      is_replaced = true;
      std::filesystem::rename(directory / "next.xml", path());
    }
    if (name == "flock") is_locked = true;
    if (name == "renameat") {
      EXPECT_TRUE(IsLockedByAnybody(path()));
    }
    return 0;
  });
  EXPECT_TRUE(UpdateProjectFile(
      path(), [](ProjectContents& project) { project.device_info.family = "Tessel"; }));
  EXPECT_TRUE(is_replaced);
  EXPECT_EQ(Contents().device_info.family, "Tessel");
}

/// Reads a file again and again for as long as it lives.
class PollingReader {
 public:
  explicit PollingReader(std::string path) : path_(std::move(path)) {}
  ~PollingReader() { is_ended_ = true; }
  PollingReader(const PollingReader&) = delete;
  PollingReader& operator=(const PollingReader&) = delete;

  /// Ends.
  /// @return the number of misc. files in each reading
  /// @exception std::runtime_error if a reading found a damaged file
  std::vector<std::size_t> TakeCounts() {
    is_ended_ = true;
    return counts_.get();
  }

 private:
  std::vector<std::size_t> Poll() const {
    std::vector<std::size_t> counts;
    do {
      const ProjectFile file = ReadProjectFile(path_, "");
      if (!file.contents || !file.problems.empty()) throw std::runtime_error("it is damaged");
      counts.push_back(file.contents->misc_files.size());
      std::this_thread::sleep_for(5ms);
    } while (!is_ended_);
    return counts;
  }

  std::string path_;
  std::atomic<bool> is_ended_{false};
  std::future<std::vector<std::size_t>> counts_ =
      std::async(std::launch::async, [this] { return Poll(); });
};

TEST_F(Update, EightThreadsWhileAnotherReads_KeepTheFileWholeAtEveryMoment) {
  const XmlPlatform platform;  // Starting it takes longer than an update.
  constexpr int kUpdatesOfEachThread = kSanitized ? 10 : 25;
  UpdateProjectFile(path(), [](ProjectContents& project) { project.misc_files.clear(); });
  PollingReader reader(path());
  InThreads(8, [&](int thread) {
    for (int i = 0; i < kUpdatesOfEachThread; ++i) {
      const std::string name = std::to_string(thread) + "_" + std::to_string(i) + ".txt";
      UpdateProjectFile(path(), [&](ProjectContents& project) {
        project.misc_files.emplace_back(name, "", "default");
      });
    }
  });
  std::vector<std::size_t> counts;
  ASSERT_NO_THROW(counts = reader.TakeCounts());
  EXPECT_TRUE(std::is_sorted(counts.begin(), counts.end())) << "an update was gone for a while";
  EXPECT_GE(counts.size(), 5U);
  EXPECT_THAT(Contents().misc_files, SizeIs(8 * kUpdatesOfEachThread));
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
}

}  // namespace
