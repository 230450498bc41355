#pragma once

#include <functional>
#include <string>
#include <vector>

#include <projectdb/project_db.h>
#include <xercesc/dom/DOMElement.hpp>

/// The operations that append elements to a document.
namespace test_support::dom_writers {

using namespace projectdb;
using xercesc::DOMElement;

inline constexpr char16_t kNamespace[] = u"urn:test";
inline constexpr char16_t kPrefix[] = u"t";

/// Where an element goes and how it is named.
struct Target {
  DOMElement* parent;
  const char16_t* namespace_uri = kNamespace;
  const char16_t* prefix = kPrefix;
};

inline std::vector<DesignFile> TwoFiles(const std::string& text) {
  return {{"z.v", "", ""}, {"a.v", "sv", text}};
}

inline IP OneIP(const std::string& text) { return {"u1", "ip/u1", {{"z.v"}, {text}}}; }

inline FlowProcess ProcessWithMap(const std::string& map_name, const Parameter& parameter) {
  FlowProcess process;
  process.name = "flow";
  process.parameter_maps.push_back({{parameter.name, parameter}});
  process.parameter_map_index[map_name] = 0;
  return process;
}

/// How the caller names the element of an operation, or elements below it.
enum class Naming { kFixed, kByTag, kByName, kBelow };

/// An operation that appends one element.
struct Writer {
  const char* name;
  /// Appends an element that holds the text somewhere, with the name if the caller gives one.
  std::function<bool(const KelProjectDatabase&, const Target&, const std::string& text,
                     const char* element)>
      append;
  /// The element with the text "x" and the name "named".
  const char* expected;
  Naming naming = Naming::kFixed;
};

inline const Writer kWriters[] = {
    {"AppendDeviceInfo",
     [](auto& db, auto& to, auto& text, auto*) {
       DeviceInfo info;
       info.family = "f";
       info.device = "d";
       info.timing_model = text;
       return db.AppendDeviceInfoToDOMElement(to.parent, info, to.namespace_uri, to.prefix);
     },
     R"(<device_info><family name="f"/><device name="d"/><timing_model name="x"/></device_info>)"},
    {"AppendDesignInfo",
     [](auto& db, auto& to, auto& text, auto*) {
       DesignInfo info;
       info.top_module = "top";
       info.top_vhdl_arch = text;
       info.design_files = TwoFiles("w");
       info.def_veri_version = "2k";
       info.def_vhdl_version = "08";
       return db.AppendDesignInfoToDOMElement(to.parent, info, to.namespace_uri, to.prefix);
     },
     R"(<design_info def_veri_version="2k" def_vhdl_version="08"><top_module name="top"/>)"
     R"(<design_file library="" name="z.v" version=""/><design_file library="w" name="a.v" version="sv"/>)"
     R"(<top_vhdl_arch name="x"/></design_info>)"},
    {"AppendDesignConstraint",
     [](auto& db, auto& to, auto& text, auto*) {
       DesignConstraint constraint;
       constraint.sdc_files = {"z.sdc", "a.sdc"};
       constraint.inter_file = text;
       return db.AppendDesignConstraintToDOMElement(to.parent, constraint, to.namespace_uri,
                                                    to.prefix);
     },
     R"(<constraint_info><sdc_file name="z.sdc"/><sdc_file name="a.sdc"/><inter_file name="x"/></constraint_info>)"},
    {"AppendISF",
     [](auto& db, auto& to, auto& text, auto*) {
       DesignISF isf;
       isf.isf_files = {"z.isf", text};
       return db.AppendISFToDOMElement(to.parent, isf, to.namespace_uri, to.prefix);
     },
     R"(<isf_info><isf_file name="z.isf"/><isf_file name="x"/></isf_info>)"},
    {"AppendDesignFileList",
     [](auto& db, auto& to, auto& text, auto* tag) {
       std::vector<DesignFile> files = TwoFiles(text);
       return db.AppendDesignFileListToDOMElement(to.parent, tag, "item", files, to.namespace_uri,
                                                  to.prefix);
     },
     R"(<named><item library="" name="z.v" version=""/><item library="x" name="a.v" version="sv"/></named>)",
     Naming::kByTag},
    {"AppendDesignFile",
     [](auto& db, auto& to, auto& text, auto* tag) {
       DesignFile file("a.v", "sv", text);
       return db.AppendDesignFileToDOMElement(to.parent, tag, file, to.namespace_uri, to.prefix);
     },
     R"(<named library="x" name="a.v" version="sv"/>)", Naming::kByTag},
    {"AppendIPInfo",
     [](auto& db, auto& to, auto& text, auto*) {
       IPInfo info{{{"u0", "", {}}, OneIP(text)}};
       return db.AppendIPInfoToDOMElement(to.parent, info, to.namespace_uri, to.prefix);
     },
     R"(<ip_info><ip instance_name="u0" path=""/><ip instance_name="u1" path="ip/u1">)"
     R"(<ip_src_file name="z.v"/><ip_src_file name="x"/></ip></ip_info>)"},
    {"AppendIPInstance",
     [](auto& db, auto& to, auto& text, auto* tag) {
       IP ip = OneIP(text);
       return db.AppendIPInstanceToDOMElement(to.parent, tag, ip, to.namespace_uri, to.prefix);
     },
     R"(<named instance_name="u1" path="ip/u1"><ip_src_file name="z.v"/><ip_src_file name="x"/></named>)",
     Naming::kByTag},
    {"AppendIPSrcFile",
     [](auto& db, auto& to, auto& text, auto* tag) {
       IPSrcFile file{text};
       return db.AppendIPSrcFileToDOMElement(to.parent, tag, file, to.namespace_uri, to.prefix);
     },
     R"(<named name="x"/>)", Naming::kByTag},
    {"AppendProcessParameter",
     [](auto& db, auto& to, auto& text, auto* tag) {
       return db.AppendProcessParameterToDOMElement(to.parent, Parameter("p", text, e_option), tag,
                                                    to.namespace_uri, to.prefix);
     },
     R"(<named name="p" value="x" value_type="e_option"/>)", Naming::kByTag},
    {"AppendFlowProcess",
     [](auto& db, auto& to, auto& text, auto* tag) {
       FlowProcess process = ProcessWithMap("param", Parameter("p", text, e_bool));
       process.name = tag;
       process.tool_name = "tool";
       return db.AppendFlowProcessToDOMElement(to.parent, process, to.namespace_uri, to.prefix);
     },
     R"(<named tool_name="tool"><param name="p" value="x" value_type="e_bool"/></named>)",
     Naming::kByName},
    {"AppendSynthesisProcess",
     [](auto& db, auto& to, auto& text, auto* tag) {
       SynthesisProcess process{tag,
                                "tool",
                                {{"z", "1", e_string}, {"a", "", e_noarg}},
                                {{"D", "2", e_bool}},
                                {{"M", text, kNoParameterType}}};
       return db.AppendSynthesisProcessToDOMElement(to.parent, process, to.namespace_uri,
                                                    to.prefix);
     },
     R"(<named tool_name="tool"><param name="z" value="1" value_type="e_string"/>)"
     R"(<param name="a" value="" value_type="e_noarg"/><dynparam name="D" value="2" value_type="e_bool"/>)"
     R"(<defmacro name="M" value="x"/></named>)",
     Naming::kByName},
};

}  // namespace test_support::dom_writers
