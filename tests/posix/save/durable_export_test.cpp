#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <iterator>
#include <stdexcept>
#include <tuple>

#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "testing/access_list.h"
#include "testing/child_process.h"
#include "testing/sanitizers.h"
#include "testing/saving.h"
#include "testing/test.h"
#include "tests/save/saved_project.h"

namespace {

using namespace projectdb;
using namespace test_support;

using namespace std::string_literals;

TEST_F(DurableExport, ExistingFile_StaysAsItWasForItsReaderAndUnderItsOtherName) {
  WriteFile(path_, std::string(1000000, 'x'));
  std::filesystem::create_hard_link(path_, directory_ / "other.xml");
  std::ifstream reader(path_);
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(NameInFile(path_), "next");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}).size(), 1000000U);
  EXPECT_EQ(ReadFile(directory_ / "other.xml"), std::string(1000000, 'x'));
}

TEST_F(DurableExport, NameOfAnyBytesOrTheLongest_IsWritten) {
  for (const std::string& path :
       {directory_ / "gr\xFCn \x01\n.xml", directory_ / (std::string(251, 'n') + ".xml")}) {
    ExportProjectDataDurably(database_, path);
    EXPECT_EQ(NameInFile(path), "next");
  }
}

TEST_F(DurableExport, ReaderDuringSaves_SeesAWholeProjectEveryTime) {
  WriteFormer(path_);
  std::atomic<bool> done = false;
  auto saving = std::async(std::launch::async, [&] {
    for (int round = 0; round < 50; ++round) ExportProjectDataDurably(database_, path_);
    done = true;
  });
  do {
    KelProjectDatabase loaded;
    EXPECT_TRUE(loaded.LoadProjectData(path_, ""));
    EXPECT_THAT(loaded.GetProjectName(), AnyOf("former", "next"));
  } while (!done);
  saving.get();
}

/// Sets the process's mask of permissions for as long as it lives.
class Umask {
 public:
  explicit Umask(mode_t mask) : former_(::umask(mask)) {}
  ~Umask() { ::umask(former_); }
  Umask(const Umask&) = delete;
  Umask& operator=(const Umask&) = delete;

 private:
  mode_t former_;
};

TEST_F(DurableExport, ExistingFile_KeepsItsPermissions) {
  const Umask umask(027);
  WriteFormer(path_);
  for (const mode_t mode : {0600U, 0606U, 0640U, 0644U, 0660U, 0666U, 0755U, 0777U}) {
    SetMode(path_, mode);
    ExportProjectDataDurably(database_, path_);
    EXPECT_EQ(NameInFile(path_), "next");
    EXPECT_EQ(ModeOf(path_), mode);
  }
}

TEST_F(DurableExport, NewFile_HasThePermissionsOfAnyNewFile) {
  for (const mode_t mask : {0U, 002U, 022U, 027U, 066U, 077U}) {
    const Umask umask(mask);
    std::filesystem::remove(path_);
    ExportProjectDataDurably(database_, path_);
    EXPECT_EQ(ModeOf(path_), 0666U & ~mask);
  }
}

TEST_F(DurableExport, AccessList_IsThatOfTheExistingFileOrOfAnyNewOneInTheDirectory) {
  WriteFormer(path_);
  SetMode(path_, 0660);
  if (!SetAccessList(directory_.path(), kAccessListOfNewFiles, AccessListFor(4711))) {
    GTEST_SKIP() << "no access control lists here";
  }
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(AccessListOf(path_), "");
  EXPECT_EQ(ModeOf(path_), 0660U);
  ASSERT_TRUE(SetAccessList(path_, kAccessList, AccessListFor(4712)));
  const std::string list = AccessListOf(path_);
  const mode_t mode = ModeOf(path_);
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(AccessListOf(path_), list);
  EXPECT_EQ(ModeOf(path_), mode);
  std::filesystem::remove(path_);
  ExportProjectDataDurably(database_, path_);
  WriteFormer(directory_ / "plain.xml");
  EXPECT_NE(AccessListOf(path_), "");
  EXPECT_EQ(AccessListOf(path_), AccessListOf(directory_ / "plain.xml"));
}

constexpr uid_t kNobody = 65534;

void GiveTo(const std::string& path, uid_t owner, gid_t group) {
  if (::chown(path.c_str(), owner, group) != 0) throw std::runtime_error("cannot give " + path);
}

/// Runs work in a child of its own without the rights of root.
template <typename Work>
std::string AsOrdinaryUser(Work work) {
  return InChildProcess([&]() -> std::string {
    if (::geteuid() == 0 &&
        (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) {
      return "root cannot give up its rights";
    }
    return work();
  });
}

TEST_F(DurableExport, ExistingFileOfAnotherOwner_KeepsOwnerAndGroupIfThatIsPermitted) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root may give files away";
  WriteFormer(path_);
  GiveTo(path_, 4711, 4712);
  SetMode(path_, 0640);
  ExportProjectDataDurably(database_, path_);
  EXPECT_EQ(StatusOf(path_).st_uid, 4711U);
  EXPECT_EQ(StatusOf(path_).st_gid, 4712U);
  EXPECT_EQ(ModeOf(path_), 0640U);
}

TEST_F(DurableExport, ExistingFileOfAnotherGroup_LosesThePrivilegesOfOneThatIsNotPermitted) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root may give files away";
  GiveTo(directory_.path(), kNobody, kNobody);
  const std::pair<mode_t, mode_t> cases[] = {{0600, 0600}, {0640, 0600}, {0660, 0600},
                                             {0664, 0644}, {0604, 0604}, {0666, 0666}};
  for (const auto& [former, reduced] : cases) {
    WriteFormer(path_);
    GiveTo(path_, kNobody, 4712);
    SetMode(path_, former);
    EXPECT_EQ(AsOrdinaryUser([&] { return SaveError(database_, path_); }), "");
    EXPECT_EQ(NameInFile(path_), "next");
    EXPECT_EQ(StatusOf(path_).st_gid, kNobody);
    EXPECT_EQ(ModeOf(path_), reduced) << "from " << former;
  }
}

TEST_F(DurableExport, ExistingFileOfAnotherOwner_IsReplacedWhereOnlyItsOwnerIsNotPermitted) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root may give files away";
  WriteFormer(path_);
  GiveTo(directory_.path(), kNobody, kNobody);
  GiveTo(path_, 4711, kNobody);
  SetMode(path_, 0660);
  EXPECT_EQ(AsOrdinaryUser([&] { return SaveError(database_, path_); }), "");
  EXPECT_EQ(NameInFile(path_), "next");
  EXPECT_EQ(ModeOf(path_), 0660U);
}

class DurableExportThroughLink : public DurableExport {
 protected:
  DurableExportThroughLink() {
    std::filesystem::create_directory(directory_ / "target");
    std::filesystem::create_directory(directory_ / "links");
  }

  static void Link(const std::string& target, const std::string& link) {
    std::filesystem::create_symlink(target, link);
  }

  /// Saves to the link and checks that only what it leads to has changed.
  void ExpectSavedThroughLink() const {
    const std::vector<std::string> links = NamesIn(directory_ / "links");
    ExportProjectDataDurably(database_, link_);
    EXPECT_EQ(NameInFile(target_), "next");
    EXPECT_TRUE(std::filesystem::is_symlink(link_));
    EXPECT_EQ(NamesIn(directory_ / "links"), links);
    EXPECT_THAT(NamesIn(directory_ / "target"), ElementsAre("p.xml"));
  }

  const std::string target_ = directory_ / "target/p.xml";
  const std::string link_ = directory_ / "links/l.xml";
};

TEST_F(DurableExportThroughLink, Link_ReplacesItsTargetWithItsPermissions) {
  for (const std::string& target : {target_, std::string("../target/p.xml")}) {
    WriteFormer(target_);
    SetMode(target_, 0600);
    std::filesystem::remove(link_);
    Link(target, link_);
    ExpectSavedThroughLink();
    EXPECT_EQ(ModeOf(target_), 0600U);
  }
}

TEST_F(DurableExportThroughLink, RelativeLink_IsRelativeToTheRealDirectory) {
  WriteFormer(target_);
  Link("../target/p.xml", link_);
  std::filesystem::create_directories(directory_ / "far/away");
  std::filesystem::create_directory_symlink("../../links", directory_ / "far/away/linked");
  ExportProjectDataDurably(database_, directory_ / "far/away/linked/l.xml");
  EXPECT_EQ(NameInFile(target_), "next");
  WriteFormer(target_);
  const WorkingDirectory working_directory(directory_ / "links");
  ExportProjectDataDurably(database_, "l.xml");
  EXPECT_EQ(NameInFile(target_), "next");
}

TEST_F(DurableExportThroughLink, DanglingLinkOrChainOfThem_CreatesTheLastTarget) {
  Link(target_, link_);
  ExpectSavedThroughLink();
  std::filesystem::remove(target_);
  std::filesystem::remove(link_);
  Link("../target/p.xml", directory_ / "links/2.xml");
  Link("2.xml", link_);
  ExpectSavedThroughLink();
}

TEST_F(DurableExportThroughLink, AsManyLinksAsTheSystemFollows_ReplacesTheLastTarget) {
  WriteFormer(target_);
  std::string next = target_;
  for (int number = 1; number < 40; ++number) {
    const std::string link = directory_ / ("links/" + std::to_string(number));
    Link(next, link);
    next = link;
  }
  Link(next, link_);
  ExpectSavedThroughLink();
}

TEST_F(DurableExportThroughLink, Loop_IsAnError) {
  Link("2.xml", link_);
  Link("l.xml", directory_ / "links/2.xml");
  EXPECT_EQ(SaveError(database_, link_), WritingError(link_, ELOOP));
  EXPECT_THAT(NamesIn(directory_ / "links"), ElementsAre("2.xml", "l.xml"));
}

TEST_F(DurableExportThroughLink, LinkIntoAMissingDirectory_IsAnErrorAndStays) {
  Link("../missing/p.xml", link_);
  EXPECT_EQ(SaveError(database_, link_), WritingError(link_, ENOENT));
  EXPECT_EQ(std::filesystem::read_symlink(link_), "../missing/p.xml");
}

TEST_F(DurableExport, BadPath_IsAnErrorWithTheReasonOfTheSystemAndChangesNothing) {
  std::filesystem::create_directory(directory_ / "directory");
  WriteFile(directory_ / "file", "former");
  ASSERT_EQ(::mkfifo((directory_ / "pipe").c_str(), 0600), 0);
  std::filesystem::create_symlink("directory", directory_ / "link_to_directory");
  std::filesystem::create_symlink("pipe", directory_ / "link_to_pipe");
  const std::pair<std::string, std::string> cases[] = {
      {"missing/p.xml", TextOfErrno(ENOENT)},
      {"missing/", TextOfErrno(ENOENT)},
      {"directory", TextOfErrno(EISDIR)},
      {"directory/", TextOfErrno(EISDIR)},
      {"directory/.", TextOfErrno(EISDIR)},
      {"file/p.xml", TextOfErrno(ENOTDIR)},
      {"file/", TextOfErrno(ENOTDIR)},
      {"p.xml\0.xml"s, TextOfErrno(EINVAL)},
      {std::string(256, 'n'), TextOfErrno(ENAMETOOLONG)},
      {"pipe", "not a regular file"},
      {"link_to_pipe", "not a regular file"},
      {"link_to_directory", TextOfErrno(EISDIR)}};
  const std::vector<std::string> names = NamesIn(directory_.path());
  for (const auto& [name, reason] : cases) {
    const std::string path = directory_ / name;
    // An exception's text ends at a zero.
    EXPECT_STREQ(SaveError(database_, path).c_str(), WritingError(path, reason).c_str());
    EXPECT_EQ(NamesIn(directory_.path()), names);
    EXPECT_TRUE(std::filesystem::is_empty(directory_ / "directory"));
    EXPECT_EQ(ReadFile(directory_ / "file"), "former");
    EXPECT_TRUE(std::filesystem::is_fifo(directory_ / "pipe"));
  }
}

TEST_F(DurableExport, RelativePathInARemovedDirectory_IsAnError) {
  const WorkingDirectory former(directory_.path());
  std::filesystem::create_directory("removed");
  std::filesystem::current_path("removed");
  std::filesystem::remove(directory_ / "removed");
  EXPECT_EQ(SaveError(database_, "p.xml"), WritingError("p.xml", ENOENT));
}

// A device of the test's own: a save that goes wrong must not replace one of the machine's.
TEST_F(DurableExport, Device_IsAnErrorAndStaysADevice) {
  constexpr unsigned kMemoryDevices = 1;
  constexpr unsigned kFull = 7;
  if (::mknod(path_.c_str(), S_IFCHR | 0600, makedev(kMemoryDevices, kFull)) != 0) {
    GTEST_SKIP() << "no device can be made here";
  }
  EXPECT_EQ(SaveError(database_, path_), WritingError(path_, "not a regular file"));
  EXPECT_TRUE(std::filesystem::is_character_file(path_));
}

// Refused and failing file systems. The former file is there in all of these.

class FailingDurableExport : public DurableExport {
 protected:
  FailingDurableExport() { WriteFormer(path_); }

  /// What a save ends in; "" if it succeeds. Throws if it fails and changes the former file or
  /// leaves another one.
  std::string SaveErrorWithoutTrace() {
    const FileState former(path_);
    const std::vector<std::string> names = NamesIn(directory_.path());
    std::string error = SaveError(database_, path_);
    if (!error.empty() && !(FileState(path_) == former)) {
      throw std::runtime_error("the former file was changed");
    }
    if (NamesIn(directory_.path()) != names) throw std::runtime_error("a file was left");
    return error;
  }

  void AddManyFiles() {
    for (int i = 0; i < 10000; ++i) database_.AddMiscellaneousFile("notes_" + std::to_string(i));
  }

  std::size_t SizeOfNext() const {
    const TemporaryDirectory directory;
    database_.ExportProjectData(directory / "p.xml");
    return static_cast<std::size_t>(std::filesystem::file_size(directory / "p.xml"));
  }
};

TEST_F(FailingDurableExport, DirectoryOrFileThatIsNotPermitted_IsAnErrorAndLeavesTheFormerFile) {
  const std::tuple<const char*, mode_t, mode_t> cases[] = {
      {"directory that is not writable", 0666, 0555},
      {"directory that cannot be searched", 0666, 0666},
      {"file that is protected against writing", 0444, 0777}};
  const auto former_file = StatusOf(path_).st_ino;
  const std::string former = ReadFile(path_);
  for (const auto& [name, file, directory] : cases) {
    SCOPED_TRACE(name);
    SetMode(path_, file);
    SetMode(directory_.path(), directory);
    EXPECT_EQ(AsOrdinaryUser([&] { return SaveError(database_, path_); }),
              WritingError(path_, EACCES));
    SetMode(directory_.path(), 0700);
    EXPECT_EQ(StatusOf(path_).st_ino, former_file);
    EXPECT_EQ(ReadFile(path_), former);
    EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  }
}

/// Saves under each limit of the file's size. @return the errors, one for each line
std::string SaveUnderSizeLimits(const std::vector<std::size_t>& limits,
                                const std::function<std::string()>& save) {
  return InChildProcess([&] {
    std::string errors;
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    for (const std::size_t size : limits) {
      limit.rlim_cur = size;
      if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) throw std::runtime_error("setrlimit failed");
      errors += save();
    }
    return errors;
  });
}

TEST_F(FailingDurableExport, FileSizeLimitBelowTheWhole_IsAnErrorAndLeavesTheFormerFile) {
  std::vector<std::size_t> limits(SizeOfNext());
  for (std::size_t size = 0; size < limits.size(); ++size) limits[size] = size;
  EXPECT_EQ(SaveUnderSizeLimits(limits, [&] { return SaveErrorWithoutTrace(); }),
            Repeated(WritingError(path_, EFBIG), limits.size()));
  AddManyFiles();
  const std::size_t size = SizeOfNext();
  limits = {0, 1, 4096, 262143, 262144, 262145, size / 2, size - 1};
  EXPECT_EQ(SaveUnderSizeLimits(limits, [&] { return SaveErrorWithoutTrace(); }),
            Repeated(WritingError(path_, EFBIG), limits.size()));
  EXPECT_EQ(SaveUnderSizeLimits({size}, [&] { return SaveErrorWithoutTrace(); }), "");
  EXPECT_EQ(NameInFile(path_), "next");
}

TEST_F(FailingDurableExport, TooFewFilesMayBeOpen_IsAnErrorAndLeavesTheFormerFile) {
  if (kSanitized) GTEST_SKIP() << "the sanitizer needs files of its own";
  const FileState former(path_);
  const auto judge = [&](const std::string& error) {
    EXPECT_EQ(error, WritingError(path_, EMFILE));
    EXPECT_EQ(FileState(path_), former);
    EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  };
  EXPECT_GE(FailuresWithTooFewFiles([&] { return SaveError(database_, path_); }, judge), 3);
  EXPECT_EQ(NameInFile(path_), "next");
}

/// Does the work in a process that alone sees a small file system in the place of a directory.
/// @return the work's text; "cannot mount" if there is none
std::string WithFileSystem(const std::filesystem::path& directory, const char* options,
                           const std::function<std::string()>& work) {
  return InChildProcess([&]() -> std::string {
    const bool mounted = ::unshare(CLONE_NEWNS) == 0 &&
                         ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                         ::mount("tmpfs", directory.c_str(), "tmpfs", 0, options) == 0;
    return mounted ? work() : "cannot mount";
  });
}

TEST_F(FailingDurableExport, FullFileSystem_IsAnErrorHoweverMuchFitsAndLeavesTheFormerFile) {
  AddManyFiles();
  constexpr std::size_t kBlock = 4096;
  const std::size_t whole = SizeOfNext() / kBlock;
  const std::vector<std::size_t> rooms = {0, 1, 2, whole / 2, whole - 1, whole};
  const std::string errors = WithFileSystem(directory_.path(), "size=1m", [&] {
    WriteFormer(path_);
    const std::size_t free = std::filesystem::space(directory_.path()).available / kBlock;
    std::string text;
    for (const std::size_t room : rooms) {
      std::ofstream(directory_ / "filler") << std::string((free - room) * kBlock, 'x');
      text += SaveErrorWithoutTrace();
    }
    return text;
  });
  if (errors == "cannot mount") GTEST_SKIP() << errors;
  EXPECT_EQ(errors, Repeated(WritingError(path_, ENOSPC), rooms.size()));
}

TEST_F(FailingDurableExport, FileSystemThatRefusesTheSave_IsAnErrorAndLeavesTheFormerFile) {
  struct {
    const char* options;
    /// Makes it refuse; it already holds the former file. @return whether that can be done
    bool (*refuse)(const std::string& directory);
    int reason;
  } const cases[] = {{"nr_inodes=2", [](auto&) { return true; }, ENOSPC},
                     {nullptr,
                      [](auto& directory) {
                        return ::mount(nullptr, directory.c_str(), nullptr, MS_REMOUNT | MS_RDONLY,
                                       nullptr) == 0;
                      },
                      EROFS},
                     {nullptr,
                      [](auto& directory) {
                        const std::string file = directory + "/p.xml";
                        const std::string other = directory + "/other.xml";
                        WriteFile(other, ReadFile(file));
                        return ::mount(other.c_str(), file.c_str(), nullptr, MS_BIND, nullptr) == 0;
                      },
                      EBUSY}};
  for (const auto& [options, refuse, reason] : cases) {
    const std::string error = WithFileSystem(directory_.path(), options, [&, make = refuse] {
      WriteFormer(path_);
      return make(directory_.path()) ? SaveErrorWithoutTrace() : "cannot mount";
    });
    if (error == "cannot mount") GTEST_SKIP() << error;
    EXPECT_EQ(error, WritingError(path_, reason));
  }
}

TEST_F(FailingDurableExport, NewFileOnAReadOnlyFileSystem_IsAnError) {
  const std::string path = directory_ / "new.xml";
  const std::string error =
      WithFileSystem(directory_.path(), "ro", [&] { return SaveError(database_, path); });
  if (error == "cannot mount") GTEST_SKIP() << error;
  EXPECT_EQ(error, WritingError(path, EROFS));
}

}  // namespace
