#include <projectdb/vocabulary.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace projectdb;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

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

TEST(Vocabulary, ProjectTerms_Keys_StandInTheOrderOfAProjectFile) {
  EXPECT_THAT(
      Keys(ProjectTerms()),
      ElementsAre("name", "directory", "sw_version", "last_change_date", "info", "device.family",
                  "device.device", "device.timing_model", "design.top_module",
                  "design.top_vhdl_arch", "design.def_veri_version", "design.def_vhdl_version",
                  "design.files", "constraint.sdc", "constraint.interface", "isf.files",
                  "simulation.files", "misc.files", "ip"));
}

TEST(Vocabulary, FlowProcessTerms_Keys_StandInTheOrderOfAComparison) {
  EXPECT_THAT(Keys(FlowProcessTerms()), ElementsAre("name", "tool", "", "parameters"));
}

TEST(Vocabulary, DesignFileTerms_Keys_AreTheAttributesOfAProjectFile) {
  EXPECT_THAT(Keys(DesignFileTerms()), ElementsAre("name", "version", "library"));
}

TEST(Vocabulary, IPTerms_Keys_BeginWithTheName) {
  EXPECT_THAT(Keys(IPTerms()), ElementsAre("instance_name", "path", "files"));
}

/// A key of a project, and the field for which it stands.
struct KeyedText {
  const char* key;
  std::string& (*field)(ProjectContents&);
};

class TextTerm : public testing::TestWithParam<KeyedText> {};

TEST_P(TextTerm, Written_StandsInItsField) {
  ProjectContents project;
  for (const ProjectTerm& term : ProjectTerms()) {
    if (term.key != GetParam().key) continue;
    const auto& access = std::get<Access<ProjectContents, std::string>>(term.access);
    access(project) = "lantern";
  }
  EXPECT_EQ(GetParam().field(project), "lantern");
}

INSTANTIATE_TEST_SUITE_P(
    Vocabulary, TextTerm,
    testing::Values(
        KeyedText{"name", [](auto& p) -> auto& { return p.project_name;
}  // namespace
}
, KeyedText{"directory", [](auto& p) -> auto& {return p.current_path;
}
}
, KeyedText{"sw_version", [](auto& p) -> auto& {return p.software_version;
}
}
, KeyedText{"last_change_date", [](auto& p) -> auto& {return p.last_modify_time;
}
}
, KeyedText{"device.family", [](auto& p) -> auto& {return p.device_info.family;
}
}
, KeyedText{"device.device", [](auto& p) -> auto& {return p.device_info.device;
}
}
, KeyedText{"device.timing_model", [](auto& p) -> auto& {return p.device_info.timing_model;
}
}
, KeyedText{"design.top_module", [](auto& p) -> auto& {return p.design_info.top_module;
}
}
, KeyedText{"design.top_vhdl_arch", [](auto& p) -> auto& {return p.design_info.top_vhdl_arch;
}
}
, KeyedText{"design.def_veri_version", [](auto& p) -> auto& {return p.design_info.def_veri_version;
}
}
, KeyedText{"design.def_vhdl_version", [](auto& p) -> auto& {return p.design_info.def_vhdl_version;
}
}
, KeyedText{"constraint.interface", [](auto& p) -> auto& {return p.design_constraint.inter_file;
}
}));

std::vector<std::string_view> KeysOfKind(TermKind kind) {
  std::vector<std::string_view> keys;
  for (const ProjectTerm& term : ProjectTerms()) {
    if (term.kind == kind) keys.push_back(term.key);
  }
  return keys;
}

TEST(Vocabulary, ProjectTerms_Stamps_AreVersionAndTimeOfTheLastWriting) {
  EXPECT_THAT(KeysOfKind(TermKind::kStamp), ElementsAre("sw_version", "last_change_date"));
}

TEST(Vocabulary, ProjectTerms_Directory_IsNoValueOfTheUser) {
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

struct Ending {
  const char* path;
  const char* ending;
  bool has_it;
};

class EndingOfName : public testing::TestWithParam<Ending> {};

TEST_P(EndingOfName, HasEnding_GoesByTheLastPartBehindAStem) {
  EXPECT_EQ(HasEnding(GetParam().path, GetParam().ending), GetParam().has_it)
      << GetParam().path << " " << GetParam().ending;
}

INSTANTIATE_TEST_SUITE_P(
    Vocabulary, EndingOfName,
    testing::Values(Ending{"clocks.sdc", ".sdc", true}, Ending{"a/b.c/clocks.sdc", ".sdc", true},
                    Ending{"a.sdc/clocks", ".sdc", false}, Ending{"clocks.SDC", ".sdc", false},
                    Ending{"clocks.sdc.bak", ".sdc", false}, Ending{".sdc", ".sdc", false},
                    Ending{"a/.sdc", ".sdc", false}, Ending{"a.sdc/", ".sdc", false},
                    Ending{"", ".sdc", false}, Ending{"sdc", ".sdc", false},
                    Ending{"pins.interface.csv", ".interface.csv", true},
                    Ending{"a.b.interface.csv", ".interface.csv", true},
                    Ending{"..interface.csv", ".interface.csv", true},
                    Ending{".interface.csv", ".interface.csv", false},
                    Ending{"io/.interface.csv", ".interface.csv", false},
                    Ending{"pins.csv", ".interface.csv", false}, Ending{"notes", "", true},
                    Ending{"", "", true}));

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

TEST(Vocabulary, MapsOf_Synthesis_AreThoseOfVerilogToo) {
  EXPECT_THAT(NamesOfMaps(e_synthesis), ElementsAre("param", "dynparam", "defmacro"));
}

TEST(Vocabulary, MapsOf_OtherProcess_AreThatOfOrdinaryParametersAlone) {
  for (const ProcType type : {e_place_and_route, e_bitstream_generation, e_debugger}) {
    EXPECT_THAT(NamesOfMaps(type), ElementsAre("param")) << type;
  }
}

TEST(Vocabulary, IsInfoAttributeName_NameOfAFieldOrOfXml_IsFalse) {
  for (const char* name :
       {"name", "sw_version", "last_change_date", "xmlns", "xsi", "xmlns:kel", "xsi:type"}) {
    EXPECT_FALSE(IsInfoAttributeName(name)) << name;
  }
}

TEST(Vocabulary, IsInfoAttributeName_OtherName_IsTrue) {
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

TEST(Vocabulary, NameOf_Entry_IsItsFirstField) {
  EXPECT_EQ(NameOf(std::string("a.isf")), "a.isf");
  EXPECT_EQ(NameOf(DesignFile("a.v", "v2001", "work")), "a.v");
  EXPECT_EQ(NameOf(IPSrcFile{"fifo.v"}), "fifo.v");
  EXPECT_EQ(NameOf(IP{"uart", "ip/uart.cfg", {}}), "uart");
  EXPECT_EQ(NameOf(Parameter("effort", "high", e_option)), "effort");
}

TEST(Vocabulary, FileNameOf_Entry_IsTheFileThatItStandsFor) {
  EXPECT_EQ(FileNameOf(std::string("a.isf")), "a.isf");
  EXPECT_EQ(FileNameOf(DesignFile("a.v", "v2001", "work")), "a.v");
  EXPECT_EQ(FileNameOf(IPSrcFile{"fifo.v"}), "fifo.v");
  EXPECT_EQ(FileNameOf(IP{"uart", "ip/uart.cfg", {}}), "ip/uart.cfg");
}

}  // namespace
