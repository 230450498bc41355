#include <projectdb/project_contents.h>

#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/project_differences.h"
#include "testing/project_loading.h"

namespace {

using namespace projectdb;
using test_support::AllDifferences;
using test_support::CompleteProjectXml;
using test_support::Loading;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

ProjectContents CompleteContents() {
  Loading loading;
  loading.LoadBytes(CompleteProjectXml());
  return GetProjectContents(loading.database);
}

TEST(SetProjectContents, ObjectWithoutProject_HasOneWithTheContents) {
  KelProjectDatabase database;
  const ProjectContents contents = CompleteContents();
  SetProjectContents(database, contents);
  EXPECT_TRUE(database.IsProjectDatabaseExist());
  EXPECT_THAT(AllDifferences(contents, GetProjectContents(database)), IsEmpty());
}

TEST(SetProjectContents, ObjectWithAnotherProject_KeepsNothingOfIt) {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("former");
  database.AddMiscellaneousFile("former.txt");
  database.AddProjectInfoAttribute("former", "1");
  database.AddDebuggerParameter("former", "1", e_string);
  const ProjectContents contents = CompleteContents();
  SetProjectContents(database, contents);
  EXPECT_THAT(AllDifferences(contents, GetProjectContents(database)), IsEmpty());
}

TEST(SetProjectContents, EmptyMap_IsThere) {
  ProjectContents contents = CompleteContents();
  contents.flow_processes[e_debugger].parameter_maps["param"].clear();
  KelProjectDatabase database;
  SetProjectContents(database, contents);
  EXPECT_NE(database.FindFlowProcessParameterMap(e_debugger, "param"), nullptr);
}

TEST(SetProjectContents, PlainParameters_AreKept) {
  ProjectContents contents = CompleteContents();
  contents.flow_processes[e_debugger].parameters = {{"probe", "1", e_string}};
  KelProjectDatabase database;
  SetProjectContents(database, contents);
  EXPECT_THAT(GetProjectContents(database).flow_processes[e_debugger].parameters, SizeIs(1));
}

TEST(SetProjectContents, AsManyMapsAsAProcessCanHave_AreThere) {
  ProjectContents contents = CompleteContents();
  auto& maps = contents.flow_processes[e_debugger].parameter_maps;
  for (int map = 0; map < 32768; ++map) maps[std::to_string(map)];
  KelProjectDatabase database;
  SetProjectContents(database, contents);
  EXPECT_THAT(GetProjectContents(database).flow_processes[e_debugger].parameter_maps,
              SizeIs(32768));
}

/// A change that makes of contents something that no project is.
struct Fault {
  const char* name;
  std::function<void(ProjectContents&)> make;
  const char* key;
};

void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }

void SetParameter(ProjectContents& contents, const std::string& map, const std::string& key,
                  const Parameter& parameter) {
  contents.flow_processes[e_synthesis].parameter_maps[map].insert_or_assign(key, parameter);
}

class FaultyContents : public testing::TestWithParam<Fault> {};

TEST_P(FaultyContents, SetProjectContents_IsAnErrorWithTheKeyAndChangesNothing) {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("former");
  const ProjectContents former = GetProjectContents(database);
  ProjectContents contents = CompleteContents();
  GetParam().make(contents);
  try {
    SetProjectContents(database, contents);
    ADD_FAILURE() << "nothing thrown";
  } catch (const std::invalid_argument& error) {
    EXPECT_THAT(error.what(), HasSubstr(GetParam().key));
  }
  EXPECT_THAT(AllDifferences(former, GetProjectContents(database)), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Faults, FaultyContents,
    testing::Values(
        Fault{"no processes", [](auto& c) { c.flow_processes.clear(); }, "flow_processes: "},
        Fault{"three processes", [](auto& c) { c.flow_processes.pop_back(); }, "flow_processes: "},
        Fault{"five processes", [](auto& c) { c.flow_processes.emplace_back(); },
              "flow_processes: "},
        Fault{"foreign key",
              [](auto& c) {
                SetParameter(c, "param", "effort", {"mode", "1", e_string});
              },
              "synthesis.param.effort: "},
        Fault{"switch with a value",
              [](auto& c) {
                SetParameter(c, "param", "flat", {"flat", "1", e_noarg});
              },
              "synthesis.param.flat: "},
        Fault{"no value",
              [](auto& c) {
                SetParameter(c, "a.b", "x", {"x", "", e_string});
              },
              "synthesis.\"a.b\".x: "},
        Fault{"too many maps",
              [](auto& c) {
                auto& maps = c.flow_processes[e_debugger].parameter_maps;
                for (int map = 0; map < 32769; ++map) maps[std::to_string(map)];
              },
              "debugger: "},
        Fault{"attribute that is a field", [](auto& c) { c.info_attributes["sw_version"] = "1"; },
              "info.sw_version: "},
        Fault{"namespace declaration", [](auto& c) { c.info_attributes["xmlns:kel"] = "1"; },
              "info.xmlns:kel: "}));

}  // namespace
