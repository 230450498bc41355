#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <stdexcept>

#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <projectdb/project_db.h>
#include <xercesc/util/IOException.hpp>

#include "testing/child_process.h"
#include "testing/denied.h"
#include "testing/files.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"
#include "testing/xml_tree.h"

namespace {

using namespace projectdb;
using namespace test_support;

/// The text of the std::runtime_error that an export ends in; "" if it ends well.
std::string ErrorOfExport(const KelProjectDatabase& database, const std::string& path) {
  return ErrorOf([&] { database.ExportProjectData(path); });
}

class ExportFailuresOnPosix : public testing::Test {
 protected:
  ExportFailuresOnPosix() { database_.CreateNewProjectDatabase("soc"); }

  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "exported.xml";
  KelProjectDatabase database_;
};

TEST_F(ExportFailuresOnPosix, ExportProjectData_NotPermitted_ThrowsAndLeavesEverythingAsItWas) {
  std::filesystem::permissions(directory_.path(), std::filesystem::perms(0755));
  const std::string closed = directory_ / "closed";
  std::filesystem::create_directory(closed);
  WriteFile(path_, "former");
  for (const auto& [denied_path, path] :
       {std::pair(closed, closed + "/p.xml"), std::pair(path_, path_)}) {
    const Denied denied(denied_path);
    if (!denied.effective()) GTEST_SKIP() << "cannot be denied";
    EXPECT_THROW(database_.ExportProjectData(path), xercesc::IOException);
  }
  EXPECT_TRUE(std::filesystem::is_empty(closed));
  EXPECT_EQ(ReadFile(path_), "former");
}

TEST_F(ExportFailuresOnPosix, ExportProjectData_FullDevice_IsAnErrorAndLeavesTheProjectUsable) {
  if (!std::filesystem::is_character_file("/dev/full")) GTEST_SKIP() << "no /dev/full";
  EXPECT_EQ(ErrorOfExport(database_, "/dev/full"),
            "Failed writing XML file /dev/full: " + TextOfErrno(ENOSPC) + "\n");
  database_.ExportProjectData(path_);
  EXPECT_EQ(ReadXmlFile(path_).attributes.at("name"), "soc");
}

constexpr std::size_t kBlock = 4096;

/// Exports under each limit of the file's size, which is that of the process from then on.
/// @return how many failed for their size, wrote a whole file, or did something else
std::string ExportUnderLimits(const KelProjectDatabase& database, const std::string& path,
                              const std::vector<std::size_t>& limits, std::size_t whole_size = 0) {
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  std::size_t failed = 0;
  std::size_t whole = 0;
  for (const std::size_t size : limits) {
    limit.rlim_cur = size;
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) throw std::runtime_error("setrlimit failed");
    const std::string error = ErrorOfExport(database, path);
    if (error == "Failed writing XML file " + path + ": " + TextOfErrno(EFBIG) + "\n") ++failed;
    if (error.empty() && std::filesystem::file_size(path) == whole_size) ++whole;
  }
  return std::to_string(failed) + " failed, " + std::to_string(whole) + " whole, " +
         std::to_string(limits.size() - failed - whole) + " other";
}

std::size_t WholeSize(const KelProjectDatabase& database, const std::string& path) {
  database.ExportProjectData(path);
  return static_cast<std::size_t>(std::filesystem::file_size(path));
}

void AddManyFiles(KelProjectDatabase& database) {
  for (int i = 0; i < 10000; ++i) database.AddMiscellaneousFile("notes_" + std::to_string(i));
}

TEST_F(ExportFailuresOnPosix, ExportProjectData_FileSizeLimitBelowTheWhole_IsAnError) {
  std::size_t size = WholeSize(database_, path_);
  std::vector<std::size_t> limits(size);
  std::iota(limits.begin(), limits.end(), 0);
  const auto outcome = [&] { return ExportUnderLimits(database_, path_, limits, size); };
  EXPECT_EQ(InChildProcess(outcome), std::to_string(size) + " failed, 0 whole, 0 other");
  AddManyFiles(database_);
  size = WholeSize(database_, path_);
  limits = {0, 1, 4095, 4096, 65536, 262143, 262144, 262145, size / 2, size - 1, size, size + 1};
  EXPECT_EQ(InChildProcess(outcome), "10 failed, 2 whole, 0 other");
}

/// What is left of a signal in this thread.
std::string StateOf(int signal) {
  sigset_t blocked{};
  sigset_t pending{};
  pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
  sigpending(&pending);
  return std::string(sigismember(&blocked, signal) != 0 ? "blocked" : "not blocked") +
         (sigismember(&pending, signal) != 0 ? ", pending" : ", not pending");
}

TEST_F(ExportFailuresOnPosix, ExportProjectData_FileSizeLimit_LeavesItsSignalAsItWas) {
  const std::string states = InChildProcess([&] {
    ExportUnderLimits(database_, path_, {0});
    const std::string before = StateOf(SIGXFSZ);
    sigset_t signals{};
    sigemptyset(&signals);
    sigaddset(&signals, SIGXFSZ);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    ExportUnderLimits(database_, path_, {0});
    return before + "; " + StateOf(SIGXFSZ);
  });
  EXPECT_EQ(states, "not blocked, not pending; blocked, not pending");
}

TEST_F(ExportFailuresOnPosix, ExportProjectData_FileSizeLimitAndIgnoredSignal_IsAnError) {
  const std::string outcome = InChildProcess([&] {
    std::signal(SIGXFSZ, SIG_IGN);
    return ExportUnderLimits(database_, path_, {0, 100});
  });
  EXPECT_EQ(outcome, "2 failed, 0 whole, 0 other");
}

/// Mounts a file system of 1 MB that only this process sees, and exports while it has room for
/// some blocks only. @return the errors, without repetition; "cannot mount" if that is so
std::string ExportToSmallFileSystem(const KelProjectDatabase& database,
                                    const std::filesystem::path& directory,
                                    const std::vector<std::size_t>& rooms) {
  if (unshare(CLONE_NEWNS) != 0 ||
      mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      mount("tmpfs", directory.c_str(), "tmpfs", 0, "size=1m") != 0) {
    return "cannot mount";
  }
  const std::string path = directory / "exported.xml";
  std::string errors;
  for (const std::size_t room : rooms) {
    std::filesystem::remove(path);
    std::ofstream(directory / "filler") << std::string((256 - room) * kBlock, 'x');
    std::string error = ErrorOfExport(database, path);
    if (error.empty()) error = "no error with room for " + std::to_string(room) + "\n";
    if (errors.find(error) == std::string::npos) errors += error;
  }
  return errors;
}

TEST_F(ExportFailuresOnPosix, ExportProjectData_FullFileSystem_IsAnErrorHoweverMuchFits) {
  AddManyFiles(database_);
  const std::size_t whole_blocks = WholeSize(database_, path_) / kBlock;
  const std::vector<std::size_t> rooms = {0,           1, 2, whole_blocks / 2, whole_blocks - 1,
                                          whole_blocks};
  const std::string errors =
      InChildProcess([&] { return ExportToSmallFileSystem(database_, directory_.path(), rooms); });
  if (errors == "cannot mount") GTEST_SKIP() << errors;
  EXPECT_EQ(errors, "Failed writing XML file " + path_ + ": " + TextOfErrno(ENOSPC) + "\n");
}

}  // namespace
