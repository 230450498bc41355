#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <locale>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kel/version.h>
#include <projectdb/project_db.h>

#include "testing/flow_processes.h"
#include "testing/message_recorder.h"
#include "testing/project_snapshot.h"
#include "testing/temporary_directory.h"

namespace {

using namespace projectdb;
using test_support::kProcesses;
using test_support::MessageRecorder;
using test_support::ProjectSnapshot;
using test_support::TakeSnapshot;
using test_support::TemporaryDirectory;
using test_support::WorkingDirectory;
using testing::AnyOfArray;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

static_assert(!std::is_copy_constructible_v<KelProjectDatabase>);
static_assert(!std::is_copy_assignable_v<KelProjectDatabase>);
static_assert(!std::is_move_constructible_v<KelProjectDatabase>);
static_assert(!std::is_move_assignable_v<KelProjectDatabase>);
static_assert(!std::is_polymorphic_v<KelProjectDatabase>);

static_assert(std::is_nothrow_default_constructible_v<KelProjectDatabase>);
static_assert(std::is_nothrow_destructible_v<KelProjectDatabase>);

const MessageRecorder::Message kProjectExists = {
    Diag::MessageType::kError, "Project database has already existed. Fail to create new project"};

std::vector<std::string> ProcessNames(const KelProjectDatabase& database) {
  std::vector<std::string> names;
  for (const ProcType type : kProcesses) names.push_back(database.GetFlowProcess(type)->name);
  return names;
}

TEST(Lifecycle, Construct_NewObject_HoldsNoProject) {
  EXPECT_FALSE(KelProjectDatabase().IsProjectDatabaseExist());
}

TEST(Lifecycle, SetupProjectDatabase_NoProject_CreatesOne) {
  KelProjectDatabase database;
  EXPECT_TRUE(database.SetupProjectDatabase());
  EXPECT_TRUE(database.IsProjectDatabaseExist());
}

TEST(Lifecycle, SetupProjectDatabase_NoProject_CreatesAnEmptyOneWithFourUnnamedProcesses) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.SetupProjectDatabase());
  ProjectSnapshot expected;
  expected.properties = {{"family", ""},     {"device", ""},        {"timing_model", ""},
                         {"top_module", ""}, {"top_vhdl_arch", ""}, {"inter_file", ""}};
  expected.file_lists = {{"sim", {}}, {"misc", {}}, {"sdc", {}}, {"ip_src", {}}};
  expected.processes.resize(4);
  EXPECT_EQ(TakeSnapshot(database), expected);
}

TEST(Lifecycle, SetupProjectDatabase_NoProject_ProcessesHaveNoParametersAndOneBucketIndex) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.SetupProjectDatabase());
  for (const ProcType type : kProcesses) {
    SCOPED_TRACE(type);
    const FlowProcess* process = database.GetFlowProcess(type);
    ASSERT_NE(process, nullptr);
    EXPECT_THAT(process->parameters, IsEmpty());
    EXPECT_THAT(process->parameter_maps, IsEmpty());
    EXPECT_THAT(process->parameter_map_index, IsEmpty());
    EXPECT_EQ(process->parameter_map_index.bucket_count(), 1u);
    EXPECT_EQ(process->parameter_map_index.max_load_factor(), 1.0F);
  }
}

TEST(Lifecycle, SetupProjectDatabase_ProjectExists_ReturnsFalseAndKeepsIt) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.CreateNewProjectDatabase("blinker"));
  database.AddMiscellaneousFile("readme.txt");
  database.AddSynthesisParameter("effort", "high", e_option);
  const ProjectSnapshot before = TakeSnapshot(database);
  EXPECT_FALSE(database.SetupProjectDatabase());
  EXPECT_EQ(TakeSnapshot(database), before);
}

TEST(Lifecycle, SetupProjectDatabase_CalledTwice_ReturnsTrueThenFalse) {
  KelProjectDatabase database;
  EXPECT_TRUE(database.SetupProjectDatabase());
  EXPECT_FALSE(database.SetupProjectDatabase());
}

TEST(Lifecycle, SetupProjectDatabase_ProjectExists_PostsNothing) {
  KelProjectDatabase database;
  database.SetupProjectDatabase();
  const MessageRecorder recorder;
  database.SetupProjectDatabase();
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

TEST(Lifecycle, CreateNewProjectDatabase_NoProject_ReturnsTrueAndHoldsAProject) {
  KelProjectDatabase database;
  EXPECT_TRUE(database.CreateNewProjectDatabase("blinker"));
  EXPECT_TRUE(database.IsProjectDatabaseExist());
}

TEST(Lifecycle, CreateNewProjectDatabase_NoProject_PostsNothing) {
  KelProjectDatabase database;
  const MessageRecorder recorder;
  database.CreateNewProjectDatabase("blinker");
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

TEST(Lifecycle, CreateNewProjectDatabase_EmptyName_NamesItNewProject) {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("");
  EXPECT_EQ(database.GetProjectName(), "new_project");
}

TEST(Lifecycle, CreateNewProjectDatabase_AnyName_IsKeptUnchanged) {
  for (const std::string& name :
       {std::string("blinker"), std::string(" "), std::string("größe α"), std::string("a/b:c"),
        std::string("\xFF"), std::string(5000, 'n')}) {
    KelProjectDatabase database;
    database.CreateNewProjectDatabase(name);
    EXPECT_EQ(database.GetProjectName(), name);
  }
}

/// A project just created in a directory of its own.
class NewProject : public testing::Test {
 protected:
  void SetUp() override {
    const WorkingDirectory working_directory(directory_.path());
    ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker"));
  }

  TemporaryDirectory directory_;
  KelProjectDatabase database_;
};

TEST_F(NewProject, CreateNewProjectDatabase_Version_IsTheRunningSoftwares) {
  EXPECT_EQ(database_.GetProjectSoftwareVersion(), KEL_VERSION_NO);
}

TEST_F(NewProject, CreateNewProjectDatabase_Directory_IsTheWorkingDirectory) {
  EXPECT_EQ(database_.GetProjectCurrentPath(),
            std::filesystem::canonical(directory_.path()).string());
}

TEST_F(NewProject, CreateNewProjectDatabase_Device_HasDefaultFamilyAndModel) {
  EXPECT_EQ(database_.GetDeviceFamily(), "Varel");
  EXPECT_EQ(database_.GetDeviceModel(), "Q8R25");
  EXPECT_EQ(database_.GetDeviceTimingModel(), "");
}

TEST_F(NewProject, CreateNewProjectDatabase_Design_IsEmpty) {
  EXPECT_EQ(database_.GetDesignTopModuleName(), "");
  EXPECT_EQ(database_.GetDesignTopVHDLArchitecture(), "");
  EXPECT_EQ(database_.GetInterfaceConstraint(), "");
}

TEST_F(NewProject, CreateNewProjectDatabase_FileLists_AreEmpty) {
  const ProjectSnapshot snapshot = TakeSnapshot(database_);
  EXPECT_THAT(snapshot.design_files, IsEmpty());
  EXPECT_THAT(snapshot.ip_instances, IsEmpty());
  for (const auto& [name, list] : snapshot.file_lists) EXPECT_THAT(list, IsEmpty()) << name;
}

TEST_F(NewProject, CreateNewProjectDatabase_Processes_AreNamedWithoutToolsAndMaps) {
  EXPECT_THAT(ProcessNames(database_),
              ElementsAre("synthesis", "place_and_route", "bitstream_generation", "debugger"));
  for (const ProcType type : kProcesses) {
    EXPECT_EQ(database_.GetFlowProcessExecutableName(type), "");
    EXPECT_THAT(database_.GetFlowProcess(type)->parameter_maps, IsEmpty());
  }
}

TEST_F(NewProject, CreateNewProjectDatabase_ProjectExists_PostsOneErrorAndReturnsFalse) {
  const MessageRecorder recorder;
  EXPECT_FALSE(database_.CreateNewProjectDatabase("other"));
  EXPECT_THAT(recorder.messages(), ElementsAre(kProjectExists));
}

TEST_F(NewProject, CreateNewProjectDatabase_ProjectExists_LeavesEveryFieldAsItWas) {
  database_.SetProjectName("renamed");
  database_.SetProjectSoftwareVersion("0.0.1-former");
  database_.SetProjectCurrentPath("/work/former");
  database_.SetDeviceFamily("other family");
  database_.SetDeviceModel("other model");
  database_.AddProjectInfoAttribute("last_change_date", "some time ago");
  database_.SetFlowProcessName(e_synthesis, "syn");
  database_.AddDesignRTLFile("src/top.v", "v2001", "work");
  const ProjectSnapshot before = TakeSnapshot(database_);
  const MessageRecorder recorder;
  database_.CreateNewProjectDatabase("other");
  EXPECT_EQ(TakeSnapshot(database_), before);
}

TEST_F(NewProject, CreateNewProjectDatabase_SetUpProjectExists_IsRefusedToo) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.SetupProjectDatabase());
  const MessageRecorder recorder;
  EXPECT_FALSE(database.CreateNewProjectDatabase("other"));
  EXPECT_THAT(recorder.messages(), ElementsAre(kProjectExists));
}

TEST_F(NewProject, CreateNewProjectDatabase_RefusedTwice_PostsOneErrorEachTime) {
  const MessageRecorder recorder;
  database_.CreateNewProjectDatabase("other");
  database_.CreateNewProjectDatabase("other");
  EXPECT_THAT(recorder.messages(), ElementsAre(kProjectExists, kProjectExists));
}

/// Puts a handler in the place of the console for as long as it lives.
class HandlerScope {
 public:
  explicit HandlerScope(Diag::DiagService::Handler handler)
      : former_(Diag::GlobalInst().SetHandler(std::move(handler))) {}
  ~HandlerScope() { Diag::GlobalInst().SetHandler(former_); }
  HandlerScope(const HandlerScope&) = delete;
  HandlerScope& operator=(const HandlerScope&) = delete;

 private:
  Diag::DiagService::Handler former_;
};

TEST_F(NewProject, CreateNewProjectDatabase_ProjectExists_PostsEmptyReferences) {
  std::optional<Diag::DiagStorage> posted;
  const HandlerScope scope([&posted](const Diag::DiagStorage& message) { posted = message; });
  database_.CreateNewProjectDatabase("other");
  ASSERT_TRUE(posted);
  EXPECT_EQ(posted->identifier().size, 0u);
  EXPECT_STREQ(posted->identifier().data, "");
  EXPECT_EQ(posted->second().size, 0u);
  EXPECT_STREQ(posted->second().data, "");
}

TEST_F(NewProject, CreateNewProjectDatabase_PostThrows_ReachesTheCallerAndLeavesTheProject) {
  const ProjectSnapshot before = TakeSnapshot(database_);
  const HandlerScope scope(
      [](const Diag::DiagStorage&) { throw std::runtime_error("log is full"); });
  EXPECT_THROW(database_.CreateNewProjectDatabase("other"), std::runtime_error);
  EXPECT_EQ(TakeSnapshot(database_), before);  // Would wait for ever if the lock were still held.
}

TEST_F(NewProject, CleanProjectDatabase_ProjectExists_LeavesNone) {
  database_.CleanProjectDatabase();
  EXPECT_FALSE(database_.IsProjectDatabaseExist());
}

TEST_F(NewProject, CleanProjectDatabase_ThenCreate_GivesAFreshProject) {
  database_.SetDeviceTimingModel("slow");
  database_.AddDesignRTLFile("src/top.v", "v2001", "work");
  database_.SetSynthesisExecutableName("syn");
  database_.AddSynthesisParameter("effort", "high", e_option);
  database_.CleanProjectDatabase();
  ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker"));

  KelProjectDatabase fresh;
  ASSERT_TRUE(fresh.CreateNewProjectDatabase("blinker"));
  EXPECT_EQ(TakeSnapshot(database_).WithoutStamps(), TakeSnapshot(fresh).WithoutStamps());
}

TEST_F(NewProject, CleanProjectDatabase_ThenSetup_CreatesAProjectAgain) {
  database_.CleanProjectDatabase();
  EXPECT_TRUE(database_.SetupProjectDatabase());
}

TEST(Lifecycle, CleanProjectDatabase_NoProject_DoesNothing) {
  KelProjectDatabase database;
  const MessageRecorder recorder;
  database.CleanProjectDatabase();
  EXPECT_FALSE(database.IsProjectDatabaseExist());
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

TEST(Lifecycle, CleanProjectDatabase_NoProject_CreateSucceedsAfterwards) {
  KelProjectDatabase database;
  database.CleanProjectDatabase();
  EXPECT_TRUE(database.CreateNewProjectDatabase("blinker"));
}

TEST(Lifecycle, TwoObjects_OneHoldsAProject_TheOtherDoesNot) {
  KelProjectDatabase one;
  const KelProjectDatabase other;
  ASSERT_TRUE(one.CreateNewProjectDatabase("blinker"));
  EXPECT_FALSE(other.IsProjectDatabaseExist());
}

/// The time stamp of a project created now.
std::string NewTimeStamp() {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("");
  return database.GetProjectLastModifyTime();
}

/// All texts that the local time has from one point in time to another, in the classic locale.
std::vector<std::string> ClassicStamps(std::time_t from, std::time_t to) {
  std::vector<std::string> stamps;
  for (std::time_t time = from; time <= to; ++time) {
    char text[64];
    const std::tm local = *std::localtime(&time);
    stamps.emplace_back(text, std::strftime(text, sizeof text, "%a %b %d %Y %H:%M:%S", &local));
  }
  return stamps;
}

/// Sets an environment variable that rules the local time zone, and restores it.
class TimeZone {
 public:
  explicit TimeZone(const char* zone) {
    if (const char* former = std::getenv("TZ")) former_ = former;
    Set(zone);
  }
  ~TimeZone() { Set(former_ ? former_->c_str() : nullptr); }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  static void Set(const char* zone) {
    if (zone) {
      setenv("TZ", zone, 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }

  std::optional<std::string> former_;
};

TEST(TimeStamp, CreateNewProjectDatabase_ClassicLocale_HasTheFormatsParts) {
  EXPECT_THAT(NewTimeStamp(),
              MatchesRegex("[A-Z][a-z][a-z] [A-Z][a-z][a-z] [0-9][0-9] [0-9][0-9][0-9][0-9] "
                           "[0-9][0-9]:[0-9][0-9]:[0-9][0-9]"));
}

TEST(TimeStamp, CreateNewProjectDatabase_AnyTimeZone_IsTheLocalTimeOfTheCall) {
  for (const char* zone : {"UTC0", "AAA-05:30", "BBB+11"}) {
    SCOPED_TRACE(zone);
    const TimeZone time_zone(zone);
    const std::time_t before = std::time(nullptr);
    const std::string stamp = NewTimeStamp();
    EXPECT_THAT(stamp, AnyOfArray(ClassicStamps(before, std::time(nullptr))));
  }
}

/// Writes every part of a time as one and the same text or, if that is empty, as the letter that
/// stands for the part.
class FixedTimePut : public std::time_put<char> {
 public:
  explicit FixedTimePut(std::string text) : text_(std::move(text)) {}

 protected:
  iter_type do_put(iter_type out, std::ios_base&, char, const std::tm*, char part,
                   char) const override {
    for (const char c : text_.empty() ? std::string(1, part) : text_) *out++ = c;
    return out;
  }

 private:
  std::string text_;
};

/// Gives the process a global locale that writes times so.
class TimeTextLocale {
 public:
  explicit TimeTextLocale(const std::string& text)
      : former_(std::locale::global(std::locale(std::locale::classic(), new FixedTimePut(text)))) {}
  ~TimeTextLocale() { std::locale::global(former_); }
  TimeTextLocale(const TimeTextLocale&) = delete;
  TimeTextLocale& operator=(const TimeTextLocale&) = delete;

 private:
  std::locale former_;
};

TEST(TimeStamp, CreateNewProjectDatabase_AnyLocale_AsksForTheFormatsParts) {
  const TimeTextLocale locale("");
  EXPECT_EQ(NewTimeStamp(), "a b d Y X");
}

TEST(TimeStamp, CreateNewProjectDatabase_LocaleGivesUtf8Text_KeepsIt) {
  const std::pair<const char*, const char*> cases[] = {
      {"abc", "abc abc abc abc abc"},
      {"sábado", "sábado sábado sábado sábado sábado"},
      {"月", "月 月 月 月 月"},
      {"\xF0\x9F\x95\x90",
       "\xF0\x9F\x95\x90 \xF0\x9F\x95\x90 \xF0\x9F\x95\x90 \xF0\x9F\x95\x90 "
       "\xF0\x9F\x95\x90"},
  };
  for (const auto& [part, stamp] : cases) {
    const TimeTextLocale locale(part);
    EXPECT_EQ(NewTimeStamp(), stamp);
  }
}

TEST(TimeStamp, CreateNewProjectDatabase_LocaleGivesOtherText_IsWrittenInTheClassicLocale) {
  const char* const cases[] = {
      "\xFB",            // One byte of an 8-bit encoding.
      "m\xE1jus",        // The same inside a word.
      "\xE6\x9C",        // A character that breaks off.
      "\xC0\xAF",        // A character in a longer form than it needs.
      "\xED\xA0\x80",    // Half of a pair of UTF-16, which is no character.
      "\x1B$B7n\x1B(B",  // An encoding that shifts with escapes.
  };
  for (const char* const part : cases) {
    SCOPED_TRACE(testing::PrintToString(std::string(part)));
    const TimeTextLocale locale(part);
    const std::time_t before = std::time(nullptr);
    const std::string stamp = NewTimeStamp();
    EXPECT_THAT(stamp, AnyOfArray(ClassicStamps(before, std::time(nullptr))));
  }
}

TEST(TimeStamp, CreateNewProjectDatabase_LocaleRestored_IsClassicAgain) {
  { const TimeTextLocale locale("sábado"); }
  const std::time_t before = std::time(nullptr);
  const std::string stamp = NewTimeStamp();
  EXPECT_THAT(stamp, AnyOfArray(ClassicStamps(before, std::time(nullptr))));
}

}  // namespace
