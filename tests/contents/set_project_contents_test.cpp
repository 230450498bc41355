#include <stdexcept>

#include "testing/project_loading.h"
#include "testing/test.h"

namespace {

using namespace projectdb;
using namespace test_support;

ProjectContents CompleteContents() {
  Loading loading;
  loading.LoadBytes(CompleteProjectXml());
  return GetProjectContents(loading.database);
}

TEST(SetProjectContents, ObjectWithOrWithoutProject_HasTheContentsAndNothingElse) {
  KelProjectDatabase without;
  KelProjectDatabase with;
  with.CreateNewProjectDatabase("former");
  with.AddMiscellaneousFile("former.txt");
  with.AddProjectInfoAttribute("former", "1");
  with.AddDebuggerParameter("former", "1", e_string);
  const ProjectContents contents = CompleteContents();
  for (KelProjectDatabase* database : {&without, &with}) {
    SetProjectContents(*database, contents);
    EXPECT_TRUE(database->IsProjectDatabaseExist());
    EXPECT_THAT(AllDifferences(contents, *database), IsEmpty());
  }
}

TEST(SetProjectContents, EmptyMapAndPlainParameters_AreThere) {
  ProjectContents contents = CompleteContents();
  contents.flow_processes[e_debugger].parameter_maps["param"].clear();
  contents.flow_processes[e_debugger].parameters = {{"probe", "1", e_string}};
  KelProjectDatabase database;
  SetProjectContents(database, contents);
  EXPECT_NE(database.FindFlowProcessParameterMap(e_debugger, "param"), nullptr);
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

void SetParameter(ProjectContents& contents, const std::string& map, const std::string& key,
                  const Parameter& parameter) {
  contents.flow_processes[e_synthesis].parameter_maps[map].insert_or_assign(key, parameter);
}

TEST(SetProjectContents, ContentsThatNoProjectHas_IsAnErrorWithTheKeyAndChangesNothing) {
  const std::pair<std::string, void (*)(ProjectContents&)> faults[] = {
      {"flow_processes: ", [](auto& c) { c.flow_processes.clear(); }},
      {"flow_processes: ", [](auto& c) { c.flow_processes.pop_back(); }},
      {"flow_processes: ", [](auto& c) { c.flow_processes.emplace_back(); }},
      {"synthesis.param.effort: ",
       [](auto& c) { SetParameter(c, "param", "effort", Parameter("mode", "1", e_string)); }},
      {"synthesis.param.flat: ",
       [](auto& c) { SetParameter(c, "param", "flat", Parameter("flat", "1", e_noarg)); }},
      {"synthesis.\"a.b\".x: ",
       [](auto& c) { SetParameter(c, "a.b", "x", Parameter("x", "", e_string)); }},
      {"debugger: ",
       [](auto& c) {
         auto& maps = c.flow_processes[e_debugger].parameter_maps;
         for (int map = 0; map < 32769; ++map) maps[std::to_string(map)];
       }},
      {"info.sw_version: ", [](auto& c) { c.info_attributes["sw_version"] = "1"; }},
      {"info.xmlns:kel: ", [](auto& c) { c.info_attributes["xmlns:kel"] = "1"; }}};
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("former");
  const ProjectContents former = GetProjectContents(database);
  for (const auto& [key, make] : faults) {
    ProjectContents contents = CompleteContents();
    make(contents);
    EXPECT_THAT(ErrorOf<std::invalid_argument>([&] { SetProjectContents(database, contents); }),
                HasSubstr(key));
    EXPECT_THAT(AllDifferences(former, database), IsEmpty());
  }
}

}  // namespace
