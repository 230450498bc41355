#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kel/exception.h>
#include <projectdb/project_db.h>

#include "testing/message_recorder.h"
#include "testing/temporary_directory.h"

namespace {

using namespace projectdb;
using test_support::MessageRecorder;
using test_support::TemporaryDirectory;
using testing::IsEmpty;

using Db = KelProjectDatabase;

/// A call of an operation on an object without a project; it expects what the call must give.
struct Call {
  std::string name;
  std::function<void(Db&)> expect;
};

void PrintTo(const Call& call, std::ostream* out) { *out << call.name; }

const Parameter& AnyParameter() {
  static const Parameter parameter("a", "1", e_string);
  return parameter;
}

Call DoesNothing(std::string name, const std::function<void(Db&)>& call) {
  return {std::move(name), [call](Db& database) { EXPECT_NO_THROW(call(database)); }};
}

Call Refuses(std::string name, const std::function<bool(Db&)>& call) {
  return {std::move(name), [call](Db& database) { EXPECT_FALSE(call(database)); }};
}

Call GivesNull(std::string name, const std::function<const void*(Db&)>& call) {
  return {std::move(name), [call](Db& database) { EXPECT_EQ(call(database), nullptr); }};
}

Call GivesEmptyText(std::string name, const std::function<std::string(Db&)>& call) {
  return {std::move(name), [call](Db& database) { EXPECT_EQ(call(database), ""); }};
}

Call GetValue(const char* name, std::string (Db::*get)(const std::string&) const) {
  return GivesEmptyText(name, [get](Db& database) { return (database.*get)("a"); });
}

Call GetParameter(const char* name, std::optional<Parameter> (Db::*get)(const std::string&) const) {
  return Refuses(name, [get](Db& database) { return (database.*get)("a").has_value(); });
}

Call SetText(const char* name, void (Db::*set)(const std::string&)) {
  return DoesNothing(name, [set](Db& database) { (database.*set)("text"); });
}

Call AddOne(const char* name, bool (Db::*add)(const Parameter&)) {
  return Refuses(name, [add](Db& database) { return (database.*add)(AnyParameter()); });
}

Call AddTyped(const std::string& name,
              bool (Db::*add)(const std::string&, const std::string&, ParameterType)) {
  return Refuses(name + "ByParts",
                 [add](Db& database) { return (database.*add)("a", "1", e_string); });
}

Call AddUntyped(const std::string& name, bool (Db::*add)(const std::string&, const std::string&)) {
  return Refuses(name + "ByParts", [add](Db& database) { return (database.*add)("a", "1"); });
}

Call AddList(const char* name, bool (Db::*add)(const std::vector<Parameter>&)) {
  return Refuses(name, [add](Db& database) {
    return (database.*add)({AnyParameter()}) || (database.*add)({});
  });
}

/// The maximum number of threads has a default; 0 is none, whatever the object holds.
Call GivesDefault(const char* name, std::uint64_t (Db::*get)(std::uint64_t) const) {
  return {name, [get](Db& database) {
            EXPECT_EQ((database.*get)(3), 3u);
            EXPECT_THROW((database.*get)(0), kel_exception);
          }};
}

std::string Label(const std::string& text) { return text; }
std::string Label(const DesignFile& file) { return file.name; }
std::string Label(const Parameter& parameter) { return parameter.name; }
std::string Label(const IP& instance) { return instance.instance_name; }

/// A getter that appends to a vector: it leaves the one that it finds.
template <typename Element, typename Get>
Call LeavesList(const char* name, const Element& former, Get get) {
  return {name, [former, get](Db& database) {
            std::vector<Element> list = {former};
            get(database, list);
            ASSERT_EQ(list.size(), 1u);
            EXPECT_EQ(Label(list.front()), Label(former));
          }};
}

Call GetPaths(const char* name, void (Db::*get)(std::vector<std::string>&) const) {
  return LeavesList(name, std::string("former"),
                    [get](Db& database, auto& list) { (database.*get)(list); });
}

Call GetParameters(const char* name, void (Db::*get)(std::vector<Parameter>&) const) {
  return LeavesList(name, AnyParameter(),
                    [get](Db& database, auto& list) { (database.*get)(list); });
}

std::vector<Call> LifecycleCalls() {
  return {
      Refuses("IsProjectDatabaseExist", &Db::IsProjectDatabaseExist),
      DoesNothing("CleanProjectDatabase", &Db::CleanProjectDatabase),
      Refuses("LoadProjectDataWithoutFile",
              [](Db& database) { return database.LoadProjectData("", "wdp_proj.xsd"); }),
      {"ExportProjectData",
       [](Db& database) {
         const TemporaryDirectory directory;
         database.ExportProjectData(directory / "out.xml");
         EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
       }},
      DoesNothing("ExportProjectDataToMissingDirectory",
                  [](Db& database) { database.ExportProjectData("/missing/out.xml"); }),
  };
}

std::vector<Call> PropertyCalls() {
  return {
      GivesEmptyText("GetProjectName", &Db::GetProjectName),
      GivesEmptyText("GetProjectCurrentPath", &Db::GetProjectCurrentPath),
      GivesEmptyText("GetProjectSoftwareVersion", &Db::GetProjectSoftwareVersion),
      GivesEmptyText("GetProjectLastModifyTime", &Db::GetProjectLastModifyTime),
      GivesEmptyText("GetDeviceFamily", &Db::GetDeviceFamily),
      GivesEmptyText("GetDeviceModel", &Db::GetDeviceModel),
      GivesEmptyText("GetDeviceTimingModel", &Db::GetDeviceTimingModel),
      GivesEmptyText("GetDesignTopModuleName", &Db::GetDesignTopModuleName),
      GivesEmptyText("GetDesignTopVHDLArchitecture", &Db::GetDesignTopVHDLArchitecture),
      GivesEmptyText("GetInterfaceConstraint", &Db::GetInterfaceConstraint),
      SetText("SetProjectName", &Db::SetProjectName),
      SetText("SetProjectCurrentPath", &Db::SetProjectCurrentPath),
      SetText("SetProjectSoftwareVersion", &Db::SetProjectSoftwareVersion),
      SetText("SetDeviceFamily", &Db::SetDeviceFamily),
      SetText("SetDeviceModel", &Db::SetDeviceModel),
      SetText("SetDeviceTimingModel", &Db::SetDeviceTimingModel),
      SetText("SetDesignTopModuleName", &Db::SetDesignTopModuleName),
      SetText("SetDesignTopVHDLArchitecture", &Db::SetDesignTopVHDLArchitecture),
  };
}

std::vector<Call> AttributeCalls() {
  // Even a name that would be dropped.
  const std::pair<const char*, const char*> cases[] = {{"owner", "FreeName"},
                                                       {"name", "Name"},
                                                       {"sw_version", "Version"},
                                                       {"last_change_date", "Date"},
                                                       {"xmlns:kel", "Namespace"}};
  std::vector<Call> calls;
  for (const auto& [name, suffix] : cases) {
    const std::string attribute = name;
    const std::string ending = std::string("_") + suffix;
    calls.push_back(Refuses("InsertOrAssignProjectAttribute" + ending, [attribute](Db& database) {
      return database.InsertOrAssignProjectAttribute(attribute, "value");
    }));
    calls.push_back(Refuses("AddProjectInfoAttribute" + ending, [attribute](Db& database) {
      return database.AddProjectInfoAttribute(attribute, "value");
    }));
    calls.push_back({"GetProjectInfoAttribute" + ending, [attribute](Db& database) {
                       std::string value = "former";
                       EXPECT_FALSE(database.GetProjectInfoAttribute(attribute, value));
                       EXPECT_EQ(value, "former");
                     }});
  }
  return calls;
}

/// An adder that takes a vector leaves that as it is.
template <typename Element, typename Add>
Call AddsNothingOf(const char* name, const Element& element, Add add) {
  return {name, [element, add](Db& database) {
            std::vector<Element> list = {element};
            add(database, list);
            ASSERT_EQ(list.size(), 1U);
            EXPECT_EQ(Label(list.front()), Label(element));
          }};
}

std::vector<Call> FileAdderCalls() {
  const DesignFile file("a.v", "v2001", "work");
  return {
      DoesNothing("AddDesignRTLFile",
                  [](Db& database) { database.AddDesignRTLFile("a.v", "v2001", "work"); }),
      AddsNothingOf("AddDesignRTLFileVector", file,
                    [](Db& database, auto& list) { database.AddDesignRTLFile(list); }),
      DoesNothing("AddSimulationTestBenchFile",
                  [](Db& database) { database.AddSimulationTestBenchFile("a.v", "v2001"); }),
      AddsNothingOf("AddSimulationTestBenchFileVector", file,
                    [](Db& database, auto& list) { database.AddSimulationTestBenchFile(list); }),
      DoesNothing("AddMiscellaneousFile",
                  [](Db& database) { database.AddMiscellaneousFile("a.txt"); }),
      AddsNothingOf("AddMiscellaneousFileVector", std::string("a.txt"),
                    [](Db& database, auto& list) { database.AddMiscellaneousFile(list); }),
      Refuses("AddTimingConstraintFile",
              [](Db& database) { return database.AddTimingConstraintFile("a.sdc"); }),
      Refuses("AddTimingConstraintFileVector",
              [](Db& database) {
                return database.AddTimingConstraintFile(std::vector<std::string>{"a.sdc"});
              }),
      Refuses("SetInterfaceConstraint",
              [](Db& database) { return database.SetInterfaceConstraint("a.interface.csv"); }),
  };
}

std::vector<Call> FileListCalls() {
  return {
      LeavesList("GetDesignFileList", DesignFile("former", "", ""),
                 [](Db& database, auto& list) { database.GetDesignFileList(list); }),
      GetPaths("GetSimulationTestBenchFileList", &Db::GetSimulationTestBenchFileList),
      GetPaths("GetMiscellaneousFileList", &Db::GetMiscellaneousFileList),
      GetPaths("GetTimingConstraintFileList", &Db::GetTimingConstraintFileList),
      GetPaths("GetIpSrcFileList", &Db::GetIpSrcFileList),
      LeavesList("GetIpInstanceList", IP{"former", "", {}},
                 [](Db& database, auto& list) { database.GetIpInstanceList(list); }),
  };
}

std::vector<Call> FlowProcessCalls(ProcType type) {
  return {
      GivesNull("GetFlowProcess", [type](Db& database) { return database.GetFlowProcess(type); }),
      GivesNull(
          "FindFlowProcessParameterMap",
          [type](Db& database) { return database.FindFlowProcessParameterMap(type, "param"); }),
      GivesNull(
          "AddFlowProcessParameterMap",
          [type](Db& database) { return database.AddFlowProcessParameterMap(type, "param"); }),
      DoesNothing("SetFlowProcessName",
                  [type](Db& database) { database.SetFlowProcessName(type, "step"); }),
      DoesNothing("SetFlowProcessExecutableName",
                  [type](Db& database) { database.SetFlowProcessExecutableName(type, "tool"); }),
      GivesEmptyText("GetFlowProcessExecutableName",
                     [type](Db& database) { return database.GetFlowProcessExecutableName(type); }),
      Refuses("AddFlowProcessParameter",
              [type](Db& database) {
                return database.AddFlowProcessParameter(type, "param", AnyParameter());
              }),
      Refuses("AddFlowProcessParameterByParts",
              [type](Db& database) {
                return database.AddFlowProcessParameter(type, "param", "a", "1", e_string);
              }),
      Refuses("AddFlowProcessParameterList",
              [type](Db& database) {
                return database.AddFlowProcessParameterList(type, "param", {AnyParameter()}) ||
                       database.AddFlowProcessParameterList(type, "param", {});
              }),
      LeavesList("GetFlowProcessParameterList", AnyParameter(),
                 [type](Db& database, auto& list) {
                   database.GetFlowProcessParameterList(type, "param", list);
                 }),
      Refuses("GetFlowProcessParameter",
              [type](Db& database) {
                return database.GetFlowProcessParameter(type, "param", "a").has_value();
              }),
      GivesEmptyText("GetFlowProcessParameterValue",
                     [type](Db& database) {
                       return database.GetFlowProcessParameterValue(type, "param", "a");
                     }),
  };
}

/// The general flow-process operations, for each process and for a value that is none.
std::vector<Call> FlowProcessCalls() {
  std::vector<Call> calls;
  for (const char* type : {"0", "1", "2", "3", "4"}) {
    for (Call& call : FlowProcessCalls(static_cast<ProcType>(*type - '0'))) {
      calls.push_back({call.name + "_" + type, call.expect});
    }
  }
  return calls;
}

std::vector<Call> ToolCalls() {
  return {
      GivesEmptyText("GetSynthesisExecutableName", &Db::GetSynthesisExecutableName),
      SetText("SetSynthesisExecutableName", &Db::SetSynthesisExecutableName),
      AddOne("AddSynthesisParameter", &Db::AddSynthesisParameter),
      AddTyped("AddSynthesisParameter", &Db::AddSynthesisParameter),
      AddList("AddSynthesisParameterList", &Db::AddSynthesisParameterList),
      GetParameters("GetSynthesisParameterList", &Db::GetSynthesisParameterList),
      GetValue("GetSynthesisParameterValue", &Db::GetSynthesisParameterValue),
      AddOne("AddSynthesisVerilogDefineParameter", &Db::AddSynthesisVerilogDefineParameter),
      AddUntyped("AddSynthesisVerilogDefineParameter", &Db::AddSynthesisVerilogDefineParameter),
      AddList("AddSynthesisVerilogDefineParameterList",
              &Db::AddSynthesisVerilogDefineParameterList),
      GetParameters("GetSynthesisVerilogDefineParameterList",
                    &Db::GetSynthesisVerilogDefineParameterList),
      GetValue("GetSynthesisVerilogDefineParameterValue",
               &Db::GetSynthesisVerilogDefineParameterValue),
      AddOne("AddSynthesisVerilogMacro", &Db::AddSynthesisVerilogMacro),
      AddUntyped("AddSynthesisVerilogMacro", &Db::AddSynthesisVerilogMacro),
      AddList("AddSynthesisVerilogMacroList", &Db::AddSynthesisVerilogMacroList),
      GetParameters("GetSynthesisVerilogMacroList", &Db::GetSynthesisVerilogMacroList),
      GetValue("GetSynthesisVerilogMacroValue", &Db::GetSynthesisVerilogMacroValue),
      GivesEmptyText("GetPlaceAndRouteExecutableName", &Db::GetPlaceAndRouteExecutableName),
      SetText("SetPlaceAndRouteExecutableName", &Db::SetPlaceAndRouteExecutableName),
      AddOne("AddPlaceAndRouteParameter", &Db::AddPlaceAndRouteParameter),
      AddTyped("AddPlaceAndRouteParameter", &Db::AddPlaceAndRouteParameter),
      AddList("AddPlaceAndRouteParameterList", &Db::AddPlaceAndRouteParameterList),
      GetParameters("GetPlaceAndRouteParameterList", &Db::GetPlaceAndRouteParameterList),
      GetParameter("GetPlaceAndRouteParameter", &Db::GetPlaceAndRouteParameter),
      GetValue("GetPlaceAndRouteParameterValue", &Db::GetPlaceAndRouteParameterValue),
      GivesEmptyText("GetBitstreamGenerateExecutableName", &Db::GetBitstreamGenerateExecutableName),
      SetText("SetBitstreamGenerateExecutableName", &Db::SetBitstreamGenerateExecutableName),
      AddOne("AddBitstreamGenerateParameter", &Db::AddBitstreamGenerateParameter),
      AddTyped("AddBitstreamGenerateParameter", &Db::AddBitstreamGenerateParameter),
      AddList("AddBitstreamGenerateParameterList", &Db::AddBitstreamGenerateParameterList),
      GetParameters("GetBitstreamGenerateParameterList", &Db::GetBitstreamGenerateParameterList),
      GetValue("GetBitstreamGenerateParameterValue", &Db::GetBitstreamGenerateParameterValue),
      AddOne("AddDebuggerParameter", &Db::AddDebuggerParameter),
      AddTyped("AddDebuggerParameter", &Db::AddDebuggerParameter),
      AddList("AddDebuggerParameterList", &Db::AddDebuggerParameterList),
      GetParameters("GetDebuggerParameterList", &Db::GetDebuggerParameterList),
      GetParameter("GetDebuggerParameter", &Db::GetDebuggerParameter),
      GetValue("GetDebuggerParameterValue", &Db::GetDebuggerParameterValue),
      GivesDefault("GetSynthesisMaxThreads", &Db::GetSynthesisMaxThreads),
      GivesDefault("GetPnRMaxThreads", &Db::GetPnRMaxThreads),
  };
}

class NoProject : public testing::TestWithParam<Call> {};

TEST_P(NoProject, Operation_NewObject_GivesNothingAndHasNoEffect) {
  const MessageRecorder recorder;
  Db database;
  GetParam().expect(database);
  EXPECT_THAT(recorder.messages(), IsEmpty());
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

TEST_P(NoProject, Operation_ProjectDiscardedBefore_GivesNothing) {
  Db database;
  ASSERT_TRUE(database.CreateNewProjectDatabase("blinker"));
  ASSERT_TRUE(database.AddSynthesisParameter("a", "1", e_string));
  ASSERT_TRUE(database.AddProjectInfoAttribute("owner", "lab 3"));
  database.CleanProjectDatabase();
  GetParam().expect(database);
}

std::string NameOf(const testing::TestParamInfo<Call>& param_info) { return param_info.param.name; }

INSTANTIATE_TEST_SUITE_P(Lifecycle, NoProject, testing::ValuesIn(LifecycleCalls()), NameOf);
INSTANTIATE_TEST_SUITE_P(Properties, NoProject, testing::ValuesIn(PropertyCalls()), NameOf);
INSTANTIATE_TEST_SUITE_P(Attributes, NoProject, testing::ValuesIn(AttributeCalls()), NameOf);
INSTANTIATE_TEST_SUITE_P(FileAdders, NoProject, testing::ValuesIn(FileAdderCalls()), NameOf);
INSTANTIATE_TEST_SUITE_P(FileLists, NoProject, testing::ValuesIn(FileListCalls()), NameOf);
INSTANTIATE_TEST_SUITE_P(FlowProcesses, NoProject, testing::ValuesIn(FlowProcessCalls()), NameOf);
INSTANTIATE_TEST_SUITE_P(Tools, NoProject, testing::ValuesIn(ToolCalls()), NameOf);

}  // namespace
