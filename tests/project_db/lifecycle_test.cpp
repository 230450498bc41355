#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <locale>
#include <memory>
#include <optional>
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
#include "testing/project_loading.h"
#include "testing/temporary_directory.h"

namespace {

using namespace projectdb;
using namespace test_support;
using testing::AnyOfArray;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

static_assert(!std::is_copy_constructible_v<KelProjectDatabase>);
static_assert(!std::is_copy_assignable_v<KelProjectDatabase>);
static_assert(!std::is_move_constructible_v<KelProjectDatabase>);
static_assert(!std::is_move_assignable_v<KelProjectDatabase>);
static_assert(!std::is_polymorphic_v<KelProjectDatabase>);
static_assert(std::is_nothrow_default_constructible_v<KelProjectDatabase>);
static_assert(std::is_nothrow_destructible_v<KelProjectDatabase>);

TEST(Lifecycle, Construct_NewObject_HoldsNoProject) {
  EXPECT_FALSE(KelProjectDatabase().IsProjectDatabaseExist());
}

TEST(Lifecycle, SetupProjectDatabase_NoProject_CreatesAnEmptyOneWithFourUnnamedProcesses) {
  KelProjectDatabase database;
  EXPECT_TRUE(database.SetupProjectDatabase());
  EXPECT_THAT(ProjectLines(database), IsEmpty());
  EXPECT_EQ(database.GetProjectCurrentPath(), "");
  EXPECT_THAT(GetProjectContents(database).flow_processes, SizeIs(4));
}

TEST(Lifecycle, SetupProjectDatabase_NoProject_ProcessesHaveNoParametersAndOneBucketIndex) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.SetupProjectDatabase());
  for (const ProcType type : kProcesses) {
    SCOPED_TRACE(type);
    const FlowProcess* process = database.GetFlowProcess(type);
    ASSERT_NE(process, nullptr);
    EXPECT_THAT(process->parameter_maps, IsEmpty());
    EXPECT_THAT(process->parameter_map_index, IsEmpty());
    EXPECT_EQ(process->parameter_map_index.bucket_count(), 1u);
    EXPECT_EQ(process->parameter_map_index.max_load_factor(), 1.0F);
  }
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

/// A project just created, without a name of its own, in a directory of its own.
class NewProject : public testing::Test {
 protected:
  void SetUp() override {
    const WorkingDirectory working_directory(directory_.path());
    const MessageRecorder recorder;
    ASSERT_TRUE(database_.CreateNewProjectDatabase(""));
    ASSERT_THAT(recorder.messages(), IsEmpty());
  }

  TemporaryDirectory directory_;
  KelProjectDatabase database_;
};

TEST_F(NewProject, CreateNewProjectDatabase_NoProject_HasTheDefaultsAndNamedProcesses) {
  EXPECT_THAT(
      ProjectLines(database_),
      ElementsAre("name: new_project",
                  "info.last_change_date: " + database_.GetProjectLastModifyTime(),
                  std::string("info.sw_version: ") + KEL_VERSION_NO, "device.family: Varel",
                  "device.device: Q8R25", "synthesis.name: synthesis",
                  "place_and_route.name: place_and_route",
                  "bitstream_generation.name: bitstream_generation", "debugger.name: debugger"));
  for (const ProcType type : kProcesses) {
    EXPECT_THAT(database_.GetFlowProcess(type)->parameter_maps, IsEmpty());
  }
}

TEST_F(NewProject, CreateNewProjectDatabase_Directory_IsTheWorkingDirectory) {
  EXPECT_EQ(database_.GetProjectCurrentPath(),
            std::filesystem::canonical(directory_.path()).string());
}

/// A project with a value of its own in every field that the creation of one sets.
class ProjectExists : public testing::Test {
 protected:
  ProjectExists() {
    database_.SetupProjectDatabase();
    database_.SetProjectName("former");
    database_.SetDeviceFamily("other family");
    database_.AddProjectInfoAttribute("last_change_date", "some time ago");
    database_.AddDesignRTLFile("src/top.v", "v2001", "work");
    database_.AddSynthesisParameter("effort", "high", e_option);
    before_ = GetProjectContents(database_);
  }
  void TearDown() override { EXPECT_THAT(AllDifferences(before_, database_), IsEmpty()); }

  KelProjectDatabase database_;
  ProjectContents before_;
};

TEST_F(ProjectExists, SetupProjectDatabase_IsRefusedWithoutMessageOrChange) {
  const MessageRecorder recorder;
  EXPECT_FALSE(database_.SetupProjectDatabase());
  EXPECT_THAT(recorder.messages(), IsEmpty());
}

TEST_F(ProjectExists, CreateNewProjectDatabase_IsRefusedWithOneErrorEachTimeAndNoChange) {
  const MessageRecorder recorder;
  EXPECT_FALSE(database_.CreateNewProjectDatabase("other"));
  EXPECT_FALSE(database_.CreateNewProjectDatabase("other"));
  EXPECT_THAT(recorder.messages(), ElementsAre(ProjectExistsMessage(), ProjectExistsMessage()));
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

TEST_F(ProjectExists, CreateNewProjectDatabase_PostsEmptyReferences) {
  std::optional<Diag::DiagStorage> posted;
  const HandlerScope scope([&posted](const Diag::DiagStorage& message) { posted = message; });
  database_.CreateNewProjectDatabase("other");
  ASSERT_TRUE(posted);
  EXPECT_EQ(posted->identifier().size, 0u);
  EXPECT_STREQ(posted->identifier().data, "");
  EXPECT_EQ(posted->second().size, 0u);
  EXPECT_STREQ(posted->second().data, "");
}

TEST_F(NewProject, CleanProjectDatabase_ThenCreate_GivesAFreshProject) {
  database_.SetDeviceTimingModel("slow");
  database_.AddProjectInfoAttribute("owner", "lab 3");
  database_.AddDesignRTLFile("src/top.v", "v2001", "work");
  database_.AddSynthesisParameter("effort", "high", e_option);
  database_.CleanProjectDatabase();
  EXPECT_FALSE(database_.IsProjectDatabaseExist());
  ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker"));
  KelProjectDatabase fresh;
  ASSERT_TRUE(fresh.CreateNewProjectDatabase("blinker"));
  EXPECT_THAT(DifferencesButStamps(GetProjectContents(fresh), GetProjectContents(database_)),
              IsEmpty());
}

TEST(Lifecycle, CleanProjectDatabase_NoProject_LeavesAUsableObject) {
  KelProjectDatabase database;
  database.CleanProjectDatabase();
  EXPECT_FALSE(database.IsProjectDatabaseExist());
  EXPECT_TRUE(database.CreateNewProjectDatabase("blinker"));
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
      "\xFB",              // One byte of an 8-bit encoding.
      "m\xE1jus",          // The same inside a word.
      "\xE6\x9C",          // A character that breaks off.
      "\xC0\xAF",          // A character in a longer form than it needs.
      "\xED\xA0\x80",      // Half of a pair of UTF-16, which is no character.
      "\x1B$B7n\x1B(B",    // An encoding that shifts with escapes.
      "\x0En\x0F",         // The same with shift characters.
      "\xF5\x80\x80\x80",  // Beyond the last character.
      "\x01",              // A character that no XML file may hold.
      "\xEF\xBF\xBE",      // The same, U+FFFE.
  };
  for (const char* const part : cases) {
    SCOPED_TRACE(testing::PrintToString(std::string(part)));
    const TimeTextLocale locale(part);
    const std::time_t before = std::time(nullptr);
    const std::string stamp = NewTimeStamp();
    EXPECT_THAT(stamp, AnyOfArray(ClassicStamps(before, std::time(nullptr))));
  }
}

}  // namespace
