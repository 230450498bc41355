#include <atomic>
#include <chrono>
#include <filesystem>
#include <future>

#include <projectdb/durable_export.h>

#include "testing/call_names.h"
#include "testing/filtered_calls.h"
#include "testing/project_loading.h"
#include "testing/shipped_files.h"
#include "testing/test.h"
#include "testing/threads.h"
#include "testing/xml_tree.h"

namespace {

using namespace projectdb;
using namespace test_support;

constexpr int kFileRounds = 25;

void AddOfEverything(KelProjectDatabase& database, const std::string& name) {
  database.AddDesignRTLFile(name, "v2k", "work");
  std::vector<DesignFile> files = {{name, "v2k", "work"}, {name, "sv", "work"}};
  database.AddDesignRTLFile(files);
  database.AddSimulationTestBenchFile(name, "sv");
  database.AddSimulationTestBenchFile(files);
  database.AddMiscellaneousFile(name);
  std::vector<std::string> names = {name};
  database.AddMiscellaneousFile(names);
  database.AddTimingConstraintFile(name + ".sdc");
  database.AddTimingConstraintFile(std::vector<std::string>{name + "_2.sdc"});
  database.SetInterfaceConstraint(name + ".interface.csv");
  database.AddProjectInfoAttribute("owner", name);
  const std::vector<Parameter> parameters = {{name, "1", e_string}};
  database.AddFlowProcessParameter(e_debugger, "param", name, "1", e_string);
  database.AddSynthesisParameterList(parameters);
  database.AddSynthesisVerilogDefineParameter(name, "1");
  database.AddSynthesisVerilogMacroList(parameters);
  database.AddPlaceAndRouteParameter(parameters.front());
  database.AddBitstreamGenerateParameterList(parameters);
  database.AddDebuggerParameter(name, "1", e_string);
}

void SetEverything(KelProjectDatabase& database, const std::string& text) {
  database.SetProjectName(text);
  database.SetProjectCurrentPath("/" + text);
  database.SetProjectSoftwareVersion(text);
  database.SetDeviceFamily(text);
  database.SetDeviceModel(text);
  database.SetDeviceTimingModel(text);
  database.SetDesignTopModuleName(text);
  database.SetDesignTopVHDLArchitecture(text);
  database.SetFlowProcessExecutableName(e_bitstream_generation, text);
  database.SetSynthesisExecutableName(text);
  database.SetPlaceAndRouteExecutableName(text);
}

/// @return the size of all that was got
std::size_t GetEverything(const KelProjectDatabase& database) {
  std::vector<std::string> texts = {database.GetProjectName(),
                                    database.GetProjectCurrentPath(),
                                    database.GetProjectSoftwareVersion(),
                                    database.GetProjectLastModifyTime(),
                                    database.GetDeviceFamily(),
                                    database.GetDeviceModel(),
                                    database.GetDeviceTimingModel(),
                                    database.GetDesignTopModuleName(),
                                    database.GetInterfaceConstraint(),
                                    database.GetDesignTopVHDLArchitecture(),
                                    database.GetSynthesisExecutableName(),
                                    database.GetFlowProcessExecutableName(e_debugger),
                                    database.GetDebuggerParameterValue("a"),
                                    database.GetSynthesisParameterValue("mode")};
  std::string value;
  if (database.GetProjectInfoAttribute("owner", value)) texts.push_back(value);
  database.GetSimulationTestBenchFileList(texts);
  database.GetMiscellaneousFileList(texts);
  database.GetTimingConstraintFileList(texts);
  database.GetIpSrcFileList(texts);
  std::vector<DesignFile> files;
  database.GetDesignFileList(files);
  std::vector<IP> instances;
  database.GetIpInstanceList(instances);
  std::vector<Parameter> parameters;
  database.GetFlowProcessParameterList(e_synthesis, "param", parameters);
  database.GetPlaceAndRouteParameterList(parameters);
  const bool has_seed = database.GetPlaceAndRouteParameter("seed").has_value();
  return texts.size() + files.size() + instances.size() + parameters.size() +
         database.GetSynthesisMaxThreads(1) + database.GetPnRMaxThreads(1) + (has_seed ? 1 : 0);
}

class ThreadsAndFiles : public testing::Test, protected Loading {
 protected:
  const MessageRecorder recorder_;
};

TEST_F(ThreadsAndFiles, OneObject_EightThreadsMixEveryOperation_EachLoadAndSaveIsWhole) {
  const std::string source = Write("source.xml", CompleteProjectXml());
  std::atomic<int> failed_loads{0};
  std::atomic<int> damaged_files{0};
  const auto require_whole = [&](const std::string& path) {
    KelProjectDatabase loaded;
    if (std::filesystem::exists(path) && !loaded.LoadProjectData(path, ShippedSchema())) {
      ++damaged_files;
    }
  };
  InThreads(8, [&](int thread) {
    const std::string name = "t" + std::to_string(thread);
    const std::string plain = directory / (name + ".xml");
    const std::string durable = directory / (name + "_durable.xml");
    for (int round = 0; round < kFileRounds; ++round) {
      if (!database.LoadProjectData(source, "")) ++failed_loads;
      AddOfEverything(database, name);
      SetEverything(database, name);
      GetEverything(database);
      CompareProjects(database, database);
      database.ExportProjectData(plain);
      require_whole(plain);
      ExportProjectDataDurably(database, durable);
      require_whole(durable);
      if ((thread + round) % 4 == 0) database.CleanProjectDatabase();
      database.CreateNewProjectDatabase(name);
    }
  });
  EXPECT_EQ(failed_loads, 0);
  EXPECT_EQ(damaged_files, 0);
  database.CleanProjectDatabase();
  EXPECT_EQ(GetEverything(database), GetEverything(KelProjectDatabase()));
  EXPECT_TRUE(database.LoadProjectData(source, ""));
  KelProjectDatabase fresh;
  fresh.LoadProjectData(source, "");
  EXPECT_THAT(AllDifferences(GetProjectContents(fresh), GetProjectContents(database)), IsEmpty());
}

TEST_F(ThreadsAndFiles, EightObjects_LoadAndExportAtOnce_EachGetsItsOwnProjectAndRefusals) {
  const std::string malformed = Write("malformed.xml", "<project><device_info></project>");
  const std::string invalid =
      Write("invalid.xml", ProjectXml("<device_info><rack/></device_info>"));
  const std::string unknown = Write("unknown.xml", ProjectXml("<rack/>"));
  std::vector<std::vector<std::string>> differences(8);
  std::atomic<int> wrong_results{0};
  const auto expect = [&](bool expected, bool result) {
    if (result != expected) ++wrong_results;
  };
  InThreads(8, [&](int thread) {
    const std::string name = "project " + std::to_string(thread);
    const std::string path = directory / (std::to_string(thread) + ".xml");
    KelProjectDatabase original;
    original.CreateNewProjectDatabase(name);
    AddOfEverything(original, name);
    original.SetProjectCurrentPath(PathText(directory.path()));
    for (int round = 0; round < kFileRounds; ++round) {
      original.ExportProjectData(path);
      KelProjectDatabase loaded;
      expect(false, loaded.LoadProjectData(malformed, ""));
      expect(false, loaded.LoadProjectData(invalid, ShippedSchema()));
      expect(false, loaded.LoadProjectData(directory / "missing.xml", ""));
      expect(true, loaded.LoadProjectData(path, round % 2 == 0 ? ShippedSchema() : ""));
      const auto found =
          DifferencesButStamps(GetProjectContents(original), GetProjectContents(loaded));
      auto& mine = differences[static_cast<std::size_t>(thread)];
      mine.insert(mine.end(), found.begin(), found.end());
      KelProjectDatabase other;
      expect(false, other.LoadProjectData(unknown, ""));
    }
  });
  EXPECT_EQ(wrong_results, 0);
  EXPECT_THAT(differences, Each(IsEmpty()));
}

TEST_F(ThreadsAndFiles, ExportWhileItWrites_KeepsNobodyFromTheProject) {
  database.CreateNewProjectDatabase("soc");
  for (int i = 0; i < 20000; ++i) database.AddMiscellaneousFile("notes_" + std::to_string(i));
  std::future<void> use;
  std::future_status used = std::future_status::deferred;
  {
    const FilteredCalls calls(AtCallBehind("", NameOfWrite(), [&] {
      use = std::async(std::launch::async, [&] {
        database.SetProjectName("later");
        database.CleanProjectDatabase();
      });
      used = use.wait_for(std::chrono::minutes(1));
      return 0;
    }));
    database.ExportProjectData(path());
  }
  EXPECT_EQ(used, std::future_status::ready);
  const XmlElement root = ReadXmlFile(path());
  EXPECT_EQ(root.attributes.at("name"), "soc");
  EXPECT_EQ(root.Child("misc_info").children.size(), 20000U);
}

}  // namespace
