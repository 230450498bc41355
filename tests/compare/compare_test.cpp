#include <projectdb/compare.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <projectdb/project_db.h>

#include "contents/record_text.h"
#include "testing/complete_project.h"
#include "testing/generated_projects.h"
#include "testing/project_differences.h"
#include "testing/test.h"

namespace {

using namespace projectdb;
using namespace test_support;
using test_support::Show;

Lines Differences(const ProjectContents& before, const ProjectContents& after) {
  return Show(CompareProjects(before, after));
}

// Single changes of a project with something in every section.

struct ChangeCase {
  const char* name;
  std::function<void(ProjectContents&)> change;
  Lines differences;
};

void PrintTo(const ChangeCase& c, std::ostream* out) { *out << c.name; }

SortedParameters& MapOf(ProjectContents& project, ProcType type, const char* name) {
  return project.flow_processes.at(static_cast<std::size_t>(type)).parameter_maps[name];
}

const ChangeCase kChanges[] = {
    {"nothing", [](auto&) {}, {}},
    {"project name", [](auto& p) { p.project_name = "next"; }, {R"(name: "demo" -> "next")"}},
    {"attribute added",
     [](auto& p) { p.info_attributes["owner"] = ""; },
     {R"(info.owner: nothing -> "")"}},
    {"attribute removed",
     [](auto& p) { p.info_attributes.clear(); },
     {R"(info.vendor_id: "77" -> nothing)"}},
    {"attribute changed",
     [](auto& p) { p.info_attributes["vendor_id"] = "78"; },
     {R"(info.vendor_id: "77" -> "78")"}},
    {"device family",
     [](auto& p) { p.device_info.family = "Varel"; },
     {R"(device.family: "Orrin" -> "Varel")"}},
    {"device model",
     [](auto& p) { p.device_info.device = "O80"; },
     {R"(device.device: "O40" -> "O80")"}},
    {"timing model",
     [](auto& p) { p.device_info.timing_model = ""; },
     {R"(device.timing_model: "slow" -> "")"}},
    {"top module",
     [](auto& p) { p.design_info.top_module = "chip"; },
     {R"(design.top_module: "top" -> "chip")"}},
    {"top architecture",
     [](auto& p) { p.design_info.top_vhdl_arch = "sim"; },
     {R"(design.top_vhdl_arch: "rtl" -> "sim")"}},
    {"default Verilog version",
     [](auto& p) { p.design_info.def_veri_version = "sv"; },
     {R"(design.def_veri_version: "v2k" -> "sv")"}},
    {"default VHDL version",
     [](auto& p) { p.design_info.def_vhdl_version = "vhdl93"; },
     {R"(design.def_vhdl_version: "vhdl08" -> "vhdl93")"}},
    {"design file put in",
     [](auto& p) {
       auto& files = p.design_info.design_files;
       files.insert(files.begin(), {"pkg.sv", "sv", "work"});
     },
     {R"(design.files[0]: nothing -> "pkg.sv version=sv library=work")"}},
    {"design file removed",
     [](auto& p) { p.design_info.design_files.pop_back(); },
     {R"(design.files[1]: "b.vhd library=lib" -> nothing)"}},
    {"design file of another version",
     [](auto& p) { p.design_info.design_files[0].version = "sv"; },
     {R"(design.files[0]: "a.v version=v2k library=work" -> "a.v version=sv library=work")"}},
    {"design file of another library",
     [](auto& p) { p.design_info.design_files[1].library = ""; },
     {R"(design.files[1]: "b.vhd library=lib" -> "b.vhd")"}},
    {"design file replaced",
     [](auto& p) { p.design_info.design_files[1].name = "c.vhd"; },
     {R"(design.files[1]: "b.vhd library=lib" -> "c.vhd library=lib")"}},
    {"simulation file",
     [](auto& p) { p.sim_files.emplace_back("t2.v", "", ""); },
     {R"(simulation.files[1]: nothing -> "t2.v")"}},
    {"miscellaneous file",
     [](auto& p) { p.misc_files.clear(); },
     {R"(misc.files[0]: "notes.txt version=1 library=docs" -> nothing)"}},
    {"timing constraint file",
     [](auto& p) { p.design_constraint.sdc_files[0] = "my clocks.sdc"; },
     {R"(constraint.sdc[0]: "c.sdc" -> "my clocks.sdc")"}},
    {"interface constraint file",
     [](auto& p) { p.design_constraint.inter_file = ""; },
     {R"(constraint.interface: "c.interface.csv" -> "")"}},
    {"ISF file",
     [](auto& p) { p.design_isf.isf_files.emplace_back("e.isf"); },
     {R"(isf.files[1]: nothing -> "e.isf")"}},
    {"instance added",
     [](auto& p) {
       p.ip_info.ips.push_back({"v", "ip/v.cfg", {{"v.v"}}});
     },
     {R"(ip[1]: nothing -> "v path=ip/v.cfg file=v.v")"}},
    {"instance removed",
     [](auto& p) { p.ip_info.ips.clear(); },
     {R"(ip[0]: "u path=ip/u.cfg file=u.v" -> nothing)"}},
    {"instance renamed",
     [](auto& p) { p.ip_info.ips[0].instance_name = "v"; },
     {R"(ip[0]: "u path=ip/u.cfg file=u.v" -> "v path=ip/u.cfg file=u.v")"}},
    {"instance of another path",
     [](auto& p) { p.ip_info.ips[0].path = "lib/u.cfg"; },
     {R"(ip.u.path: "ip/u.cfg" -> "lib/u.cfg")"}},
    {"source file of an instance",
     [](auto& p) { p.ip_info.ips[0].src_files.push_back({"u 2.v"}); },
     {R"(ip.u.files[1]: nothing -> "u 2.v")"}},
    {"process name",
     [](auto& p) { p.flow_processes[e_synthesis].name = ""; },
     {R"(synthesis.name: "synthesis" -> "")"}},
    {"tool",
     [](auto& p) { p.flow_processes[e_place_and_route].tool_name = "pnr2"; },
     {R"(place_and_route.tool: "pnr" -> "pnr2")"}},
    {"process added",
     [](auto& p) {
       p.flow_processes.push_back({"power", "pwr", {}});
     },
     {R"(4.name: nothing -> "power")", R"(4.tool: nothing -> "pwr")"}},
    {"process removed",
     [](auto& p) { p.flow_processes.pop_back(); },
     {R"(debugger.name: "debugger" -> nothing)", R"(debugger.tool: "dbg" -> nothing)"}},
    {"parameter added",
     [](auto& p) { MapOf(p, e_debugger, "param").emplace("p", Parameter("p", "1", e_bool)); },
     {R"(debugger.param.p: nothing -> "1 type=e_bool")"}},
    {"parameter removed",
     [](auto& p) { MapOf(p, e_bitstream_generation, "param").clear(); },
     {R"(bitstream_generation.param.zip: "true type=e_bool" -> nothing)"}},
    {"parameter of another value",
     [](auto& p) { MapOf(p, e_synthesis, "param").at("mode").value = "very small"; },
     {R"(synthesis.param.mode: "fast type=e_option" -> ""very small" type=e_option")"}},
    {"parameter of another type",
     [](auto& p) { MapOf(p, e_synthesis, "param").at("mode").type = e_string; },
     {R"(synthesis.param.mode: "fast type=e_option" -> "fast type=e_string")"}},
    {"parameter of another name than its key",
     [](auto& p) { MapOf(p, e_synthesis, "param").at("mode").name = "m"; },
     {R"(synthesis.param.mode: "fast type=e_option" -> "fast type=e_option name=m")"}},
    {"Verilog define",
     [](auto& p) { MapOf(p, e_synthesis, "dynparam").at("W").value = "9"; },
     {R"(synthesis.dynparam.W: "8 type=e_string" -> "9 type=e_string")"}},
    {"Verilog macro",
     [](auto& p) { MapOf(p, e_synthesis, "defmacro").at("SIM").value = "0"; },
     {R"(synthesis.defmacro.SIM: "1" -> "0")"}},
    {"parameter in a map of a name with a dot",
     [](auto& p) { MapOf(p, e_debugger, "a.b").emplace("c", Parameter("c", "1", e_bool)); },
     {R"(debugger."a.b".c: nothing -> "1 type=e_bool")"}},
    {"parameter in a map without a name",
     [](auto& p) { MapOf(p, e_debugger, "").emplace("c", Parameter("c", "1", e_bool)); },
     {R"(debugger."".c: nothing -> "1 type=e_bool")"}},
    {"plain parameter",
     [](auto& p) { p.flow_processes[e_debugger].parameters.emplace_back("p", "1", e_bool); },
     {R"(debugger.parameters[0]: nothing -> "p value=1 type=e_bool")"}},
    {"map without parameters", [](auto& p) { MapOf(p, e_debugger, "param").clear(); }, {}},
    {"stamps and directory",
     [](auto& p) {
       p.current_path = "/elsewhere";
       p.software_version = "9";
       p.last_modify_time = "now";
     },
     {}},
};

class CompareChanged : public testing::TestWithParam<ChangeCase> {};

INSTANTIATE_TEST_SUITE_P(Changes, CompareChanged, testing::ValuesIn(kChanges));

TEST_P(CompareChanged, CompareProjects_OneChange_GivesThatDifference) {
  const ProjectContents before = CompleteProject();
  ProjectContents after = before;
  GetParam().change(after);
  EXPECT_EQ(Differences(before, after), GetParam().differences);
}

// What the other tests add to the comparison.
TEST(Compare, AllDifferences_StampsAndDirectory_AreAmongThem) {
  const ProjectContents before = CompleteProject("/work");
  ProjectContents after = before;
  after.current_path = "/elsewhere";
  after.software_version = "9";
  after.last_modify_time = "now";
  EXPECT_THAT(
      AllDifferences(before, after),
      ElementsAre(R"(info.last_change_date: "long ago" -> "now")",
                  R"(info.sw_version: "0.0.1" -> "9")", R"(directory: "/work" -> "/elsewhere")"));
}

TEST(Compare, CompareProjects_ManyChanges_GivesThemInTheOrderOfTheProject) {
  const ProjectContents before = CompleteProject();
  const ProjectContents none;
  Lines whats;
  for (const auto& difference : CompareProjects(none, before)) whats.push_back(difference.what);
  EXPECT_THAT(
      whats,
      ElementsAre("name", "info.vendor_id", "device.family", "device.device", "device.timing_model",
                  "design.top_module", "design.top_vhdl_arch", "design.def_veri_version",
                  "design.def_vhdl_version", "design.files", "design.files", "constraint.sdc",
                  "constraint.interface", "isf.files", "simulation.files", "misc.files", "ip",
                  "synthesis.name", "synthesis.tool", "synthesis.defmacro.SIM",
                  "synthesis.dynparam.W", "synthesis.param.flat", "synthesis.param.mode",
                  "place_and_route.name", "place_and_route.tool", "place_and_route.param.seed",
                  "bitstream_generation.name", "bitstream_generation.tool",
                  "bitstream_generation.param.zip", "debugger.name", "debugger.tool"));
}

// Database objects.

TEST(Compare, CompareProjects_SameObjectOrNoProjects_GivesNothing) {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("blinker");
  EXPECT_THAT(CompareProjects(database, database), IsEmpty());
  EXPECT_THAT(CompareProjects(KelProjectDatabase(), KelProjectDatabase()), IsEmpty());
}

TEST(Compare, CompareProjects_NoProjectAndAnEmptyOne_GivesTheProcesses) {
  KelProjectDatabase database;
  database.SetupProjectDatabase();
  EXPECT_THAT(CompareProjects(KelProjectDatabase(), database), SizeIs(8));
}

/// A project with many names in its hash tables, put in from the first to the last or the reverse.
void CreateWithManyNames(KelProjectDatabase& database, bool reverse) {
  database.CreateNewProjectDatabase("blinker");
  constexpr int kNames = 200;
  for (int i = 0; i < kNames; ++i) {
    const std::string name = "n" + std::to_string(reverse ? kNames - 1 - i : i);
    database.AddProjectInfoAttribute(name, "1");
    database.AddSynthesisParameter(name, "1", e_string);
    database.AddFlowProcessParameter(e_debugger, name, name, "1", e_string);
  }
}

TEST(Compare, CompareProjects_OtherOrderOfHashing_MakesNoDifference) {
  KelProjectDatabase none;
  none.CreateNewProjectDatabase("blinker");
  KelProjectDatabase forwards;
  CreateWithManyNames(forwards, false);
  KelProjectDatabase backwards;
  CreateWithManyNames(backwards, true);
  EXPECT_THAT(CompareProjects(forwards, backwards), IsEmpty());
  EXPECT_EQ(Show(CompareProjects(none, forwards)), Show(CompareProjects(none, backwards)));
}

// Lists.

ProjectContents WithConstraintFiles(std::vector<std::string> files) {
  ProjectContents project;
  project.design_constraint.sdc_files = std::move(files);
  return project;
}

ProjectContents WithDesignFiles(std::vector<DesignFile> files) {
  ProjectContents project;
  project.design_info.design_files = std::move(files);
  return project;
}

ProjectContents WithIps(std::vector<IP> ips) {
  ProjectContents project;
  project.ip_info.ips = std::move(ips);
  return project;
}

struct ListCase {
  const char* name;
  ProjectContents before;
  ProjectContents after;
  Lines differences;
};

void PrintTo(const ListCase& c, std::ostream* out) { *out << c.name; }

class CompareLists : public testing::TestWithParam<ListCase> {};

TEST_P(CompareLists, CompareProjects_GivesWhatWasPutInTakenOutAndChanged) {
  EXPECT_EQ(Differences(GetParam().before, GetParam().after), GetParam().differences);
}

const ListCase kLists[] = {
    {"EntriesPutInAtSeveralPlaces",
     WithConstraintFiles({"a", "b", "c"}),
     WithConstraintFiles({"x", "a", "b", "y", "c", "z"}),
     {R"(constraint.sdc[0]: nothing -> "x")", R"(constraint.sdc[3]: nothing -> "y")",
      R"(constraint.sdc[5]: nothing -> "z")"}},
    {"EntryMoved_IsRemovedAndAdded",
     WithConstraintFiles({"a", "b", "c"}),
     WithConstraintFiles({"b", "c", "a"}),
     {R"(constraint.sdc[0]: "a" -> nothing)", R"(constraint.sdc[2]: nothing -> "a")"}},
    {"EntryRepeated_IsOneDifference",
     WithConstraintFiles({"a", "b"}),
     WithConstraintFiles({"a", "a", "b"}),
     {R"(constraint.sdc[1]: nothing -> "a")"}},
    {"EntriesReplacedByMore_AreChangesAndThenAdditions",
     WithConstraintFiles({"a", "b", "z"}),
     WithConstraintFiles({"c", "d", "e", "z"}),
     {R"(constraint.sdc[0]: "a" -> "c")", R"(constraint.sdc[1]: "b" -> "d")",
      R"(constraint.sdc[2]: nothing -> "e")"}},
    {"ChangeBehindARemoval_HasThePlaceBefore",
     WithConstraintFiles({"a", "b", "c"}),
     WithConstraintFiles({"b", "d"}),
     {R"(constraint.sdc[0]: "a" -> nothing)", R"(constraint.sdc[2]: "c" -> "d")"}},
    {"ChangedEntryBesideANewOne_IsComparedWithItsOwnName",
     WithDesignFiles({{"a.v", "v2k", ""}}),
     WithDesignFiles({{"pkg.v", "sv", ""}, {"a.v", "sv", ""}}),
     {R"(design.files[0]: nothing -> "pkg.v version=sv")",
      R"(design.files[0]: "a.v version=v2k" -> "a.v version=sv")"}},
    {"InstanceChangedBehindANewOne_IsFollowed",
     WithIps({{"u", "u.cfg", {}}}),
     WithIps({{"new", "", {}}, {"u", "v.cfg", {}}}),
     {R"(ip[0]: nothing -> "new")", R"(ip.u.path: "u.cfg" -> "v.cfg")"}},
    {"SourceFilesOfAnInstance_AreComparedAsASequence",
     WithIps({{"u", "", {{"a.v"}, {"b.v"}, {"c.v"}}}}),
     WithIps({{"u", "", {{"b.v"}, {"x.v"}, {"c.v"}}}}),
     {R"(ip.u.files[0]: "a.v" -> nothing)", R"(ip.u.files[1]: nothing -> "x.v")"}},
    {"InstanceMovedAndChanged_IsRemovedAndAdded",
     WithIps({{"u", "1", {}}, {"v", "", {}}, {"w", "", {}}}),
     WithIps({{"v", "", {}}, {"w", "", {}}, {"u", "2", {}}}),
     {R"(ip[0]: "u path=1" -> nothing)", R"(ip[2]: nothing -> "u path=2")"}},
    {"InstancesOfTheSameName_AreEntriesAsAWhole",
     WithIps({{"u", "1", {}}, {"u", "2", {}}}),
     WithIps({{"u", "1", {}}, {"u", "3", {}}}),
     {R"(ip[1]: "u path=2" -> "u path=3")"}},
    {"InstanceWithoutName_IsFollowedToo",
     WithIps({{"", "1", {}}}),
     WithIps({{"", "2", {}}}),
     {R"(ip..path: "1" -> "2")"}},
};

INSTANTIATE_TEST_SUITE_P(Lists, CompareLists, testing::ValuesIn(kLists),
                         [](const auto& param_info) { return param_info.param.name; });

TEST(Compare, CompareProjects_AHundredThousandFilesAndOnePutInFront_GivesOneDifference) {
  std::vector<std::string> files(100'000);
  for (std::size_t i = 0; i < files.size(); ++i) files[i] = "f" + std::to_string(i) + ".sdc";
  const ProjectContents before = WithConstraintFiles(files);
  files.insert(files.begin(), "new.sdc");
  EXPECT_THAT(Differences(before, WithConstraintFiles(std::move(files))), SizeIs(1));
}

// Whatever projects.

rc::Gen<std::vector<std::string>> TextList() {
  return rc::gen::container<std::vector<std::string>>(Text());
}

rc::Gen<std::vector<DesignFile>> FileList() {
  return rc::gen::container<std::vector<DesignFile>>(OneFile());
}

RC_GTEST_PROP(CompareAnyProjects, CompareProjects_TwoProjects_GivesNothingOnlyIfTheyAreEqual, ()) {
  const auto [before, after] = PickTwoProjects();
  RC_ASSERT(Differences(before, after).empty() == (RowsOf(before) == RowsOf(after)));
}

RC_GTEST_PROP(CompareAnyProjects, CompareProjects_Exchanged_ExchangesBeforeAndAfter, ()) {
  const auto [before, after] = PickTwoProjects();
  auto differences = CompareProjects(after, before);
  auto expected = CompareProjects(before, after);
  for (ProjectDifference& difference : expected) std::swap(difference.before, difference.after);
  for (auto* list : {&differences, &expected}) {
    for (ProjectDifference& difference : *list) {
      // A changed entry may have another place in the other project.
      if (difference.before && difference.after) difference.where.clear();
    }
  }
  RC_ASSERT(Show(differences) == Show(expected));
}

RC_GTEST_PROP(CompareAnyProjects, CompareProjects_Differences_AreChangesOfOneThingEach, ()) {
  const auto [before, after] = PickTwoProjects();
  std::vector<std::string> places;
  for (const ProjectDifference& difference : CompareProjects(before, after)) {
    RC_ASSERT(difference.before != difference.after);
    const char* side = difference.before ? " before " : " after ";
    places.push_back(difference.what + side + difference.where);
  }
  std::sort(places.begin(), places.end());
  RC_ASSERT(std::adjacent_find(places.begin(), places.end()) == places.end());
}

/// Makes of a list what its differences say.
std::vector<std::string> Apply(const std::vector<ProjectDifference>& differences,
                               const std::vector<std::string>& list) {
  std::vector<std::optional<std::string>> left(list.begin(), list.end());
  std::vector<std::pair<std::size_t, std::string>> added;
  for (const ProjectDifference& difference : differences) {
    const std::size_t place = std::stoul(difference.where);
    if (difference.before) {
      RC_ASSERT(left.at(place) == difference.before);
      left.at(place) = difference.after;
    } else {
      added.emplace_back(place, difference.after.value());
    }
  }
  std::vector<std::string> result;
  for (const auto& entry : left) {
    if (entry) result.push_back(*entry);
  }
  for (const auto& [place, entry] : added) {
    RC_ASSERT(place <= result.size());
    result.insert(result.begin() + static_cast<std::ptrdiff_t>(place), entry);
  }
  return result;
}

std::vector<std::string> TextsOf(const std::vector<DesignFile>& files) {
  std::vector<std::string> texts;
  std::transform(files.begin(), files.end(), std::back_inserter(texts),
                 [](const DesignFile& file) { return TextOf(file); });
  return texts;
}

RC_GTEST_PROP(CompareAnyLists, CompareProjects_DesignFiles_TurnTheOneListIntoTheOther, ()) {
  const auto before = *FileList();
  const auto after = *FileList();
  const auto differences = CompareProjects(WithDesignFiles(before), WithDesignFiles(after));
  RC_ASSERT(Apply(differences, TextsOf(before)) == TextsOf(after));
}

RC_GTEST_PROP(CompareAnyLists, CompareProjects_FilesPutIn_GivesAsManyDifferences, ()) {
  const auto before = *TextList();
  auto after = before;
  const auto places = *rc::gen::container<std::vector<std::size_t>>(
      rc::gen::inRange<std::size_t>(0, before.size() + 1));
  for (const std::size_t place : places) {
    after.insert(after.begin() + static_cast<std::ptrdiff_t>(place), "new.sdc");
  }
  RC_ASSERT(CompareProjects(WithConstraintFiles(before), WithConstraintFiles(after)).size() ==
            places.size());
}

}  // namespace
