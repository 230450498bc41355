#include <filesystem>
#include <iostream>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <projectdb/durable_export.h>
#include <projectdb/project_db.h>

#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/project_snapshot.h"
#include "testing/sanitizers.h"
#include "testing/temporary_directory.h"
#include "tests/durable/traced_process.h"

namespace {

using projectdb::ExportProjectDataDurably;
using projectdb::KelProjectDatabase;
using test_support::ProjectSnapshot;
using test_support::TakeSnapshot;
using test_support::TracedProcess;
using testing::ElementsAre;

void FillProject(KelProjectDatabase& database, const std::string& name, int files) {
  database.CreateNewProjectDatabase(name);
  database.SetDeviceFamily("Orrin");
  database.AddSynthesisParameter("max_threads", "4", projectdb::e_string);
  for (int number = 0; number < files; ++number) {
    database.AddDesignRTLFile("rtl/" + name + "_" + std::to_string(number) + ".v", "v2k", "work");
  }
}

class DurableSave : public testing::Test {
 protected:
  void SetUp() override {
    if (test_support::kSanitized) GTEST_SKIP() << "a sanitizer makes system calls of its own";
    if (!TracedProcess::IsPossible()) GTEST_SKIP() << "no child process can be traced here";
  }

  int Save(const std::string& path) const {
    ExportProjectDataDurably(database_, path);
    return 0;
  }

  const test_support::MessageRecorder recorder_;
  const test_support::TemporaryDirectory directory_;
  const std::string path_ = directory_ / "p.xml";
  KelProjectDatabase database_;
};

/// What a save that is killed finds.
struct Situation {
  const char* name;
  bool has_former;
  bool has_link;
  int files;  ///< Of the project that is saved.
};

void PrintTo(const Situation& situation, std::ostream* out) { *out << situation.name; }

class KilledSave : public DurableSave, public testing::WithParamInterface<Situation> {
 protected:
  void SetUp() override {
    DurableSave::SetUp();
    if (IsSkipped()) return;
    FillProject(database_, "next", GetParam().files);
    FillProject(former_, "former", 5);
    if (GetParam().has_link) std::filesystem::create_symlink("p.xml", saved_path_);
    WriteFormer();
    former_snapshot_ = Snapshot();
    database_.ExportProjectData(path_);
    next_snapshot_ = Snapshot();
  }

  void WriteFormer() {
    std::filesystem::remove(path_);
    if (GetParam().has_former) former_.ExportProjectData(path_);
  }

  /// Of the project in the file; nothing if there is no file.
  std::optional<ProjectSnapshot> Snapshot() const {
    if (!std::filesystem::exists(saved_path_)) return std::nullopt;
    KelProjectDatabase loaded;
    EXPECT_TRUE(loaded.LoadProjectData(saved_path_, ""));
    return TakeSnapshot(loaded).WithoutStamps();
  }

  /// What is at the path: "former", "next" or "damaged".
  std::string Found() const {
    const std::optional<ProjectSnapshot> snapshot = Snapshot();
    if (snapshot == former_snapshot_) return "former";
    return snapshot == next_snapshot_ ? "next" : "damaged";
  }

  /// Kills a save at one of its stops, the first being number 1.
  /// @return false if the save came to its end before
  bool SaveAndKill(int stop_number) {
    TracedProcess process([this] { return Save(saved_path_); });
    for (int number = 0; number < stop_number; ++number) {
      if (process.Continue()) continue;
      EXPECT_TRUE(WIFEXITED(process.status()) && WEXITSTATUS(process.status()) == 0);
      return false;
    }
    process.Kill();
    EXPECT_TRUE(WIFSIGNALED(process.status()));
    return true;
  }

  const std::string saved_path_ = GetParam().has_link ? directory_ / "link.xml" : path_;
  KelProjectDatabase former_;
  std::optional<ProjectSnapshot> former_snapshot_;
  std::optional<ProjectSnapshot> next_snapshot_;
};

TEST_P(KilledSave, AtAnyEntryIntoOrExitFromASystemCall_LeavesTheFormerOrTheNextProjectWhole) {
  ASSERT_FALSE(former_snapshot_ == next_snapshot_);
  std::map<std::string, int> found;
  int points = 0;
  WriteFormer();
  while (SaveAndKill(points + 1)) {
    ++points;
    ++found[Found()];
    WriteFormer();
  }
  ++found[Found()];
  std::cout << points << " points tried: " << found["former"] << " times the former project, "
            << found["next"] << " times the next\n";
  EXPECT_EQ(found["damaged"], 0);
  EXPECT_GT(found["former"], 0);
  EXPECT_GT(found["next"], 1);
}

INSTANTIATE_TEST_SUITE_P(Situations, KilledSave,
                         testing::Values(Situation{"over a file", true, false, 20},
                                         Situation{"to a new path", false, false, 20},
                                         Situation{"over a file behind a link", true, true, 20},
                                         Situation{"behind a link to nowhere", false, true, 20},
                                         Situation{"a large project", true, false, 6000}));

// What keeps the file through a failure of the machine does not show when a process is killed.

/// A step of a save on the file system, as text; "" for any other system call.
std::string Step(const TracedProcess& process, const TracedProcess::Stop& entry) {
  static const std::map<std::uint64_t, std::string> kSteps = {
      {SYS_write, "write "},         {SYS_writev, "write "},       {SYS_pwrite64, "write "},
      {SYS_ftruncate, "write "},     {SYS_fsync, "flush "},        {SYS_fdatasync, "flush "},
      {SYS_fchmod, "permissions "},  {SYS_fchown, "permissions "}, {SYS_renameat, "rename in "},
      {SYS_renameat2, "rename in "},
  };
  const auto step = kSteps.find(entry.call);
  if (step == kSteps.end()) return {};
  const std::filesystem::path path = process.PathOf(entry.argument);
  const std::string name = path.filename().string();
  return step->second + (name.rfind(".kel_save_", 0) == 0 ? "temporary" : name);
}

TEST_F(DurableSave, FlushesTheWholeFileBeforeItsRenamingAndTheDirectoryAfterIt) {
  FillProject(database_, "former", 1);
  database_.ExportProjectData(path_);
  TracedProcess process([this] { return Save(path_); });
  std::vector<std::string> steps;
  while (const std::optional<TracedProcess::Stop> stop = process.Continue()) {
    const std::string step = stop->is_entry ? Step(process, *stop) : "";
    if (!step.empty() && (steps.empty() || steps.back() != step)) steps.push_back(step);
  }
  const std::string directory = directory_.path().filename();
  EXPECT_THAT(steps, ElementsAre("write temporary", "permissions temporary", "flush temporary",
                                 "rename in " + directory, "flush " + directory));
}

}  // namespace
