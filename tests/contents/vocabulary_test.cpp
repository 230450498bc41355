#include <projectdb/vocabulary.h>

#include <map>
#include <set>
#include <string_view>
#include <variant>

#include "testing/test.h"

namespace {

using namespace test_support;
using namespace projectdb;

/// Where the fields of a record lie.
using Fields = std::set<const void*>;

// The records are taken apart whole, so that no field can be added without a place here.

Fields FieldsOf(const ProjectContents& project) {
  const auto& [name, path, version, time, info, device_info, design_info, constraint, isf, ip_info,
               sim, misc, processes] = project;
  static_cast<void>(processes);
  const auto& [family, device, timing] = device_info;
  const auto& [top, architecture, files, verilog, vhdl] = design_info;
  const auto& [sdc, interface] = constraint;
  const auto& [isf_files] = isf;
  const auto& [ips] = ip_info;
  return {&name,      &path,      &version,      &time,  &info,    &family, &device,
          &timing,    &top,       &architecture, &files, &verilog, &vhdl,   &sdc,
          &interface, &isf_files, &ips,          &sim,   &misc};
}

Fields FieldsOf(const FlowProcessContents& process) {
  const auto& [name, tool, maps, parameters] = process;
  return {&name, &tool, &maps, &parameters};
}

Fields FieldsOf(const DesignFile& file) {
  const auto& [name, version, library] = file;
  return {&name, &version, &library};
}

Fields FieldsOf(const IP& ip) {
  const auto& [name, path, files] = ip;
  return {&name, &path, &files};
}

/// Where a term reaches into the record; const if the record is.
template <typename Term, typename Record>
const void* Reached(const Term& term, Record& record) {
  return std::visit([&](const auto& access) -> const void* { return &access(record); },
                    term.access);
}

template <typename Term, typename Record>
Fields FieldsReached(const Table<Term>& terms, Record& record) {
  Fields fields;
  for (const Term& term : terms) fields.insert(Reached(term, record));
  return fields;
}

template <typename Term>
std::vector<std::string_view> Keys(const Table<Term>& terms) {
  std::vector<std::string_view> keys;
  for (const Term& term : terms) keys.push_back(term.key);
  return keys;
}

template <typename Term>
bool HasUniqueKeys(const Table<Term>& terms) {
  const auto keys = Keys(terms);
  return std::set<std::string_view>(keys.begin(), keys.end()).size() == keys.size();
}

/// A table of terms and the record that they are about.
template <auto kTermsFunction, typename RecordOfTerms>
struct Case {
  using Record = RecordOfTerms;
  static auto TermsOfRecord() { return kTermsFunction(); }
};

struct EmptyDesignFile : DesignFile {
  EmptyDesignFile() : DesignFile("", "", "") {}
};

using Cases =
    testing::Types<Case<ProjectTerms, ProjectContents>, Case<FlowProcessTerms, FlowProcessContents>,
                   Case<DesignFileTerms, EmptyDesignFile>, Case<IPTerms, IP>>;

template <typename Case>
class Terms : public testing::Test {
 protected:
  const decltype(Case::TermsOfRecord()) terms_ = Case::TermsOfRecord();
};

TYPED_TEST_SUITE(Terms, Cases);

TYPED_TEST(Terms, Keys_AreUnique) { EXPECT_TRUE(HasUniqueKeys(this->terms_)); }

TYPED_TEST(Terms, Titles_AreGiven) {
  for (const auto& term : this->terms_) EXPECT_THAT(term.title, Not(IsEmpty())) << term.key;
}

TYPED_TEST(Terms, Groups_StandTogether) {
  std::set<std::string_view> left;
  std::string_view group;
  for (const auto& term : this->terms_) {
    if (term.group != group) left.insert(std::exchange(group, term.group));
    EXPECT_TRUE(group.empty() || left.count(group) == 0) << term.key;
  }
}

TYPED_TEST(Terms, Readers_ReachEveryField) {
  const typename TypeParam::Record record{};
  EXPECT_EQ(FieldsReached(this->terms_, record), FieldsOf(record));
}

TYPED_TEST(Terms, WriterOfATerm_ReachesTheFieldOfItsReader) {
  typename TypeParam::Record record{};
  for (const auto& term : this->terms_) {
    EXPECT_EQ(Reached(term, record), Reached(term, std::as_const(record))) << term.key;
  }
}

TEST(Vocabulary, ProjectTerms_Groups_AreThoseOfTheSections) {
  std::map<std::string_view, std::vector<std::string_view>> groups;
  for (const ProjectTerm& term : ProjectTerms()) {
    if (!term.group.empty()) groups[term.group].push_back(term.key);
  }
  EXPECT_THAT(
      groups,
      ElementsAre(
          Pair("Design", ElementsAre("design.top_module", "design.top_vhdl_arch",
                                     "design.def_veri_version", "design.def_vhdl_version")),
          Pair("Device", ElementsAre("device.family", "device.device", "device.timing_model")),
          Pair("Project", ElementsAre("name", "directory", "sw_version", "last_change_date"))));
}

TEST(Vocabulary, ProjectTerms_Keys_StandInTheOrderOfAProjectFile) {
  EXPECT_THAT(
      Keys(ProjectTerms()),
      ElementsAre("name", "directory", "sw_version", "last_change_date", "info", "device.family",
                  "device.device", "device.timing_model", "design.top_module",
                  "design.top_vhdl_arch", "design.def_veri_version", "design.def_vhdl_version",
                  "design.files", "constraint.sdc", "constraint.interface", "isf.files",
                  "simulation.files", "misc.files", "ip"));
}

TEST(Vocabulary, OtherTerms_Keys_StandInTheOrderOfTheirFields) {
  EXPECT_THAT(Keys(FlowProcessTerms()), ElementsAre("name", "tool", "", "parameters"));
  EXPECT_THAT(Keys(DesignFileTerms()), ElementsAre("name", "version", "library"));
  EXPECT_THAT(Keys(IPTerms()), ElementsAre("instance_name", "path", "files"));
}

TEST(Vocabulary, TextTerm_Written_StandsInItsField) {
  ProjectContents p;
  const std::map<std::string_view, const std::string*> fields = {
      {"name", &p.project_name},
      {"directory", &p.current_path},
      {"sw_version", &p.software_version},
      {"last_change_date", &p.last_modify_time},
      {"device.family", &p.device_info.family},
      {"device.device", &p.device_info.device},
      {"device.timing_model", &p.device_info.timing_model},
      {"design.top_module", &p.design_info.top_module},
      {"design.top_vhdl_arch", &p.design_info.top_vhdl_arch},
      {"design.def_veri_version", &p.design_info.def_veri_version},
      {"design.def_vhdl_version", &p.design_info.def_vhdl_version},
      {"constraint.interface", &p.design_constraint.inter_file}};
  for (const ProjectTerm& term : ProjectTerms()) {
    const auto* access = std::get_if<Access<ProjectContents, std::string>>(&term.access);
    if (access == nullptr) continue;
    (*access)(p) = term.key;
    EXPECT_EQ(*fields.at(term.key), term.key);
  }
}

std::vector<std::string_view> KeysOfKind(TermKind kind) {
  std::vector<std::string_view> keys;
  for (const ProjectTerm& term : ProjectTerms()) {
    if (term.kind == kind) keys.push_back(term.key);
  }
  return keys;
}

TEST(Vocabulary, ProjectTerms_StampsAndDirectory_AreNoValuesOfTheUser) {
  EXPECT_THAT(KeysOfKind(TermKind::kStamp), ElementsAre("sw_version", "last_change_date"));
  EXPECT_THAT(KeysOfKind(TermKind::kDirectory), ElementsAre("directory"));
}

TEST(Vocabulary, ProjectTerms_FileEndings_AreThoseThatAddingAsksFor) {
  std::vector<std::pair<std::string_view, std::string_view>> endings;
  for (const ProjectTerm& term : ProjectTerms()) {
    if (term.file_ending) endings.emplace_back(term.key, *term.file_ending);
  }
  EXPECT_THAT(endings,
              ElementsAre(std::pair("design.files", ""), std::pair("constraint.sdc", ".sdc"),
                          std::pair("constraint.interface", ".interface.csv"),
                          std::pair("isf.files", ""), std::pair("simulation.files", ""),
                          std::pair("misc.files", ""), std::pair("ip", "")));
}

TEST(Vocabulary, HasEnding_GoesByTheLastPartBehindAStem) {
  for (const char* path : {"clocks.sdc", "a/b.c/clocks.sdc"}) {
    EXPECT_TRUE(HasEnding(path, ".sdc")) << path;
  }
  for (const char* path :
       {"a.sdc/clocks", "clocks.SDC", "clocks.sdc.bak", ".sdc", "a/.sdc", "a.sdc/", "", "sdc"}) {
    EXPECT_FALSE(HasEnding(path, ".sdc")) << path;
  }
  for (const char* path : {"pins.interface.csv", "a.b.interface.csv", "..interface.csv"}) {
    EXPECT_TRUE(HasEnding(path, ".interface.csv")) << path;
  }
  for (const char* path : {".interface.csv", "io/.interface.csv", "pins.csv"}) {
    EXPECT_FALSE(HasEnding(path, ".interface.csv")) << path;
  }
  for (const char* path : {"notes", ""}) EXPECT_TRUE(HasEnding(path, "")) << path;
}

TEST(Vocabulary, FlowProcesses_StandAtThePositionsOfTheirTypes) {
  std::vector<int> types;
  std::vector<std::string_view> names;
  for (const FlowProcessName& process : kFlowProcesses) {
    types.push_back(process.type);
    names.emplace_back(process.name);
  }
  EXPECT_THAT(types, ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(names,
              ElementsAre("synthesis", "place_and_route", "bitstream_generation", "debugger"));
}

std::vector<std::string_view> NamesOfMaps(ProcType type) {
  std::vector<std::string_view> names;
  for (const ParameterMapName& map : MapsOf(type)) names.emplace_back(map.name);
  return names;
}

TEST(Vocabulary, MapsOf_Process_AreThoseOfVerilogForSynthesisOnly) {
  EXPECT_THAT(NamesOfMaps(e_synthesis), ElementsAre("param", "dynparam", "defmacro"));
  for (const ProcType type : {e_place_and_route, e_bitstream_generation, e_debugger}) {
    EXPECT_THAT(NamesOfMaps(type), ElementsAre("param")) << type;
  }
}

TEST(Vocabulary, IsInfoAttributeName_NameOfAFieldOrOfXml_IsFalseOnly) {
  for (const char* name :
       {"name", "sw_version", "last_change_date", "xmlns", "xsi", "xmlns:kel", "xsi:type"}) {
    EXPECT_FALSE(IsInfoAttributeName(name)) << name;
  }
  for (const char* name : {"owner", "", ":name", "review:xsi", "xmlnsx:y", "xsix", "Name"}) {
    EXPECT_TRUE(IsInfoAttributeName(name)) << name;
  }
}

TEST(Vocabulary, HasValueForItsType_SwitchWithoutAndOthersWithValue_IsTrue) {
  EXPECT_TRUE(HasValueForItsType({"keep", "", e_noarg}));
  EXPECT_FALSE(HasValueForItsType({"keep", "yes", e_noarg}));
  for (const ParameterType type : {e_string, e_bool, e_option, kNoParameterType}) {
    EXPECT_TRUE(HasValueForItsType({"goal", "speed", type})) << type;
    EXPECT_FALSE(HasValueForItsType({"goal", "", type})) << type;
  }
}

TEST(Vocabulary, ParameterTypes_ToTextAndBack_AreTheSame) {
  for (const ParameterType type : {e_string, e_bool, e_option, e_noarg, kNoParameterType}) {
    EXPECT_EQ(ParameterTypeOf(TextOf(type)), type) << TextOf(type);
  }
}

TEST(Vocabulary, NameAndFileNameOf_Entry_AreItsFirstFieldAndTheFileThatItStandsFor) {
  const IP ip{"uart", "ip/uart.cfg", {}};
  const DesignFile file("a.v", "v2001", "work");
  EXPECT_EQ(NameOf(std::string("a.isf")) + FileNameOf(std::string("b.isf")), "a.isfb.isf");
  EXPECT_EQ(NameOf(file) + FileNameOf(file), "a.va.v");
  EXPECT_EQ(NameOf(IPSrcFile{"fifo.v"}) + FileNameOf(IPSrcFile{"ram.v"}), "fifo.vram.v");
  EXPECT_EQ(NameOf(ip), "uart");
  EXPECT_EQ(FileNameOf(ip), "ip/uart.cfg");
  EXPECT_EQ(NameOf(Parameter("effort", "high", e_option)), "effort");
}

}  // namespace
