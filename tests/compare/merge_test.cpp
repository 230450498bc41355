#include <projectdb/merge.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <projectdb/project_contents.h>
#include <projectdb/vocabulary.h>

#include "testing/complete_project.h"
#include "testing/generated_projects.h"
#include "testing/project_differences.h"
#include "testing/test.h"

namespace {

using namespace projectdb;
using namespace test_support;

std::string Shown(const std::optional<std::string>& text) { return text.value_or("nothing"); }

/// "misc.files[0]: a.txt -> a.txt version=1 | nothing"
Lines Show(const std::vector<MergeConflict>& conflicts) {
  Lines lines;
  for (const MergeConflict& conflict : conflicts) {
    const std::string place = conflict.where.empty() ? "" : '[' + conflict.where + ']';
    lines.push_back(conflict.what + place + ": " + Shown(conflict.base) + " -> " +
                    Shown(conflict.ours) + " | " + Shown(conflict.theirs));
  }
  return lines;
}

// Single values, each under its key.

using TextAccess = Access<ProjectContents, std::string>;

/// A text of a project.
struct TextValue {
  std::string key;
  TermKind kind;
  TextAccess access;
};

void PrintTo(const TextValue& value, std::ostream* out) { *out << value.key; }

std::vector<TextValue> TextTerms(bool never_in_conflict) {
  std::vector<TextValue> texts;
  for (const ProjectTerm& term : ProjectTerms()) {
    const auto* const access = std::get_if<TextAccess>(&term.access);
    const bool is_stamp = term.kind == TermKind::kStamp || term.kind == TermKind::kDirectory;
    if (access && is_stamp == never_in_conflict) {
      texts.push_back({std::string(term.key), term.kind, *access});
    }
  }
  return texts;
}

class MergedText : public testing::TestWithParam<TextValue> {
 protected:
  MergedProjects Merge(const std::string& ours, const std::string& theirs) const {
    return MergeProjects(With("base"), With(ours), With(theirs));
  }

  std::string Text(const MergedProjects& merged) const {
    return GetParam().access(merged.contents);
  }

 private:
  ProjectContents With(const std::string& text) const {
    ProjectContents project = CompleteProject();
    GetParam().access(project) = text;
    return project;
  }
};

class MergedValue : public MergedText {};
class MergedStamp : public MergedText {};

INSTANTIATE_TEST_SUITE_P(Values, MergedValue, testing::ValuesIn(TextTerms(false)));
INSTANTIATE_TEST_SUITE_P(Stamps, MergedStamp, testing::ValuesIn(TextTerms(true)));

TEST_P(MergedValue, MergeProjects_OnlyOursChanged_GivesOurs) {
  EXPECT_EQ(Text(Merge("ours", "base")), "ours");
}

TEST_P(MergedValue, MergeProjects_OnlyTheirsChanged_GivesTheirs) {
  EXPECT_EQ(Text(Merge("base", "theirs")), "theirs");
}

TEST_P(MergedValue, MergeProjects_BothChangedAlike_GivesThat) {
  const MergedProjects merged = Merge("both", "both");
  EXPECT_EQ(Text(merged), "both");
  EXPECT_THAT(Show(merged.conflicts), IsEmpty());
}

TEST_P(MergedValue, MergeProjects_BothChangedDifferently_GivesOursAndAConflict) {
  const MergedProjects merged = Merge("ours", "theirs");
  EXPECT_EQ(Text(merged), "ours");
  EXPECT_THAT(Show(merged.conflicts), ElementsAre(GetParam().key + ": base -> ours | theirs"));
}

TEST_P(MergedStamp, MergeProjects_OnlyTheirsChanged_GivesTheirs) {
  EXPECT_EQ(Text(Merge("base", "theirs")), "theirs");
}

TEST_P(MergedStamp, MergeProjects_BothChangedDifferently_GivesOursWithoutConflict) {
  const MergedProjects merged = Merge("ours", "theirs");
  EXPECT_EQ(Text(merged), "ours");
  EXPECT_THAT(Show(merged.conflicts), IsEmpty());
}

// Changes of a project with something in every section.

using ProjectChange = std::function<void(ProjectContents&)>;

struct ProjectMergeCase {
  const char* name;
  ProjectChange ours;
  ProjectChange theirs;
  /// Makes the merged project of the base.
  ProjectChange merged;
  Lines conflicts = {};
};

void PrintTo(const ProjectMergeCase& c, std::ostream* out) { *out << c.name; }

void Nothing(ProjectContents&) {}

SortedParameters& MapIn(ProjectContents& project, ProcType type, const char* name) {
  return project.flow_processes.at(static_cast<std::size_t>(type)).parameter_maps[name];
}

SortedParameters& Parameters(ProjectContents& project) {
  return MapIn(project, e_synthesis, kParameterMap);
}

ProjectChange ChangeMode(const char* value) {
  return [value](auto& p) { Parameters(p).at("mode").value = value; };
}

void RemoveMode(ProjectContents& project) { Parameters(project).erase("mode"); }

ProjectChange SetAttribute(const char* name, const char* value) {
  return [=](auto& p) { p.info_attributes[name] = value; };
}

void RemoveAttributes(ProjectContents& project) { project.info_attributes.clear(); }

ProjectChange SetTool(const char* tool) {
  return [tool](auto& p) { p.flow_processes[e_debugger].tool_name = tool; };
}

ProjectChange Both(const ProjectChange& first, const ProjectChange& second) {
  return [=](auto& p) {
    first(p);
    second(p);
  };
}

const ProjectMergeCase kProjectMerges[] = {
    {"nothing", Nothing, Nothing, Nothing},

    {"attributes of both sides", SetAttribute("a", "1"), SetAttribute("b", "2"),
     Both(SetAttribute("a", "1"), SetAttribute("b", "2"))},
    {"attribute added alike", SetAttribute("a", "1"), SetAttribute("a", "1"),
     SetAttribute("a", "1")},
    {"attribute added differently",
     SetAttribute("a", "1"),
     SetAttribute("a", "2"),
     SetAttribute("a", "1"),
     {"info.a: nothing -> 1 | 2"}},
    {"attribute changed alike", SetAttribute("vendor_id", "9"), SetAttribute("vendor_id", "9"),
     SetAttribute("vendor_id", "9")},
    {"attribute changed differently",
     SetAttribute("vendor_id", "8"),
     SetAttribute("vendor_id", "9"),
     SetAttribute("vendor_id", "8"),
     {"info.vendor_id: 77 -> 8 | 9"}},
    {"attribute removed by ours", RemoveAttributes, Nothing, RemoveAttributes},
    {"attribute removed by theirs", Nothing, RemoveAttributes, RemoveAttributes},
    {"attribute removed by both", RemoveAttributes, RemoveAttributes, RemoveAttributes},
    {"attribute changed by theirs", Nothing, SetAttribute("vendor_id", "9"),
     SetAttribute("vendor_id", "9")},
    {"attribute removed by ours, changed by theirs",
     RemoveAttributes,
     SetAttribute("vendor_id", "9"),
     RemoveAttributes,
     {"info.vendor_id: 77 -> nothing | 9"}},
    {"attribute changed by ours, removed by theirs",
     SetAttribute("vendor_id", "9"),
     RemoveAttributes,
     SetAttribute("vendor_id", "9"),
     {"info.vendor_id: 77 -> 9 | nothing"}},

    {"parameter changed by theirs", Nothing, ChangeMode("slow"), ChangeMode("slow")},
    {"parameter changed alike", ChangeMode("slow"), ChangeMode("slow"), ChangeMode("slow")},
    {"parameter changed differently",
     ChangeMode("slow"),
     ChangeMode("small"),
     ChangeMode("slow"),
     {"synthesis.param.mode: fast type=e_option -> slow type=e_option | small type=e_option"}},
    {"parameter of another type and value",
     [](auto& p) { Parameters(p).at("mode").type = e_string; },
     ChangeMode("small"),
     [](auto& p) { Parameters(p).at("mode").type = e_string; },
     {"synthesis.param.mode: fast type=e_option -> fast type=e_string | small type=e_option"}},
    {"parameter removed by theirs", Nothing, RemoveMode, RemoveMode},
    {"parameter removed by both", RemoveMode, RemoveMode, RemoveMode},
    {"parameter changed by ours, removed by theirs",
     ChangeMode("slow"),
     RemoveMode,
     ChangeMode("slow"),
     {"synthesis.param.mode: fast type=e_option -> slow type=e_option | nothing"}},
    {"parameter removed by ours, changed by theirs",
     RemoveMode,
     ChangeMode("slow"),
     RemoveMode,
     {"synthesis.param.mode: fast type=e_option -> nothing | slow type=e_option"}},
    {"parameters of several maps",
     [](auto& p) { MapIn(p, e_synthesis, kMacroMap).at("SIM").value = "0"; },
     [](auto& p) { MapIn(p, e_synthesis, kDefineMap).clear(); },
     [](auto& p) {
       MapIn(p, e_synthesis, kMacroMap).at("SIM").value = "0";
       MapIn(p, e_synthesis, kDefineMap).clear();
     }},
    {"parameter in a map of a name with a dot",
     [](auto& p) { MapIn(p, e_debugger, "a.b").emplace("c", Parameter("c", "1", e_bool)); },
     [](auto& p) { MapIn(p, e_debugger, "a.b").emplace("c", Parameter("c", "2", e_bool)); },
     [](auto& p) { MapIn(p, e_debugger, "a.b").emplace("c", Parameter("c", "1", e_bool)); },
     {R"(debugger."a.b".c: nothing -> 1 type=e_bool | 2 type=e_bool)"}},
    {"map without parameters added", Nothing, [](auto& p) { MapIn(p, e_debugger, "new"); },
     [](auto& p) { MapIn(p, e_debugger, "new"); }},
    {"map removed by ours, added to by theirs",
     [](auto& p) { p.flow_processes[e_place_and_route].parameter_maps.clear(); },
     [](auto& p) {
       MapIn(p, e_place_and_route, kParameterMap).emplace("x", Parameter("x", "1", e_bool));
     },
     [](auto& p) {
       MapIn(p, e_place_and_route, kParameterMap) = {{"x", Parameter("x", "1", e_bool)}};
     }},

    {"tool", Nothing, SetTool("probe"), SetTool("probe")},
    {"tool changed differently",
     SetTool("probe"),
     SetTool("scope"),
     SetTool("probe"),
     {"debugger.tool: dbg -> probe | scope"}},
    {"process name changed differently",
     [](auto& p) { p.flow_processes[e_debugger].name = "a"; },
     [](auto& p) { p.flow_processes[e_debugger].name = "b"; },
     [](auto& p) { p.flow_processes[e_debugger].name = "a"; },
     {"debugger.name: debugger -> a | b"}},
    {"plain parameters of both sides",
     [](auto& p) { p.flow_processes[e_debugger].parameters.emplace_back("a", "1", e_bool); },
     [](auto& p) { p.flow_processes[e_debugger].parameters.emplace_back("b", "1", e_bool); },
     [](auto& p) {
       p.flow_processes[e_debugger].parameters = {{"a", "1", e_bool}, {"b", "1", e_bool}};
     }},
    {"process added", Nothing,
     [](auto& p) {
       p.flow_processes.push_back({"power", "pwr", {}});
     },
     [](auto& p) {
       p.flow_processes.push_back({"power", "pwr", {}});
     }},
    {"processes removed by ours, tool changed by theirs",
     [](auto& p) { p.flow_processes.resize(3); },
     SetTool("probe"),
     [](auto& p) { p.flow_processes.resize(3); },
     {"debugger.tool: dbg -> nothing | probe"}},

    {"process removed by ours, parameter added by theirs",
     [](auto& p) { p.flow_processes.resize(3); },
     [](auto& p) { MapIn(p, e_debugger, "new").emplace("x", Parameter("x", "1", e_bool)); },
     [](auto& p) {
       p.flow_processes[e_debugger] = {"", "", {{"new", {{"x", Parameter("x", "1", e_bool)}}}}};
     }},

    {"design files of both sides",
     [](auto& p) { p.design_info.design_files.emplace_back("ours.v", "", ""); },
     [](auto& p) { p.design_info.design_files.emplace_back("theirs.v", "", ""); },
     [](auto& p) {
       p.design_info.design_files.emplace_back("ours.v", "", "");
       p.design_info.design_files.emplace_back("theirs.v", "", "");
     }},
    {"design file changed differently",
     [](auto& p) { p.design_info.design_files[1].version = "93"; },
     [](auto& p) { p.design_info.design_files[1].library = "work"; },
     [](auto& p) { p.design_info.design_files[1].version = "93"; },
     {"design.files[1]: b.vhd library=lib -> b.vhd version=93 library=lib | b.vhd library=work"}},
    {"design file changed differently behind an added one",
     [](auto& p) {
       p.design_info.design_files[1].version = "93";
       p.design_info.design_files.insert(p.design_info.design_files.begin(), {"ours.v", "", ""});
     },
     [](auto& p) { p.design_info.design_files[1].library = "work"; },
     [](auto& p) {
       p.design_info.design_files[1].version = "93";
       p.design_info.design_files.insert(p.design_info.design_files.begin(), {"ours.v", "", ""});
     },
     {"design.files[1]: b.vhd library=lib -> b.vhd version=93 library=lib | b.vhd library=work"}},
    {"simulation file removed by ours, changed by theirs",
     [](auto& p) { p.sim_files.clear(); },
     [](auto& p) { p.sim_files[0].version = "v2k"; },
     [](auto& p) { p.sim_files.clear(); },
     {"simulation.files[0]: tb.v version=sv library=sim -> nothing | "
      "tb.v version=v2k library=sim"}},
    {"simulation file changed by ours, removed by theirs",
     [](auto& p) { p.sim_files[0].version = "v2k"; },
     [](auto& p) { p.sim_files.clear(); },
     [](auto& p) { p.sim_files[0].version = "v2k"; },
     {"simulation.files[0]: tb.v version=sv library=sim -> tb.v version=v2k library=sim | "
      "nothing"}},
    {"miscellaneous file added differently",
     [](auto& p) { p.misc_files.emplace_back("a.txt", "1", ""); },
     [](auto& p) { p.misc_files.emplace(p.misc_files.begin(), "a.txt", "2", ""); },
     [](auto& p) { p.misc_files.emplace_back("a.txt", "1", ""); },
     {"misc.files[1]: nothing -> a.txt version=1 | a.txt version=2"}},
    {"timing constraint files in another order and one more",
     [](auto& p) {
       p.design_constraint.sdc_files = {"b.sdc", "c.sdc"};
     },
     [](auto& p) {
       p.design_constraint.sdc_files = {"c.sdc", "d.sdc"};
     },
     [](auto& p) {
       p.design_constraint.sdc_files = {"b.sdc", "c.sdc", "d.sdc"};
     }},
    {"ISF file added by both",
     [](auto& p) {
       p.design_isf.isf_files = {"d.isf", "e.isf"};
     },
     [](auto& p) {
       p.design_isf.isf_files = {"d.isf", "e.isf"};
     },
     [](auto& p) {
       p.design_isf.isf_files = {"d.isf", "e.isf"};
     }},

    {"path and files of an instance", [](auto& p) { p.ip_info.ips[0].path = "ours.cfg"; },
     [](auto& p) { p.ip_info.ips[0].src_files.push_back({"theirs.v"}); },
     [](auto& p) {
       p.ip_info.ips[0].path = "ours.cfg";
       p.ip_info.ips[0].src_files.push_back({"theirs.v"});
     }},
    {"path of an instance changed differently",
     [](auto& p) { p.ip_info.ips[0].path = "ours.cfg"; },
     [](auto& p) { p.ip_info.ips[0].path = "theirs.cfg"; },
     [](auto& p) { p.ip_info.ips[0].path = "ours.cfg"; },
     {"ip.u.path: ip/u.cfg -> ours.cfg | theirs.cfg"}},
    {"files of an instance",
     [](auto& p) {
       p.ip_info.ips[0].src_files = {{"a.v"}, {"u.v"}};
     },
     [](auto& p) {
       p.ip_info.ips[0].src_files = {{"u.v"}, {"b.v"}};
     },
     [](auto& p) {
       p.ip_info.ips[0].src_files = {{"a.v"}, {"u.v"}, {"b.v"}};
     }},
    {"instance moved by ours, changed by theirs",
     [](auto& p) {
       p.ip_info.ips.insert(p.ip_info.ips.begin(), {"v", "", {}});
     },
     [](auto& p) { p.ip_info.ips[0].path = "theirs.cfg"; },
     [](auto& p) {
       p.ip_info.ips[0].path = "theirs.cfg";
       p.ip_info.ips.insert(p.ip_info.ips.begin(), {"v", "", {}});
     }},
    {"instance removed by ours, changed by theirs",
     [](auto& p) { p.ip_info.ips.clear(); },
     [](auto& p) { p.ip_info.ips[0].path = "theirs.cfg"; },
     [](auto& p) { p.ip_info.ips.clear(); },
     {"ip[0]: u path=ip/u.cfg file=u.v -> nothing | u path=theirs.cfg file=u.v"}},
    {"instance added by both with other files",
     [](auto& p) {
       p.ip_info.ips.push_back({"v", "v.cfg", {{"a.v"}, {"c.v"}}});
     },
     [](auto& p) {
       p.ip_info.ips.push_back({"v", "v.cfg", {{"b.v"}, {"c.v"}}});
     },
     [](auto& p) {
       p.ip_info.ips.push_back({"v", "v.cfg", {{"a.v"}, {"b.v"}, {"c.v"}}});
     }},
    {"instance added by both with other paths",
     [](auto& p) {
       p.ip_info.ips.push_back({"v", "ours.cfg", {}});
     },
     [](auto& p) {
       p.ip_info.ips.push_back({"v", "theirs.cfg", {}});
     },
     [](auto& p) {
       p.ip_info.ips.push_back({"v", "ours.cfg", {}});
     },
     {"ip.v.path: nothing -> ours.cfg | theirs.cfg"}},
    {"instances of the same name",
     [](auto& p) {
       p.ip_info.ips.push_back({"u", "ours.cfg", {}});
     },
     [](auto& p) { p.ip_info.ips[0].path = "theirs.cfg"; },
     [](auto& p) {
       p.ip_info.ips[0].path = "theirs.cfg";
       p.ip_info.ips.push_back({"u", "ours.cfg", {}});
     }},
};

class MergedChanges : public testing::TestWithParam<ProjectMergeCase> {};

INSTANTIATE_TEST_SUITE_P(Cases, MergedChanges, testing::ValuesIn(kProjectMerges));

TEST_P(MergedChanges, MergeProjects_TwoChanges_GivesBothOrOursAndAConflict) {
  const ProjectContents base = CompleteProject();
  const auto changed = [&](const ProjectChange& change) {
    ProjectContents project = base;
    change(project);
    return project;
  };
  const MergedProjects merged =
      MergeProjects(base, changed(GetParam().ours), changed(GetParam().theirs));
  EXPECT_EQ(AllRowsOf(merged.contents), AllRowsOf(changed(GetParam().merged)));
  EXPECT_EQ(Show(merged.conflicts), GetParam().conflicts);
}

TEST(Merge, MergeProjects_ManyConflicts_GivesThemInTheOrderOfTheProject) {
  const auto with = [](const std::string& text) {
    ProjectContents project;
    project.project_name = text;
    project.info_attributes = {{"a", text}, {"b", text}};
    project.device_info.family = text;
    project.design_info.design_files = {{"a.v", text, ""}, {"b.v", text, ""}};
    project.design_constraint.inter_file = text;
    project.misc_files = {{"a.txt", text, ""}};
    project.ip_info.ips = {{"u", text, {}}, {"v", text, {}}};
    project.flow_processes = {{"", text, {{"param", {{"p", Parameter("p", text, e_bool)}}}}}};
    return project;
  };
  const std::vector<MergeConflict> conflicts =
      MergeProjects(with("base"), with("ours"), with("theirs")).conflicts;
  Lines places;
  for (const MergeConflict& conflict : conflicts) {
    places.push_back(conflict.what + " " + conflict.where);
  }
  EXPECT_THAT(places,
              ElementsAre("name ", "info.a ", "info.b ", "device.family ", "design.files 0",
                          "design.files 1", "constraint.interface ", "misc.files 0", "ip.u.path ",
                          "ip.v.path ", "synthesis.tool ", "synthesis.param.p "));
}

TEST(Merge, MergeProjects_NoProjects_GivesNone) {
  const MergedProjects merged = MergeProjects({}, {}, {});
  EXPECT_EQ(AllRowsOf(merged.contents), AllRowsOf({}));
  EXPECT_THAT(Show(merged.conflicts), IsEmpty());
}

// Whatever projects.

/// A project and two that were made of it.
struct ThreeProjects {
  ProjectContents base;
  ProjectContents ours;
  ProjectContents theirs;
};

/// Makes something else of a project: of few entries, or of whole lists.
void ChangeProject(ProjectContents& project) {
  if (*rc::gen::inRange(0, 4) > 0) {
    EditProject(project, 10);
  } else {
    ChangeParts(project, 40);
  }
}

ThreeProjects PickThreeProjects() {
  ThreeProjects projects;
  ChangeParts(projects.base, 40);
  projects.ours = projects.theirs = projects.base;
  ChangeProject(projects.ours);
  ChangeProject(projects.theirs);
  return projects;
}

MergedProjects Merge(const ThreeProjects& projects) {
  return MergeProjects(projects.base, projects.ours, projects.theirs);
}

Rows SortedRows(Rows rows) {
  std::sort(rows.begin(), rows.end());
  return rows;
}

RC_GTEST_PROP(MergedAnyProjects, MergeProjects_TheirsUnchanged_GivesOurs, ()) {
  const ThreeProjects projects = PickThreeProjects();
  const MergedProjects merged = MergeProjects(projects.base, projects.ours, projects.base);
  RC_ASSERT(AllRowsOf(merged.contents) == AllRowsOf(projects.ours));
  RC_ASSERT(Show(merged.conflicts).empty());
}

RC_GTEST_PROP(MergedAnyProjects, MergeProjects_OursUnchanged_GivesTheirs, ()) {
  const ThreeProjects projects = PickThreeProjects();
  const MergedProjects merged = MergeProjects(projects.base, projects.base, projects.theirs);
  RC_ASSERT(AllRowsOf(merged.contents) == AllRowsOf(projects.theirs));
  RC_ASSERT(Show(merged.conflicts).empty());
}

RC_GTEST_PROP(MergedAnyProjects, MergeProjects_BothChangedAlike_GivesThat, ()) {
  const ThreeProjects projects = PickThreeProjects();
  const MergedProjects merged = MergeProjects(projects.base, projects.ours, projects.ours);
  RC_ASSERT(AllRowsOf(merged.contents) == AllRowsOf(projects.ours));
  RC_ASSERT(Show(merged.conflicts).empty());
}

RC_GTEST_PROP(MergedAnyProjects, MergeProjects_SidesExchanged_ExchangesThemInTheConflicts, ()) {
  const ThreeProjects projects = PickThreeProjects();
  auto expected = Merge(projects).conflicts;
  auto exchanged = MergeProjects(projects.base, projects.theirs, projects.ours).conflicts;
  for (MergeConflict& conflict : exchanged) std::swap(conflict.ours, conflict.theirs);
  for (auto* const conflicts : {&expected, &exchanged}) {
    for (MergeConflict& conflict : *conflicts) conflict.where.clear();
  }
  const auto sorted = [](Lines lines) {
    std::sort(lines.begin(), lines.end());
    return lines;
  };
  RC_ASSERT(sorted(Show(exchanged)) == sorted(Show(expected)));
}

RC_GTEST_PROP(MergedAnyProjects, MergeProjects_SidesExchangedWithoutConflict_GivesTheSame, ()) {
  const ThreeProjects projects = PickThreeProjects();
  const MergedProjects merged = Merge(projects);
  RC_PRE(merged.conflicts.empty());
  const auto exchanged = MergeProjects(projects.base, projects.theirs, projects.ours);
  RC_ASSERT(SortedRows(RowsOf(merged.contents)) == SortedRows(RowsOf(exchanged.contents)));
}

using ProjectRow = std::vector<std::string>;

bool Has(const Rows& rows, const ProjectRow& row) {
  return std::find(rows.begin(), rows.end(), row) != rows.end();
}

/// Without the empty name and tool of a process: a merge has them where it has other parts of a
/// process that one side removed.
Rows WithoutEmptyNames(Rows rows) {
  const auto is_empty_name = [](const std::vector<std::string>& row) {
    return (row.at(1) == "name" || row.at(1) == "tool") && row.back().empty();
  };
  rows.erase(std::remove_if(rows.begin(), rows.end(), is_empty_name), rows.end());
  return rows;
}

/// What a project holds, by what a side may change alone: a value or an entry of a list, told by
/// its name.
using RowsByKey = std::map<ProjectRow, Rows>;

/// How many fields of a row tell what it is about.
std::ptrdiff_t KeySize(const ProjectRow& row) {
  const std::string& title = row.at(0);
  const std::string& field = row.at(1);
  if (field == "map") return 4;
  if (field == "plain" || title == "ip file") return 3;
  const bool is_entry = title == "ip" || title == "sdc" || title == "isf";
  return row.size() == 2 && !is_entry ? 1 : 2;
}

ProjectRow KeyOf(const ProjectRow& row) { return {row.begin(), row.begin() + KeySize(row)}; }

std::ptrdiff_t InstanceCount(const ProjectContents& project, const std::string& instance) {
  return std::count_if(project.ip_info.ips.begin(), project.ip_info.ips.end(),
                       [&](const IP& ip) { return ip.instance_name == instance; });
}

/// Adds a row of an IP instance. That is an entry, with its path and files in their order; but if
/// both sides have it, each of these is merged too.
void AddOfInstance(const ThreeProjects& projects, const ProjectRow& row, RowsByKey& sorted) {
  const std::string& name = row.at(1);
  const auto in_ours = InstanceCount(projects.ours, name);
  const auto in_theirs = InstanceCount(projects.theirs, name);
  // The rows of two instances of one name are told apart by nothing.
  if (std::max({InstanceCount(projects.base, name), in_ours, in_theirs}) > 1) return;
  sorted[{"ip", name}].push_back(row);
  if (in_ours + in_theirs == 2 && row.at(0) != "ip") sorted[KeyOf(row)].push_back(row);
}

/// @param project one of the three or their merge
RowsByKey SortedByKey(const ThreeProjects& projects, const ProjectContents& project) {
  RowsByKey sorted;
  for (const ProjectRow& row : RowsOf(project)) {
    if (row.at(0).rfind("ip", 0) == 0) {
      AddOfInstance(projects, row, sorted);
    } else {
      sorted[KeyOf(row)].push_back(row);
    }
  }
  for (auto& [key, rows] : sorted) {
    if (key.at(0) != "ip") std::sort(rows.begin(), rows.end());
  }
  return sorted;
}

/// What three projects and their merge hold.
struct MergedRows {
  RowsByKey base;
  RowsByKey ours;
  RowsByKey theirs;
  RowsByKey merged;
};

MergedRows PickMergedRows() {
  const ThreeProjects projects = PickThreeProjects();
  return {SortedByKey(projects, projects.base), SortedByKey(projects, projects.ours),
          SortedByKey(projects, projects.theirs), SortedByKey(projects, Merge(projects).contents)};
}

Rows RowsAt(const RowsByKey& rows, const ProjectRow& key) {
  const auto found = rows.find(key);
  return found == rows.end() ? Rows() : found->second;
}

/// What one side does alone is in the result, whatever the two are in conflict over elsewhere. An
/// empty name of a process is there: a side that removes it is not idle.
/// @param is_meant of what the base has and what the side has
template <typename IsMeant>
void ExpectAsTheOneSideHasIt(IsMeant is_meant) {
  EXPECT_TRUE(rc::check([&] {
    const MergedRows rows = PickMergedRows();
    const auto expect = [&](const RowsByKey& side, const RowsByKey& other) {
      RowsByKey all = rows.base;
      all.insert(side.begin(), side.end());
      for (const auto& [key, any] : all) {
        const Rows before = RowsAt(rows.base, key);
        const Rows after = RowsAt(side, key);
        if (RowsAt(other, key) != before || !is_meant(before, after)) continue;
        RC_ASSERT(WithoutEmptyNames(RowsAt(rows.merged, key)) == WithoutEmptyNames(after));
      }
    };
    expect(rows.ours, rows.theirs);
    expect(rows.theirs, rows.ours);
  }));
}

TEST(MergedAnyProjects, MergeProjects_AddedByOneSideAlone_IsThere) {
  ExpectAsTheOneSideHasIt([](const Rows& before, const Rows&) { return before.empty(); });
}

TEST(MergedAnyProjects, MergeProjects_RemovedByOneSideAndLeftAloneByTheOther_IsGone) {
  ExpectAsTheOneSideHasIt([](const Rows&, const Rows& after) { return after.empty(); });
}

TEST(MergedAnyProjects, MergeProjects_ChangedByOneSideAlone_IsAsThatSideHasIt) {
  ExpectAsTheOneSideHasIt(
      [](const Rows& before, const Rows& after) { return !before.empty() && !after.empty(); });
}

/// The instances of one name, in their order.
Lines InstancesOf(const ProjectContents& project, const std::string& name) {
  Lines instances;
  for (const IP& ip : project.ip_info.ips) {
    if (ip.instance_name != name) continue;
    instances.push_back(ip.path);
    for (const IPSrcFile& file : ip.src_files) instances.back() += "\n" + file.name;
  }
  return instances;
}

RC_GTEST_PROP(MergedAnyProjects, MergeProjects_InstancesThatOneSideLeftAlone_AreThoseOfTheOther,
              ()) {
  const ThreeProjects projects = PickThreeProjects();
  const ProjectContents merged = Merge(projects).contents;
  for (const ProjectContents* project : {&projects.base, &projects.ours, &projects.theirs}) {
    for (const IP& ip : project->ip_info.ips) {
      const std::string& name = ip.instance_name;
      const Lines base = InstancesOf(projects.base, name);
      const Lines ours = InstancesOf(projects.ours, name);
      const Lines theirs = InstancesOf(projects.theirs, name);
      if (ours == base) {
        RC_ASSERT(InstancesOf(merged, name) == theirs);
      }
      if (theirs == base) {
        RC_ASSERT(InstancesOf(merged, name) == ours);
      }
    }
  }
}

RC_GTEST_PROP(MergedAnyProjects, MergeProjects_AnythingInIt_IsInOneOfTheThree, ()) {
  const ThreeProjects projects = PickThreeProjects();
  const Rows base = AllRowsOf(projects.base);
  const Rows ours = AllRowsOf(projects.ours);
  const Rows theirs = AllRowsOf(projects.theirs);
  for (const auto& row : WithoutEmptyNames(AllRowsOf(Merge(projects).contents))) {
    RC_ASSERT(Has(base, row) || Has(ours, row) || Has(theirs, row));
  }
}

RC_GTEST_PROP(MergedAnyProjects, MergeProjects_Conflict_IsAChangeOfBothSides, ()) {
  for (const MergeConflict& conflict : Merge(PickThreeProjects()).conflicts) {
    RC_ASSERT(conflict.ours != conflict.base);
    RC_ASSERT(conflict.theirs != conflict.base);
    RC_ASSERT(conflict.ours != conflict.theirs);
  }
}

}  // namespace
