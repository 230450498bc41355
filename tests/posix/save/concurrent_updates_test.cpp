#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include <projectdb/project_file.h>

#include "testing/project_loading.h"
#include "testing/sanitizers.h"
#include "testing/saving.h"
#include "testing/test.h"
#include "testing/xml_platform.h"

namespace {

using namespace projectdb;
using namespace test_support;
using testing::IsSubsetOf;
using testing::IsSupersetOf;

constexpr int kUpdaters = 8;
constexpr int kUpdatesOfEach = kSanitized ? 30 : 100;

/// A child process that ends with the program.
class Child {
 public:
  template <typename Work>
  explicit Child(Work work) : id_(::fork()) {
    if (id_ < 0) throw std::runtime_error("fork failed");
    if (id_ == 0) ::_exit(work());
  }
  Child(Child&& other) noexcept : id_(std::exchange(other.id_, -1)) {}
  Child& operator=(Child&& other) noexcept {
    std::swap(id_, other.id_);
    return *this;
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() { Kill(); }

  void Kill() {
    if (id_ <= 0) return;
    ::kill(id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
    id_ = -1;
  }

  /// Whether it has come to its end by itself, with status 0.
  bool HasEnded() {
    int status = 0;
    if (id_ <= 0 || ::waitpid(id_, &status, WNOHANG) != id_) return false;
    id_ = -1;
    EXPECT_EQ(status, 0);
    return true;
  }

 private:
  pid_t id_;
};

/// Lines that outlive the process that wrote them.
class Log {
 public:
  explicit Log(std::string path) : path_(std::move(path)) {}
  void Add(const std::string& line) const { std::ofstream(path_, std::ios::app) << line << '\n'; }
  Lines Read() const {
    std::ifstream file(path_);
    Lines lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
  }

 private:
  std::string path_;
};

/// One of those that change the file: adds files to the project, each of a name of its own.
class Updater {
 public:
  Updater(std::string project, const TemporaryDirectory& logs, int number)
      : project_(std::move(project)),
        prefix_("updater" + std::to_string(number) + "_"),
        begun_(logs / (prefix_ + "begun")),
        done_(logs / (prefix_ + "done")) {}

  /// What a process of it does; after it was killed, another one goes on.
  int Run(int attempt) const {
    for (std::size_t update = done().size(); update < kUpdatesOfEach; ++update) {
      const std::string name =
          prefix_ + std::to_string(update) + "_" + std::to_string(attempt) + ".v";
      begun_.Add(name);
      if (!UpdateProjectFile(project_, [&](ProjectContents& project) {
            project.design_info.design_files.emplace_back(name, "", "default");
          })) {
        return 1;
      }
      done_.Add(name);
    }
    return 0;
  }

  Lines begun() const { return begun_.Read(); }
  Lines done() const { return done_.Read(); }

 private:
  std::string project_;
  std::string prefix_;
  Log begun_;
  Log done_;
};

Lines FilesIn(const std::string& path) {
  const ProjectFile file = ReadProjectFile(path, "");
  Lines names;
  if (!file.contents || !file.problems.empty()) throw std::runtime_error("the file is damaged");
  for (const DesignFile& design_file : file.contents->design_info.design_files) {
    names.push_back(design_file.name);
  }
  return names;
}

TEST(ConcurrentUpdates, EightProcessesKilledAtRandom_LoseAndDoubleNothing) {
  const XmlPlatform platform;  // Starting it takes longer than an update.
  const TemporaryDirectory logs;
  const TemporaryDirectory directory;
  const std::string path = directory / "p.xml";
  WriteFile(path, ProjectXml(""));
  Child reader([&] {
    for (;;) {
      try {
        FilesIn(path);
        ::usleep(1'000);
      } catch (const std::runtime_error&) {
        return 1;
      }
    }
    return 0;
  });

  std::vector<Updater> updaters;
  std::vector<int> attempts(kUpdaters, 0);
  std::map<int, Child> children;
  const auto start = [&](int number) {
    const auto index = static_cast<std::size_t>(number);
    const int attempt = ++attempts[index];
    children.insert_or_assign(number, Child([&] { return updaters[index].Run(attempt); }));
  };
  for (int number = 0; number < kUpdaters; ++number) updaters.emplace_back(path, logs, number);
  for (int number = 0; number < kUpdaters; ++number) start(number);

  std::mt19937 random(20);
  int kills = 0;
  while (!children.empty()) {
    ::usleep(std::uniform_int_distribution<useconds_t>(1'000, 60'000)(random));
    for (auto child = children.begin(); child != children.end();) {
      child = child->second.HasEnded() ? children.erase(child) : std::next(child);
    }
    const int number = std::uniform_int_distribution<int>(0, kUpdaters - 1)(random);
    const auto victim = children.find(number);
    if (victim == children.end()) continue;
    victim->second.Kill();
    ++kills;
    start(number);
  }
  EXPECT_FALSE(reader.HasEnded()) << "the reader found a damaged file";
  reader.Kill();
  EXPECT_GE(kills, 10);

  const Lines names = FilesIn(path);
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
  Lines begun;
  for (const Updater& updater : updaters) {
    EXPECT_THAT(names, IsSupersetOf(updater.done()));
    EXPECT_EQ(updater.done().size(), static_cast<std::size_t>(kUpdatesOfEach));
    for (const std::string& name : updater.begun()) begun.push_back(name);
  }
  EXPECT_THAT(names, IsSubsetOf(begun));
  // A save removes what those killed before it left behind.
  UpdateProjectFile(path, [](ProjectContents& project) { project.project_name = "last"; });
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
}

TEST(ConcurrentUpdates, FourProcessesWithAFileEachInOneDirectory_LoseNothing) {
  constexpr int kProcesses = 4;
  constexpr std::size_t kUpdates = kSanitized ? 20 : 60;
  const XmlPlatform platform;
  const TemporaryDirectory directory;
  const auto path_of = [&](int number) { return directory / (std::to_string(number) + ".xml"); };
  std::vector<Child> children;
  for (int number = 0; number < kProcesses; ++number) {
    WriteFile(path_of(number), ProjectXml(""));
    children.emplace_back([&, number] {
      for (std::size_t i = 0; i < kUpdates; ++i) {
        UpdateProjectFile(path_of(number), [i](ProjectContents& project) {
          project.design_info.design_files.emplace_back(std::to_string(i), "", "default");
        });
      }
      return 0;
    });
  }
  for (Child& child : children) {
    while (!child.HasEnded()) ::usleep(1'000);
  }
  for (int number = 0; number < kProcesses; ++number) {
    EXPECT_EQ(FilesIn(path_of(number)).size(), kUpdates);
  }
  EXPECT_EQ(NamesIn(directory.path()).size(), std::size_t{kProcesses});
}

/// Adds a file to the project that it has read, again and again until nobody was faster.
void AddWithExpectedVersion(const std::string& path, const std::string& name) {
  for (;;) {
    ProjectFile file = ReadProjectFile(path, "");
    file.contents->misc_files.emplace_back(name, "", "default");
    WriteOptions options;
    options.expected = file.version;
    try {
      WriteProjectFile(path, *file.contents, options);
      return;
    } catch (const ProjectFileChanged&) {
      // Somebody was faster.
    }
  }
}

TEST(ConcurrentUpdates, FourProcessesThatExpectAVersion_LoseNothing) {
  constexpr int kProcesses = 4;
  constexpr int kWritesOfEach = 20;
  const XmlPlatform platform;  // Starting it takes longer than a write.
  const TemporaryDirectory directory;
  const std::string path = directory / "p.xml";
  WriteFile(path, ProjectXml(""));
  std::vector<Child> children;
  for (int number = 0; number < kProcesses; ++number) {
    children.emplace_back([&] {
      for (int i = 0; i < kWritesOfEach; ++i) {
        AddWithExpectedVersion(path, std::to_string(number) + "_" + std::to_string(i));
      }
      return 0;
    });
  }
  for (Child& child : children) {
    while (!child.HasEnded()) ::usleep(1'000);
  }
  const ProjectFile file = ReadProjectFile(path, "");
  std::set<std::string> names;
  for (const DesignFile& misc_file : file.contents->misc_files) names.insert(misc_file.name);
  EXPECT_EQ(file.contents->misc_files.size(), std::size_t{kProcesses * kWritesOfEach});
  EXPECT_EQ(names.size(), std::size_t{kProcesses * kWritesOfEach});
}

TEST(ConcurrentUpdates, ProcessesThatExpectNoFile_MakeItOnce) {
  const XmlPlatform platform;
  for (int round = 0; round < 20; ++round) {
    const TemporaryDirectory directory;
    const std::string path = directory / "p.xml";
    const auto make = [&] {
      WriteOptions options;
      options.expected = ProjectFileVersion();
      try {
        return WriteProjectFile(path, CompleteProject(""), options) ? 0 : 1;
      } catch (const ProjectFileChanged&) {
        return 2;
      }
    };
    std::vector<Child> children;
    for (int number = 0; number < 4; ++number) {
      children.emplace_back([&, number] {
        const int status = make();
        if (status == 0) WriteFile(directory / ("made_by" + std::to_string(number)), "");
        return 0;
      });
    }
    for (Child& child : children) {
      while (!child.HasEnded()) ::usleep(1'000);
    }
    EXPECT_EQ(NamesIn(directory.path()).size(), 2U);
  }
}

}  // namespace
