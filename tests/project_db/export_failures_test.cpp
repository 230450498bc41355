#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <projectdb/project_db.h>
#include <xercesc/util/IOException.hpp>

#include "testing/child_process.h"
#include "testing/denied.h"
#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/project_differences.h"
#include "testing/temporary_directory.h"
#include "testing/xml_tree.h"

namespace {

using projectdb::DesignFile;
using projectdb::GetProjectContents;
using projectdb::KelProjectDatabase;
using namespace test_support;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using namespace std::string_literals;

/// The text of the std::runtime_error that an export ends in; "" if it ends well.
std::string ExportError(const KelProjectDatabase& database, const std::string& path) {
  try {
    database.ExportProjectData(path);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

auto IsWritingErrorFor(const std::string& path) {
  const std::string prefix = "Failed writing XML file " + path + ": ";
  return AllOf(StartsWith(prefix), EndsWith("\n"), testing::SizeIs(testing::Gt(prefix.size() + 1)));
}

class ExportFailures : public testing::Test {
 protected:
  ExportFailures() { database_.CreateNewProjectDatabase("soc"); }

  const MessageRecorder recorder_;
  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "exported.xml";
  KelProjectDatabase database_;
};

// Files that cannot be opened.

struct BadPath {
  const char* name;
  std::function<std::string(const TemporaryDirectory&)> path;
};

void PrintTo(const BadPath& bad_path, std::ostream* out) { *out << bad_path.name; }

class ExportToBadPath : public ExportFailures, public testing::WithParamInterface<BadPath> {};

TEST_P(ExportToBadPath, ExportProjectData_ThrowsTheXmlLibrarysExceptionAndCreatesNoFile) {
  std::string message;
  try {
    database_.ExportProjectData(GetParam().path(directory_));
  } catch (const xercesc::IOException& exception) {
    message = Utf8(exception.getMessage());
  }
  EXPECT_THAT(message, HasSubstr(directory_.path().string()));
  EXPECT_TRUE(std::filesystem::is_empty(directory_.path()));
  database_.ExportProjectData(path_);
  EXPECT_EQ(ReadXmlFile(path_).attributes.at("name"), "soc");
}

INSTANTIATE_TEST_SUITE_P(
    Paths, ExportToBadPath,
    testing::Values(
        BadPath{"missing directory", [](const auto& dir) { return dir / "missing/p.xml"; }},
        BadPath{"a directory", [](const auto& dir) { return dir.path().string(); }},
        BadPath{"NUL in the name", [](const auto& dir) { return (dir / "p.xml") + "\0.xml"s; }},
        BadPath{"name too long",
                [](const auto& dir) { return dir / (std::string(300, 'n') + ".xml"); }}));

TEST_F(ExportFailures, ExportProjectData_CannotOpen_TextIsCheckedFirst) {
  database_.SetProjectName("\x01");
  const std::string path = directory_ / "missing/p.xml";
  EXPECT_THAT(ExportError(database_, path), IsWritingErrorFor(path));
}

TEST_F(ExportFailures, ExportProjectData_DirectoryThatIsNotPermitted_ThrowsAndCreatesNoFile) {
  std::filesystem::permissions(directory_.path(), std::filesystem::perms(0755));
  const std::string closed = directory_ / "closed";
  std::filesystem::create_directory(closed);
  {
    const Denied denied(closed);
    if (!denied.effective()) GTEST_SKIP() << "cannot be denied";
    EXPECT_THROW(database_.ExportProjectData(closed + "/p.xml"), xercesc::IOException);
  }
  EXPECT_TRUE(std::filesystem::is_empty(closed));
}

TEST_F(ExportFailures, ExportProjectData_FileThatIsNotPermitted_ThrowsAndLeavesItAsItWas) {
  std::filesystem::permissions(directory_.path(), std::filesystem::perms(0755));
  WriteFile(path_, "former");
  {
    const Denied denied(path_);
    if (!denied.effective()) GTEST_SKIP() << "cannot be denied";
    EXPECT_THROW(database_.ExportProjectData(path_), xercesc::IOException);
  }
  EXPECT_EQ(ReadFile(path_), "former");
}

// Files that take no more.

TEST_F(ExportFailures, ExportProjectData_FullDevice_IsAnErrorAndLeavesTheProjectUsable) {
  if (!std::filesystem::is_character_file("/dev/full")) GTEST_SKIP() << "no /dev/full";
  EXPECT_EQ(ExportError(database_, "/dev/full"),
            "Failed writing XML file /dev/full: No space left on device\n");
  database_.ExportProjectData(path_);
  EXPECT_EQ(ReadXmlFile(path_).attributes.at("name"), "soc");
}

constexpr std::size_t kBlock = 4096;

/// The outcome of exports under each limit of the file's size.
struct LimitedExports {
  std::size_t failures = 0;
  std::size_t successes = 0;
  std::size_t other = 0;  ///< Neither the file-size error nor a whole file.
};

std::ostream& operator<<(std::ostream& out, const LimitedExports& exports) {
  return out << exports.failures << " failed, " << exports.successes << " succeeded, "
             << exports.other << " other";
}

LimitedExports ExportUnderLimits(const KelProjectDatabase& database, const std::string& path,
                                 const std::vector<std::size_t>& limits, std::size_t whole_size) {
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  LimitedExports outcome;
  for (const std::size_t size : limits) {
    limit.rlim_cur = size;
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) throw std::runtime_error("setrlimit failed");
    const std::string error = ExportError(database, path);
    if (error == "Failed writing XML file " + path + ": File too large\n") {
      ++outcome.failures;
    } else if (error.empty() && std::filesystem::file_size(path) == whole_size) {
      ++outcome.successes;
    } else {
      ++outcome.other;
    }
  }
  return outcome;
}

std::size_t WholeSize(const KelProjectDatabase& database, const std::string& path) {
  database.ExportProjectData(path);
  return static_cast<std::size_t>(std::filesystem::file_size(path));
}

void AddManyFiles(KelProjectDatabase& database) {
  for (int i = 0; i < 10000; ++i) database.AddMiscellaneousFile("notes_" + std::to_string(i));
}

std::string LimitedExportsText(const KelProjectDatabase& database, const std::string& path,
                               const std::vector<std::size_t>& limits, std::size_t whole_size) {
  return InChildProcess([&] {
    std::ostringstream text;
    text << ExportUnderLimits(database, path, limits, whole_size);
    return text.str();
  });
}

TEST_F(ExportFailures, ExportProjectData_FileSizeLimitBelowTheWhole_IsAnError) {
  std::size_t whole_size = WholeSize(database_, path_);
  std::vector<std::size_t> limits;
  for (std::size_t size = 0; size < whole_size; ++size) limits.push_back(size);
  EXPECT_EQ(LimitedExportsText(database_, path_, limits, whole_size),
            std::to_string(whole_size) + " failed, 0 succeeded, 0 other");
  AddManyFiles(database_);
  whole_size = WholeSize(database_, path_);
  limits = {0,      1,      4095,           4096,           65536,      262143,
            262144, 262145, whole_size / 2, whole_size - 1, whole_size, whole_size + 1};
  EXPECT_EQ(LimitedExportsText(database_, path_, limits, whole_size),
            "10 failed, 2 succeeded, 0 other");
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

TEST_F(ExportFailures, ExportProjectData_FileSizeLimit_LeavesItsSignalAsItWas) {
  const std::string states = InChildProcess([&] {
    ExportUnderLimits(database_, path_, {0}, 0);
    const std::string before = StateOf(SIGXFSZ);
    sigset_t signals{};
    sigemptyset(&signals);
    sigaddset(&signals, SIGXFSZ);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    ExportUnderLimits(database_, path_, {0}, 0);
    return before + "; " + StateOf(SIGXFSZ);
  });
  EXPECT_EQ(states, "not blocked, not pending; blocked, not pending");
}

TEST_F(ExportFailures, ExportProjectData_FileSizeLimitAndIgnoredSignal_IsAnError) {
  const std::string outcome = InChildProcess([&] {
    std::signal(SIGXFSZ, SIG_IGN);
    std::ostringstream text;
    text << ExportUnderLimits(database_, path_, {0, 100}, 0);
    return text.str();
  });
  EXPECT_EQ(outcome, "2 failed, 0 succeeded, 0 other");
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
    std::string error = ExportError(database, path);
    if (error.empty()) error = "no error with room for " + std::to_string(room) + "\n";
    if (errors.find(error) == std::string::npos) errors += error;
  }
  return errors;
}

TEST_F(ExportFailures, ExportProjectData_FullFileSystem_IsAnErrorHoweverMuchFits) {
  AddManyFiles(database_);
  const std::size_t whole_blocks = WholeSize(database_, path_) / kBlock;
  const std::vector<std::size_t> rooms = {0,           1, 2, whole_blocks / 2, whole_blocks - 1,
                                          whole_blocks};
  const std::string errors =
      InChildProcess([&] { return ExportToSmallFileSystem(database_, directory_.path(), rooms); });
  if (errors == "cannot mount") GTEST_SKIP() << errors;
  EXPECT_EQ(errors, "Failed writing XML file " + path_ + ": No space left on device\n");
}

// Text that no XML file can hold.

const std::vector<std::pair<const char*, std::string>> kTextsThatAreNotUtf8 = {
    {"lone continuation byte", "\x80"s},
    {"Latin-1 letter", "Pr\xFC"s},
    {"truncated character", "a\xE2\x82"s},
    {"truncated character of four bytes", "\xF0\x9F\x98"s},
    {"overlong form", "\xC0\xAF"s},
    {"encoded surrogate", "\xED\xA0\x80"s},
    {"encoded pair of surrogates", "\xED\xA0\xBD\xED\xB8\x80"s},
    {"beyond U+10FFFF", "\xF4\x90\x80\x80"s},
    {"beyond U+10FFFF behind other text", std::string(40, 'x') + "\xF5\x80\x80\x80"},
    {"impossible byte", "\xFF"s},
};

const std::vector<std::pair<const char*, std::string>> kCharactersThatXmlForbids = {
    {"U+0001", "a\x01"s},        {"NUL", "a\0b"s},
    {"U+000B", "\v"s},           {"U+001F", "\x1F"s},
    {"U+FFFE", "\xEF\xBF\xBE"s}, {"U+FFFF", "\xEF\xBF\xBFz"s},
};

struct TextField {
  const char* name;
  std::function<void(KelProjectDatabase&, const std::string&)> set;
  bool takes_any_bytes = true;  ///< Or only UTF-8.
};

void PrintTo(const TextField& field, std::ostream* out) { *out << field.name; }

const TextField kTextFields[] = {
    {"project name", [](auto& db, auto& text) { db.SetProjectName(text); }},
    {"device family", [](auto& db, auto& text) { db.SetDeviceFamily(text); }},
    {"device model", [](auto& db, auto& text) { db.SetDeviceModel(text); }},
    {"timing model", [](auto& db, auto& text) { db.SetDeviceTimingModel(text); }},
    {"top module", [](auto& db, auto& text) { db.SetDesignTopModuleName(text); }},
    {"top VHDL architecture", [](auto& db, auto& text) { db.SetDesignTopVHDLArchitecture(text); }},
    {"design file name", [](auto& db, auto& text) { db.AddDesignRTLFile(text, "", ""); }},
    {"design file version", [](auto& db, auto& text) { db.AddDesignRTLFile("a", text, ""); }},
    {"design file library", [](auto& db, auto& text) { db.AddDesignRTLFile("a", "", text); }},
    {"test bench name", [](auto& db, auto& text) { db.AddSimulationTestBenchFile(text, ""); }},
    {"test bench version", [](auto& db, auto& text) { db.AddSimulationTestBenchFile("a", text); }},
    {"test bench library",
     [](auto& db, auto& text) {
       std::vector<DesignFile> files = {{"a", "", text}};
       db.AddSimulationTestBenchFile(files);
     }},
    {"miscellaneous file", [](auto& db, auto& text) { db.AddMiscellaneousFile(text); }},
    {"timing constraint file",
     [](auto& db, auto& text) { db.AddTimingConstraintFile(text + ".sdc"); }, false},
    {"interface constraint file",
     [](auto& db, auto& text) { db.SetInterfaceConstraint(text + ".interface.csv"); }, false},
    {"tool name", [](auto& db, auto& text) { db.SetPlaceAndRouteExecutableName(text); }},
    {"parameter name",
     [](auto& db, auto& text) { db.AddDebuggerParameter(text, "v", projectdb::e_string); }},
    {"parameter value",
     [](auto& db, auto& text) { db.AddDebuggerParameter("p", text, projectdb::e_string); }},
    {"info attribute value", [](auto& db, auto& text) { db.AddProjectInfoAttribute("a", text); }},
    {"info attribute value with prefix",
     [](auto& db, auto& text) { db.AddProjectInfoAttribute("v:a", text); }},
};

class ExportOfBadText : public ExportFailures, public testing::WithParamInterface<TextField> {
 protected:
  /// Does the work with each text in the field of a new project.
  template <typename Work>
  void WithEachBadText(Work work) {
    auto texts = kCharactersThatXmlForbids;
    if (GetParam().takes_any_bytes) {
      texts.insert(texts.end(), kTextsThatAreNotUtf8.begin(), kTextsThatAreNotUtf8.end());
    }
    for (const auto& [name, text] : texts) {
      SCOPED_TRACE(name);
      database_.CleanProjectDatabase();
      database_.CreateNewProjectDatabase("soc");
      GetParam().set(database_, text);
      work();
    }
  }
};

TEST_P(ExportOfBadText, ExportProjectData_IsAnErrorWithoutMessageFileOrChange) {
  WithEachBadText([&] {
    std::filesystem::remove(path_);
    const auto before = GetProjectContents(database_);
    EXPECT_THAT(ExportError(database_, path_), IsWritingErrorFor(path_));
    EXPECT_FALSE(std::filesystem::exists(path_));
    WriteFile(path_, "former");
    EXPECT_THAT(ExportError(database_, path_), IsWritingErrorFor(path_));
    EXPECT_EQ(ReadFile(path_), "former");
    EXPECT_THAT(AllDifferences(before, database_), IsEmpty());
  });
  EXPECT_THAT(recorder_.messages(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Fields, ExportOfBadText, testing::ValuesIn(kTextFields));

TEST_F(ExportFailures, ExportProjectData_TextCorrectedAfterAnError_IsWritten) {
  database_.SetProjectName("a\x01");
  ASSERT_NE(ExportError(database_, path_), "");
  database_.SetProjectName("a");
  database_.ExportProjectData(path_);
  EXPECT_EQ(ReadXmlFile(path_).attributes.at("name"), "a");
}

TEST_F(ExportFailures, ExportProjectData_BadText_ErrorTellsTheText) {
  database_.SetDeviceFamily("broken\x01");
  EXPECT_THAT(ExportError(database_, path_), HasSubstr("broken"));
}

TEST_F(ExportFailures, ExportProjectData_BadTextAndPathThatIsNoText_TellsThePathAsItIs) {
  database_.SetProjectName("\x01");
  const std::string path = directory_ / "pr\xFC.xml";
  EXPECT_THAT(ExportError(database_, path), IsWritingErrorFor(path));
}

TEST_F(ExportFailures, ExportProjectData_BadTextThatTheFileDoesNotKeep_IsNoError) {
  database_.SetProjectCurrentPath("\x01");
  database_.SetProjectSoftwareVersion("\xFF");
  database_.AddProjectInfoAttribute("last_change_date", "\x01");
  database_.GetFlowProcess(projectdb::e_debugger)
      ->parameters.emplace_back("\x01", "\xFF", projectdb::e_string);
  EXPECT_EQ(ExportError(database_, path_), "");
}

// Names that no XML file can hold.

struct NameField {
  const char* name;
  std::function<void(KelProjectDatabase&, const std::string&)> set;
  std::vector<std::string> bad_names;
};

void PrintTo(const NameField& field, std::ostream* out) { *out << field.name; }

// What neither an element nor the part of an attribute name before or after its colon can be.
const std::vector<std::string> kNoElementNames = {
    "a b",  " a",   "a ",       "1a",       "-a",        ".a",           "<",
    "a>",   "a=",   "a/b",      "a\nb",     "\xC3\x97",  "a\x01"s,       "\xED\xA0\x80",
    "\xFF", "a\0"s, "param\0"s, "\0param"s, "a\0param"s, "\xEF\xBF\xBE", "a\xE2\x82"s};

std::vector<std::string> NoNamesAnd(std::vector<std::string> more) {
  more.insert(more.end(), kNoElementNames.begin(), kNoElementNames.end());
  return more;
}

class ExportOfBadName : public ExportFailures, public testing::WithParamInterface<NameField> {
 protected:
  /// Does the work with each name in the field of a new project.
  template <typename Work>
  void WithEachBadName(Work work) {
    for (const std::string& name : GetParam().bad_names) {
      SCOPED_TRACE(testing::PrintToString(name));
      database_.CleanProjectDatabase();
      database_.CreateNewProjectDatabase("soc");
      GetParam().set(database_, name);
      work();
    }
  }
};

TEST_P(ExportOfBadName, ExportProjectData_IsAnErrorAndLeavesTheFileThatWasThere) {
  WithEachBadName([&] {
    WriteFile(path_, "former");
    EXPECT_THAT(ExportError(database_, path_), IsWritingErrorFor(path_));
    EXPECT_TRUE(ReadFile(path_) == "former");
  });
}

INSTANTIATE_TEST_SUITE_P(
    Fields, ExportOfBadName,
    testing::Values(NameField{"process",
                              [](auto& db, auto& name) {
                                db.GetFlowProcess(projectdb::e_debugger)->name = name;
                              },
                              NoNamesAnd({"x:y", ":a", "a:", ":"})},
                    NameField{"parameter map",
                              [](auto& db, auto& name) {
                                db.AddFlowProcessParameter(projectdb::e_debugger, name, "p", "v",
                                                           projectdb::e_string);
                              },
                              NoNamesAnd({"", "x:y", "kel:param", ":a", "a:", ":"})},
                    NameField{"info attribute",
                              [](auto& db, auto& name) { db.AddProjectInfoAttribute(name, "v"); },
                              NoNamesAnd({"", ":", ":a", "a:", "a:b:c", "a::b", "a:1", "1:a",
                                          "a: b", "a :b", "v:a\0"s})}));

TEST_F(ExportFailures, ExportProjectData_BadProcessName_ErrorTellsTheProcessAndItsName) {
  database_.SetFlowProcessName(projectdb::e_bitstream_generation, "a b");
  EXPECT_EQ(ExportError(database_, path_),
            "Failed writing XML file " + path_ +
                ": the flow process bitstream_generation has the name \"a b\", which no element "
                "can have\n");
}

TEST_F(ExportFailures, ExportProjectData_BadMapName_ErrorTellsTheProcessAndTheMap) {
  database_.AddFlowProcessParameter(projectdb::e_synthesis, "my map", "p", "v",
                                    projectdb::e_string);
  EXPECT_EQ(ExportError(database_, path_),
            "Failed writing XML file " + path_ +
                ": a parameter map of the flow process synthesis has the name \"my map\", which no "
                "element can have\n");
}

TEST_F(ExportFailures, ExportProjectData_BadMapNameOfAnUnnamedProcess_IsAnError) {
  database_.CleanProjectDatabase();
  database_.SetupProjectDatabase();
  database_.AddFlowProcessParameter(projectdb::e_synthesis, "my map", "p", "v",
                                    projectdb::e_string);
  EXPECT_THAT(ExportError(database_, path_), HasSubstr("my map"));
}

TEST_F(ExportFailures, ExportProjectData_BadNameOfAMapWithoutParameters_IsNoError) {
  EXPECT_FALSE(database_.AddFlowProcessParameter(projectdb::e_synthesis, "my map", "p", "",
                                                 projectdb::e_string));
  EXPECT_TRUE(database_.AddFlowProcessParameterList(projectdb::e_synthesis, "syn opts", {}));
  EXPECT_EQ(ExportError(database_, path_), "");
  EXPECT_EQ(ReadXmlFile(path_).children.size(), 11U);
}

TEST_F(ExportFailures, ExportProjectData_BadMapNameAfterItsParametersWereErased_IsNoError) {
  database_.AddFlowProcessParameter(projectdb::e_synthesis, "my map", "p", "v",
                                    projectdb::e_string);
  ASSERT_NE(ExportError(database_, path_), "");
  database_.FindFlowProcessParameterMap(projectdb::e_synthesis, "my map")->clear();
  EXPECT_EQ(ExportError(database_, path_), "");
}

TEST_F(ExportFailures, ExportProjectData_ProcessRenamedAfterAnError_IsWritten) {
  database_.SetFlowProcessName(projectdb::e_debugger, "a b");
  ASSERT_NE(ExportError(database_, path_), "");
  database_.SetFlowProcessName(projectdb::e_debugger, "debugger");
  EXPECT_EQ(ExportError(database_, path_), "");
}

}  // namespace
