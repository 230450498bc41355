#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <future>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <tuple>

#include <sys/stat.h>

#include "testing/project_loading.h"
#include "testing/sanitizers.h"
#include "testing/saving.h"
#include "testing/shipped_files.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "tests/allocation/failing_allocation.h"
#include "tests/allocation/fault_points.h"
#include "tests/allocation/library_function.h"
#include "xml/platform.h"

namespace {

using namespace test_support;
using namespace projectdb;

/// Keeps the messages off the console, without memory.
class Silence {
 public:
  Silence() : former_(Diag::GlobalInst().SetHandler([](const Diag::DiagStorage&) {})) {}
  ~Silence() { Diag::GlobalInst().SetHandler(former_); }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;

 private:
  Diag::DiagService::Handler former_;
};

/// The text of a std::runtime_error, kept without memory.
class ErrorText {
 public:
  void Keep(const std::runtime_error& error) { std::strncpy(text_.data(), error.what(), kSize); }
  bool IsOneOf(const std::vector<std::string>& beginnings) const {
    const std::string_view text = text_.data();
    return std::any_of(beginnings.begin(), beginnings.end(), [text](const std::string& beginning) {
      return text.substr(0, beginning.size()) == beginning;
    });
  }
  std::string text() const { return text_.data(); }

 private:
  static constexpr std::size_t kSize = 400;
  std::array<char, kSize + 1> text_{};
};

const std::string kInitializing = "Failed to initialize ";
const std::string kUnexpected = "Unexpected Exception\n";

/// Running short of memory in an operation that uses the XML library, at every allocation.
class XmlOutOfMemory : public testing::Test {
 protected:
  XmlOutOfMemory() { WriteFile(project_file_, FormerXml()); }

  static std::string FormerXml() {
    return ProjectXml(R"(
      <device_info><family name="Varel"/><device name="Q8R40"/></device_info>
      <design_info><design_file name="old.v" version="v2001" library="work"/></design_info>
      <ip_info><ip instance_name="u_old" path="ip/old.cfg"/></ip_info>
      <synthesis tool_name="old"><param name="mode" value="slow" value_type="e_option"/></synthesis>
      <place_and_route/><bitstream_generation/><debugger/>)",
                      R"(name="former" owner="lab 3")");
  }

  /// The operation, with the text of what it throws kept.
  Operation KeepingItsError(Operation operation) {
    return [this, operation = std::move(operation)](KelProjectDatabase& database) {
      try {
        operation(database);
      } catch (const std::runtime_error& error) {
        error_.Keep(error);
        throw;
      }
    };
  }

  /// What each failing run must have come to, whatever it did to the project and to files.
  Complaints JudgeFailure(Outcome outcome, const KelProjectDatabase& database,
                          std::vector<std::string> errors) const {
    errors.push_back(kInitializing);
    errors.push_back(kUnexpected);
    Complaints complaints;
    complaints.Unless(outcome == Outcome::kOutOfMemory || outcome == Outcome::kRuntimeError,
                      outcome == Outcome::kFailureSwallowed ? "the failure was hidden"
                                                            : "an exception of another kind");
    complaints.Unless(outcome != Outcome::kRuntimeError || error_.IsOneOf(errors),
                      "an error with the text " + error_.text());
    // Waits for ever if the lock is still held.
    std::async(std::launch::async, [&] { return database.IsProjectDatabaseExist(); }).get();
    return complaints;
  }

  /// Does a run and looks for leaks.
  template <typename Run>
  static Complaints WithoutLeaks(FaultPoints& points, const Run& run) {
    const LiveBlocks before = CountLiveBlocks();
    Complaints complaints = run();
    const LiveBlocks after = CountLiveBlocks();
    if (!complaints.text().empty()) return complaints;
    complaints.Unless(after.of_others == before.of_others, "memory leaks");
    const bool xml_library_leaks = after.of_xml_library != before.of_xml_library;
    complaints.Unless(!xml_library_leaks || points.in_xml_library,
                      "memory of the XML library leaks");
    if (xml_library_leaks) ++points.leaks_of_xml_library;
    return complaints;
  }

  static void Report(const FaultPoints& points) {
    std::cout << points << '\n';
    RecordProperty("fault_points", std::to_string(points.tried));
    RecordProperty("not_survived", std::to_string(points.not_survived));
  }

  const Silence silence_;
  const TemporaryDirectory directory_;
  const std::string project_file_ = directory_ / "former.xml";
  ErrorText error_;
};

// Each point of a long walk takes milliseconds, and a sanitizer multiplies them; most of the points
// are in the XML library's reading of a schema and of its own messages, by the same few functions.
constexpr long kStrideOfLongWalks = kSanitized ? 97 : 5;

const Shortage kShortages[] = {Shortage::kOneAllocation, Shortage::kEveryFromThereOn};

/// Names a test after its case and the shortage, or after the shortage alone.
struct NameOf {
  std::string operator()(const testing::TestParamInfo<Shortage>& test) const {
    return test.param == Shortage::kOneAllocation ? "OneAllocation" : "EveryFromThereOn";
  }
  template <typename Case>
  std::string operator()(const testing::TestParamInfo<std::tuple<Case, Shortage>>& test) const {
    const auto& [row, shortage] = test.param;
    return row.name + (*this)(testing::TestParamInfo<Shortage>(shortage, 0));
  }
};

struct LoadCase {
  const char* name;
  std::string bytes;
  std::string schema;  ///< Its bytes; "" for none.
  bool schema_is_given;
  bool has_project;  ///< Before.
  bool is_read;
  bool result;
  long stride = 1;  ///< Of the walk through its allocations.
};

std::vector<LoadCase> LoadCases() {
  const std::string complete = CompleteProjectXml();
  const std::string two_sections = DeviceInfoXml("Orrin") + DeviceInfoXml("Varel");
  const std::string hint = R"(xsi:schemaLocation="http://schema.kel.example/wdp_proj s.xsd")";
  return {{"NoSchema", complete, "", false, true, true, true, kStrideOfSlowRuns},
          {"NoProject", complete, "", false, false, true, true, kStrideOfSlowRuns},
          {"ShippedSchema", complete, ReadFile(ShippedSchema()), true, true, true, true,
           kStrideOfLongWalks},
          {"NamedSchema", ProjectXml(two_sections, hint), DeviceOnlySchema(), false, true, true,
           true, kStrideOfSlowRuns},
          {"Malformed", complete + "<", "", false, true, false, false, kStrideOfSlowRuns},
          {"BreaksTheSchema", ProjectXml("<bogus/>"), DeviceOnlySchema(), true, true, false, false,
           kStrideOfLongWalks},
          {"UnknownTag", ProjectXml(two_sections + "<bogus/>"), "", false, true, true, false,
           kStrideOfSlowRuns}};
}

class LoadOutOfMemory : public XmlOutOfMemory,
                        public testing::WithParamInterface<std::tuple<LoadCase, Shortage>> {
 protected:
  LoadOutOfMemory() {
    WriteFile(file_, load().bytes);
    if (!load().schema.empty()) WriteFile(schema_, load().schema);
  }

  static const LoadCase& load() { return std::get<LoadCase>(GetParam()); }
  static Shortage shortage() { return std::get<Shortage>(GetParam()); }

  void Prepare(KelProjectDatabase& database) const {
    if (load().has_project) database.LoadProjectData(project_file_, "");
  }

  bool Load(KelProjectDatabase& database) const {
    return database.LoadProjectData(file_, load().schema_is_given ? schema_ : "");
  }

  ProjectContents ProjectBefore() const {
    KelProjectDatabase database;
    Prepare(database);
    return GetProjectContents(database);
  }

  /// The XML library keeps some memory from the first time on.
  void LoadForTheFirstTime() const {
    KelProjectDatabase database;
    Load(database);
    // A file that is refused leaves the XML library initialised.
    if (!load().is_read) projectdb::xml::TerminateXMLPlatform();
  }

  /// Whether the object still loads and exports.
  bool IsUsable(KelProjectDatabase& database) const {
    // There may be a project without flow processes, as it can be made without any file.
    if (!load().has_project) database.CleanProjectDatabase();
    if (!database.LoadProjectData(project_file_, "")) return false;
    const std::string path = directory_ / "exported.xml";
    // Overwriting a file makes some file systems wait for the disk.
    std::filesystem::remove(path);
    database.ExportProjectData(path);
    KelProjectDatabase next;
    return next.LoadProjectData(path, "") && next.GetDeviceModel() == database.GetDeviceModel();
  }

  /// The project must be as before if the parser was at work, and can be another only later.
  Complaints JudgeProject(FaultPoints& points, const KelProjectDatabase& database,
                          const ProjectContents& before) const {
    Complaints complaints;
    const bool may_differ = !points.in_parser && points.first_with_effect >= 0;
    if (may_differ || AllDifferences(before, database).empty()) return complaints;
    complaints.Unless(!points.in_parser, "the project is another");
    points.first_with_effect = points.number;
    return complaints;
  }

  Complaints RunOnce(FaultPoints& points, const ProjectContents& before) {
    KelProjectDatabase database;
    Prepare(database);
    bool result = false;
    const Outcome outcome = RunAtFaultPoint(
        points, KeepingItsError([&](KelProjectDatabase& db) { result = Load(db); }), database);
    Complaints complaints;
    if (points.completed) {
      complaints.Unless(result == load().result, "another result than usually");
      return complaints;
    }
    complaints = JudgeFailure(outcome, database, {"Failed parsing XML file " + file_ + ": "});
    if (complaints.text().empty()) complaints = JudgeProject(points, database, before);
    complaints.Unless(IsUsable(database), "the object is not usable");
    return complaints;
  }

  const std::string file_ = directory_ / "p.xml";
  const std::string schema_ = directory_ / "s.xsd";
};

TEST_P(LoadOutOfMemory, LoadProjectData_AnyAllocationFails_ThrowsAndLosesNothing) {
  const XmlPlatform platform;
  const ProjectContents before = ProjectBefore();
  LoadForTheFirstTime();
  const FaultPoints points = WalkFaultPoints({shortage(), load().stride}, [&](FaultPoints& run) {
    return WithoutLeaks(run, [&] { return RunOnce(run, before); });
  });
  Report(points);
  EXPECT_GT(points.last_in_parser, 0);
  // Long strides may pass over the few points that lie behind those of the parser.
  if (!kSanitized) {
    EXPECT_EQ(points.first_with_effect > points.last_in_parser, load().is_read);
  }
}

INSTANTIATE_TEST_SUITE_P(Files, LoadOutOfMemory,
                         testing::Combine(testing::ValuesIn(LoadCases()),
                                          testing::ValuesIn(kShortages)),
                         NameOf());

struct ExportCase {
  const char* name;
  void (*save)(const KelProjectDatabase&, const std::string&);
  bool is_durable;
  bool has_former_file;
};

void Export(const KelProjectDatabase& database, const std::string& path) {
  database.ExportProjectData(path);
}

const ExportCase kExportCases[] = {
    {"Export", Export, false, true},
    {"ExportToNewFile", Export, false, false},
    {"DurableExport", ExportProjectDataDurably, true, true},
    {"DurableExportToNewFile", ExportProjectDataDurably, true, false}};

/// What stands at a path; nothing if there is no file.
std::optional<FileState> StateOf(const std::string& path) {
  if (!std::filesystem::exists(path)) return std::nullopt;
  return FileState(path);
}

/// The size of a file, read without memory; negative if there is none.
off_t SizeOf(const char* path) {
  struct stat status {};
  return ::stat(path, &status) == 0 ? status.st_size : -1;
}

class ExportOutOfMemory : public XmlOutOfMemory,
                          public testing::WithParamInterface<std::tuple<ExportCase, Shortage>> {
 protected:
  static const ExportCase& save() { return std::get<ExportCase>(GetParam()); }
  static Shortage shortage() { return std::get<Shortage>(GetParam()); }

  void Prepare(KelProjectDatabase& database) const {
    std::filesystem::remove(path_);
    if (save().has_former_file) WriteFile(path_, "former");
    database.LoadProjectData(project_file_, "");
  }

  ProjectContents ProjectBefore() const {
    KelProjectDatabase database;
    Prepare(database);
    return GetProjectContents(database);
  }

  Complaints RunOnce(FaultPoints& points, const ProjectContents& before) {
    KelProjectDatabase database;
    Prepare(database);
    const std::optional<FileState> former = StateOf(path_);
    const off_t former_size = SizeOf(path_.c_str());
    off_t size_at_failure = former_size;
    const Outcome outcome = RunAtFaultPoint(
        points, KeepingItsError([this](KelProjectDatabase& db) { save().save(db, path_); }),
        database, [&] { size_at_failure = SizeOf(path_.c_str()); });
    Complaints complaints;
    if (points.completed) return JudgeSavedFile(database);
    complaints = JudgeFailure(outcome, database, {"Failed writing XML file " + path_ + ": "});
    // A file that is opened is emptied or comes into being.
    const bool was_opened = size_at_failure != former_size;
    if (was_opened && points.first_with_effect < 0) points.first_with_effect = points.number;
    complaints.Unless(was_opened || StateOf(path_) == former, "the file is harmed");
    const std::size_t files = former || was_opened ? 2 : 1;
    complaints.Unless(NamesIn(directory_.path()).size() == files, "another file is left");
    complaints.Unless(AllDifferences(before, database).empty(), "the project is another");
    save().save(database, path_);
    complaints.Unless(JudgeSavedFile(database).text().empty(), "the object is not usable");
    return complaints;
  }

  /// The file that a save has left must hold the project.
  Complaints JudgeSavedFile(const KelProjectDatabase& database) const {
    KelProjectDatabase loaded;
    Complaints complaints;
    complaints.Unless(loaded.LoadProjectData(path_, ""), "the file does not load");
    complaints.Unless(CompareProjects(loaded, database).empty(), "the file is not whole");
    return complaints;
  }

  const std::string path_ = directory_ / "saved.xml";
};

TEST_P(ExportOutOfMemory, AnyAllocationFails_ThrowsAndLosesNothing) {
  const XmlPlatform platform;
  const ProjectContents before = ProjectBefore();
  const FaultPoints points = WalkFaultPoints({shortage()}, [&](FaultPoints& run) {
    return WithoutLeaks(run, [&] { return RunOnce(run, before); });
  });
  Report(points);
  EXPECT_EQ(points.first_with_effect >= 0, !save().is_durable);
}

INSTANTIATE_TEST_SUITE_P(Saves, ExportOutOfMemory,
                         testing::Combine(testing::ValuesIn(kExportCases),
                                          testing::ValuesIn(kShortages)),
                         NameOf());

class FirstUseOutOfMemory : public XmlOutOfMemory, public testing::WithParamInterface<Shortage> {
 protected:
  Complaints RunOnce(FaultPoints& points) {
    KelProjectDatabase database;
    database.CreateNewProjectDatabase("first");
    const ProjectContents before = GetProjectContents(database);
    bool initialisation_failed = false;
    const Outcome outcome = RunAtFaultPoint(
        points, KeepingItsError([this](KelProjectDatabase& db) { db.ExportProjectData(path_); }),
        database,
        [&] { initialisation_failed = initialisation_failed || IsInitialising(CallStack()); });
    if (points.completed) return {};
    Complaints complaints =
        JudgeFailure(outcome, database, {"Failed writing XML file " + path_ + ": "});
    complaints.Unless(AllDifferences(before, database).empty(), "the project is another");
    complaints.Unless(LoadError(database) == (initialisation_failed ? kFailedBefore : ""),
                      "a load ends in " + LoadError(database));
    return complaints;
  }

  bool IsInitialising(const CallStack& calls) const {
    return initialize_.IsIn(calls) || initialize_static_data_.IsIn(calls);
  }

  std::string LoadError(KelProjectDatabase& database) const {
    try {
      return database.LoadProjectData(project_file_, "") ? "" : "malformed";
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  }

  static constexpr const char* kFailedBefore = "Failed to initialize after an earlier failure\n";

  const LibraryFunction initialize_{
      "_ZN11xercesc_3_216XMLPlatformUtils10InitializeEPKcS2_PNS_12PanicHandlerEPNS_"
      "13MemoryManagerE"};
  // Called last, so that no return to the first need be kept.
  const LibraryFunction initialize_static_data_{
      "_ZN11xercesc_3_214XMLInitializer20initializeStaticDataEv"};
  const std::string path_ = directory_ / "saved.xml";
};

TEST_P(FirstUseOutOfMemory, ExportProjectData_AnyAllocationFails_ThrowsAndLeavesTheProject) {
  const FaultPoints points =
      WalkFaultPoints({GetParam(), kStrideOfLongWalks, Processes::kOneForEachRun},
                      [this](FaultPoints& run) { return RunOnce(run); });
  Report(points);
  EXPECT_GT(points.tried, 0);
}

INSTANTIATE_TEST_SUITE_P(Shortages, FirstUseOutOfMemory, testing::ValuesIn(kShortages), NameOf());

}  // namespace
