#include <projectdb/project_contents.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/project_loading.h"

namespace {

using namespace projectdb;
using test_support::CompleteProjectXml;
using test_support::Loading;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

auto IsFile(const char* name, const char* version, const char* library) {
  return AllOf(Field(&DesignFile::name, name), Field(&DesignFile::version, version),
               Field(&DesignFile::library, library));
}

auto IsParameter(const char* name, const char* value, ParameterType type) {
  return AllOf(Field(&Parameter::name, name), Field(&Parameter::value, value),
               Field(&Parameter::type, type));
}

/// The contents of a project with something in every section.
class CompleteProject : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(loading_.LoadBytes(CompleteProjectXml()));
    contents_ = GetProjectContents(loading_.database);
  }

  Loading loading_;
  ProjectContents contents_;
};

TEST_F(CompleteProject, GetProjectContents_Root_GivesNameStampsAndDirectory) {
  EXPECT_EQ(contents_.project_name, "demo");
  EXPECT_EQ(contents_.current_path, loading_.directory.path().string());
  EXPECT_EQ(contents_.software_version, "0.0.1");
  EXPECT_EQ(contents_.last_modify_time, "long ago");
}

TEST_F(CompleteProject, GetProjectContents_InfoAttributes_GivesThoseThatAreNoFields) {
  EXPECT_THAT(contents_.info_attributes, ElementsAre(Pair("vendor_id", "77")));
}

TEST_F(CompleteProject, GetProjectContents_Device_GivesItsThreeTexts) {
  EXPECT_EQ(contents_.device_info.family, "Orrin");
  EXPECT_EQ(contents_.device_info.device, "O40");
  EXPECT_EQ(contents_.device_info.timing_model, "slow");
}

TEST_F(CompleteProject, GetProjectContents_Design_GivesTopLevelAndVersions) {
  EXPECT_EQ(contents_.design_info.top_module, "top");
  EXPECT_EQ(contents_.design_info.top_vhdl_arch, "rtl");
  EXPECT_EQ(contents_.design_info.def_veri_version, "v2k");
  EXPECT_EQ(contents_.design_info.def_vhdl_version, "vhdl08");
}

TEST_F(CompleteProject, GetProjectContents_FileLists_GivesNamesAsStored) {
  EXPECT_THAT(contents_.design_info.design_files,
              ElementsAre(IsFile("a.v", "v2k", "work"), IsFile("b.vhd", "", "lib")));
  EXPECT_THAT(contents_.sim_files, ElementsAre(IsFile("tb.v", "sv", "sim")));
  EXPECT_THAT(contents_.misc_files, ElementsAre(IsFile("notes.txt", "1", "docs")));
  EXPECT_THAT(contents_.design_constraint.sdc_files, ElementsAre("c.sdc"));
  EXPECT_EQ(contents_.design_constraint.inter_file, "c.interface.csv");
  EXPECT_THAT(contents_.design_isf.isf_files, ElementsAre("d.isf"));
}

TEST_F(CompleteProject, GetProjectContents_IpInstances_GivesTheirSourceFiles) {
  EXPECT_THAT(
      contents_.ip_info.ips,
      ElementsAre(AllOf(Field(&IP::instance_name, "u"), Field(&IP::path, "ip/u.cfg"),
                        Field(&IP::src_files, ElementsAre(Field(&IPSrcFile::name, "u.v"))))));
}

TEST_F(CompleteProject, GetProjectContents_FlowProcesses_GivesThemByTheirType) {
  const auto process = [](const char* name, const char* tool) {
    return AllOf(Field(&FlowProcessContents::name, name),
                 Field(&FlowProcessContents::tool_name, tool));
  };
  EXPECT_THAT(contents_.flow_processes,
              ElementsAre(process("synthesis", "syn"), process("place_and_route", "pnr"),
                          process("bitstream_generation", ""), process("debugger", "dbg")));
}

TEST_F(CompleteProject, GetProjectContents_ParameterMaps_GivesParametersByMapAndName) {
  EXPECT_THAT(
      contents_.flow_processes.at(e_synthesis).parameter_maps,
      ElementsAre(
          Pair("defmacro", ElementsAre(Pair("SIM", IsParameter("SIM", "1", kNoParameterType)))),
          Pair("dynparam", ElementsAre(Pair("W", IsParameter("W", "8", e_string)))),
          Pair("param", ElementsAre(Pair("flat", IsParameter("flat", "", e_noarg)),
                                    Pair("mode", IsParameter("mode", "fast", e_option))))));
}

TEST(ProjectContents, GetProjectContents_NoProject_IsEmpty) {
  const KelProjectDatabase database;
  const ProjectContents contents = GetProjectContents(database);
  EXPECT_EQ(contents.project_name, "");
  EXPECT_THAT(contents.flow_processes, IsEmpty());
}

TEST(ProjectContents, GetProjectContents_EmptyProject_HasFourUnnamedProcesses) {
  KelProjectDatabase database;
  database.SetupProjectDatabase();
  EXPECT_THAT(GetProjectContents(database).flow_processes,
              AllOf(SizeIs(4), testing::Each(Field(&FlowProcessContents::name, ""))));
}

TEST(ProjectContents, GetProjectContents_ChangedAfterwards_IsACopy) {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("blinker");
  database.AddMiscellaneousFile("notes.txt");
  const ProjectContents contents = GetProjectContents(database);
  database.AddMiscellaneousFile("more.txt");
  EXPECT_THAT(contents.misc_files, SizeIs(1));
}

/// What only a caller with a pointer to the process can do.
class ChangedByPointer : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker")); }

  FlowProcess& process() { return *database_.GetFlowProcess(e_debugger); }
  FlowProcessContents Contents() const {
    return GetProjectContents(database_).flow_processes.at(e_debugger);
  }

  KelProjectDatabase database_;
};

TEST_F(ChangedByPointer, GetProjectContents_PlainParameters_GivesThemInOrder) {
  process().parameters = {{"b", "1", e_string}, {"a", "2", e_bool}};
  EXPECT_THAT(Contents().parameters,
              ElementsAre(IsParameter("b", "1", e_string), IsParameter("a", "2", e_bool)));
}

TEST_F(ChangedByPointer, GetProjectContents_KeyThatIsNotTheName_GivesBoth) {
  ParameterMap& map = *database_.AddFlowProcessParameterMap(e_debugger, "param");
  KelProjectDatabase::InsertOrAssignParameterToMap(map, "key", {"name", "1", e_string});
  EXPECT_THAT(Contents().parameter_maps.at("param"),
              ElementsAre(Pair("key", IsParameter("name", "1", e_string))));
}

TEST_F(ChangedByPointer, GetProjectContents_EmptyMap_GivesIt) {
  database_.AddFlowProcessParameterMap(e_debugger, "param");
  EXPECT_THAT(Contents().parameter_maps, ElementsAre(Pair("param", IsEmpty())));
}

TEST_F(ChangedByPointer, GetProjectContents_IndexThatLeadsToNoMap_LeavesTheNameOut) {
  process().parameter_map_index["before"] = -1;
  process().parameter_map_index["behind"] = 0;
  EXPECT_THAT(Contents().parameter_maps, IsEmpty());
}

TEST(ProjectContents, GetProjectContents_ChangedByAnotherThread_GivesNoHalfOfAChange) {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("blinker");
  std::atomic<bool> has_ended{false};
  std::thread writer([&] {
    std::vector<DesignFile> pair = {{"a.v", "v2k", "work"}, {"b.v", "v2k", "work"}};
    for (int round = 0; round < 500; ++round) database.AddDesignRTLFile(pair);
    has_ended = true;
  });
  int halves = 0;
  while (!has_ended) {
    if (GetProjectContents(database).design_info.design_files.size() % 2 != 0) ++halves;
  }
  writer.join();
  EXPECT_EQ(halves, 0);
}

}  // namespace
