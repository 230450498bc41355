#include <projectdb/project_file.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <future>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <projectdb/durable_export.h>
#include <projectdb/project_db.h>

#include "testing/file_state.h"
#include "testing/sanitizers.h"
#include "testing/saves.h"
#include "testing/test.h"
#include "testing/threads.h"
#include "testing/xml_platform.h"
#include "tests/save/updated_file.h"

namespace {

using namespace std::chrono_literals;
using namespace projectdb;
using namespace test_support;
using testing::UnorderedElementsAreArray;

TEST_F(Update, ChangedContents_AreInTheFile) {
  EXPECT_TRUE(UpdateProjectFile(path(), [](ProjectContents& project) {
    project.device_info.family = "Varel";
    project.misc_files.erase(project.misc_files.begin());
  }));
  EXPECT_EQ(Contents().device_info.family, "Varel");
  EXPECT_TRUE(Contents().misc_files.empty());
}

TEST_F(Update, UnchangedContents_LeaveTheFileAlone) {
  const FileState before(path());
  EXPECT_FALSE(UpdateProjectFile(path(), [](ProjectContents&) {}));
  EXPECT_EQ(FileState(path()), before);
}

TEST_F(Update, Change_IsGivenWhatTheFileHolds) {
  std::string name;
  UpdateProjectFile(path(), [&](ProjectContents& project) { name = project.project_name; });
  EXPECT_EQ(name, "demo");
}

TEST_F(Update, ChangeThatThrows_LeavesTheFileAloneAndUnlocked) {
  const FileState before(path());
  EXPECT_THROW(UpdateProjectFile(path(), [](ProjectContents&) { throw std::logic_error("no"); }),
               std::logic_error);
  EXPECT_EQ(FileState(path()), before);
  EXPECT_NO_THROW(ProjectFileLock(path(), 0ms));
}

TEST_F(Update, ChangeThatThrowsProjectFileChanged_PassesItOn) {
  int calls = 0;
  const auto change = [&](ProjectContents&) {
    ++calls;
    throw ProjectFileChanged("another file");
  };
  EXPECT_THROW(UpdateProjectFile(path(), change), ProjectFileChanged);
  EXPECT_EQ(calls, 1);
}

TEST_F(Update, KeptStamps_AreThoseOfTheFile) {
  UpdateOptions options;
  options.keep_stamps = true;
  UpdateProjectFile(
      path(), [](ProjectContents& project) { project.project_name = "x"; }, options);
  EXPECT_EQ(Contents().software_version, "0.0.1");
  EXPECT_EQ(Contents().last_modify_time, "long ago");
}

TEST_F(Update, CanonicalWanted_ReplacesOtherBytesOfTheSameContentsOnce) {
  UpdateOptions options;
  options.canonical = true;
  EXPECT_TRUE(UpdateProjectFile(
      path(), [](ProjectContents&) {}, options));
  EXPECT_FALSE(UpdateProjectFile(
      path(), [](ProjectContents&) {}, options));
}

TEST_F(Update, ContentsThatNoFileCanHold_LeaveTheFileAlone) {
  const FileState before(path());
  EXPECT_THAT(UpdateError([](ProjectContents& project) { project.project_name = "\x01"; }),
              HasSubstr("Failed writing XML file " + path()));
  EXPECT_EQ(FileState(path()), before);
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
}

TEST_F(Update, FileWithAnError_IsRefusedWithItsText) {
  Write("p.xml", ProjectXml("<unknown/>"));
  const FileState before(path());
  EXPECT_THAT(UpdateError([](ProjectContents& project) { project.project_name = "x"; }),
              HasSubstr("<unknown> is not a section"));
  EXPECT_EQ(FileState(path()), before);
}

TEST_F(Update, FileWithAnErrorDespiteErrors_IsChanged) {
  Write("p.xml", ProjectXml("<unknown/>"));
  UpdateOptions options;
  options.despite_errors = true;
  EXPECT_EQ(UpdateError([](ProjectContents& project) { project.project_name = "x"; }, options), "");
  EXPECT_EQ(Contents().project_name, "x");
}

TEST_F(Update, Reading_IsGivenToTheCallerWithItsProblemsBeforeTheyEndTheUpdate) {
  Write("p.xml", ProjectXml("<kel:floorplan/>"));
  UpdateOptions options;
  std::size_t problems = 0;
  options.on_reading = [&](const ProjectFile& file) { problems = file.problems.size(); };
  EXPECT_NE(UpdateError([](ProjectContents&) {}, options), "");
  EXPECT_EQ(problems, 1u);
}

TEST_F(Update, FileThatDoesNotLoad_IsRefusedDespiteErrors) {
  Write("p.xml", "<project");
  UpdateOptions options;
  options.despite_errors = true;
  EXPECT_THAT(UpdateError([](ProjectContents&) {}, options), HasSubstr(path()));
}

TEST_F(Update, FileThatBreaksTheGivenSchema_IsRefused) {
  UpdateOptions options;
  options.schema_file = Write("device.xsd", DeviceOnlySchema());
  EXPECT_NE(UpdateError([](ProjectContents& project) { project.project_name = "x"; }, options), "");
  EXPECT_EQ(Contents().project_name, "demo");
}

TEST_F(Update, MissingFile_IsAnErrorThatNamesIt) {
  std::filesystem::remove(path());
  EXPECT_THAT(UpdateError([](ProjectContents&) {}), HasSubstr(path()));
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(Update, FileThatOthersLock_IsWaitedForUpToTheGivenTime) {
  const ProjectFileLock lock(path());
  UpdateOptions options;
  options.longest_wait = 0ms;
  EXPECT_THAT(UpdateError([](ProjectContents&) {}, options), HasSubstr("it is locked by others"));
}

TEST_F(Update, FileThatIsReplacedMeanwhileWithoutTheLock_IsReadAgainAndKeepsThatChangeToo) {
  KelProjectDatabase other;
  other.CreateNewProjectDatabase("other");
  int calls = 0;
  UpdateProjectFile(path(), [&](ProjectContents& project) {
    if (++calls == 1) WriteFile(path() + ".new", FormatProjectFile(GetProjectContents(other)));
    if (calls == 1) std::filesystem::rename(path() + ".new", path());
    project.device_info.family = "Tessel";
  });
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(Contents().project_name, "other");
  EXPECT_EQ(Contents().device_info.family, "Tessel");
}

TEST_F(Update, EightThreads_LoseNoUpdate) {
  const XmlPlatform platform;  // Starting it takes longer than an update.
  constexpr int kUpdatingThreads = 8;
  constexpr int kUpdates = test_support::kSanitized ? 25 : 100;
  std::vector<std::string> added;
  for (int i = 0; i < kUpdatingThreads * kUpdates; ++i)
    added.push_back("f" + std::to_string(i) + ".txt");
  UpdateProjectFile(path(), [](ProjectContents& project) { project.misc_files.clear(); });
  InThreads(kUpdatingThreads, [&](int thread) {
    for (int i = thread * kUpdates; i < (thread + 1) * kUpdates; ++i) {
      UpdateProjectFile(path(), [&](ProjectContents& project) {
        project.misc_files.emplace_back(added.at(static_cast<std::size_t>(i)), "", "default");
      });
    }
  });
  std::vector<std::string> names;
  for (const DesignFile& file : Contents().misc_files) names.push_back(file.name);
  EXPECT_THAT(names, UnorderedElementsAreArray(added));
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
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
