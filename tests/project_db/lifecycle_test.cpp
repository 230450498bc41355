#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <locale>
#include <optional>
#include <type_traits>

#include <kel/version.h>

#include "testing/clock.h"
#include "testing/flow_processes.h"
#include "testing/project_loading.h"
#include "testing/test.h"
#include "testing/time_zone.h"

namespace {

using namespace projectdb;
using namespace test_support;

static_assert(!std::is_copy_constructible_v<KelProjectDatabase>);
static_assert(!std::is_copy_assignable_v<KelProjectDatabase>);
static_assert(!std::is_move_constructible_v<KelProjectDatabase>);
static_assert(!std::is_move_assignable_v<KelProjectDatabase>);
static_assert(!std::is_polymorphic_v<KelProjectDatabase>);
static_assert(std::is_nothrow_default_constructible_v<KelProjectDatabase>);
static_assert(std::is_nothrow_destructible_v<KelProjectDatabase>);

TEST(Lifecycle, SetupProjectDatabase_NoProject_CreatesAnEmptyOneWithFourEmptyProcesses) {
  KelProjectDatabase database;
  EXPECT_TRUE(database.SetupProjectDatabase());
  EXPECT_THAT(ProjectLines(database), IsEmpty());
  EXPECT_EQ(database.GetProjectCurrentPath(), "");
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

/// The time stamp of a project created now.
std::string NewTimeStamp() {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("");
  return database.GetProjectLastModifyTime();
}

/// Expects that a project created now has the local time of now, in the classic locale.
void ExpectClassicStampOfNow() {
  std::time_t time = Now();
  const std::string stamp = NewTimeStamp();
  std::vector<std::string> possible;
  for (const std::time_t end = Now(); time <= end; ++time) {
    char text[64];
    const std::tm local = *std::localtime(&time);
    possible.emplace_back(text, std::strftime(text, sizeof text, "%a %b %d %Y %H:%M:%S", &local));
  }
  EXPECT_THAT(possible, Contains(stamp));
}

/// Sets an environment variable that rules the local time zone, and restores it.
class TimeZone {
 public:
  explicit TimeZone(const char* zone) {
    if (const char* former = std::getenv("TZ")) former_ = former;
    SetTimeZone(zone);
  }
  ~TimeZone() { SetTimeZone(former_ ? former_->c_str() : nullptr); }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  std::optional<std::string> former_;
};

TEST(TimeStamp, CreateNewProjectDatabase_AnyTimeZone_IsTheLocalTimeOfTheCall) {
  for (const char* zone : {"UTC0", "AAA-05:30", "BBB+11"}) {
    SCOPED_TRACE(zone);
    const TimeZone time_zone(zone);
    ExpectClassicStampOfNow();
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
  for (const std::string part : {"abc", "sábado", "月", "🕐"}) {
    const TimeTextLocale locale(part);
    EXPECT_EQ(NewTimeStamp(), part + ' ' + part + ' ' + part + ' ' + part + ' ' + part);
  }
}

TEST(TimeStamp, CreateNewProjectDatabase_LocaleGivesOtherText_IsWrittenInTheClassicLocale) {
  const char* const cases[] = {
      "m\xE1jus",          // A word in an 8-bit encoding.
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
    ExpectClassicStampOfNow();
  }
}

}  // namespace
