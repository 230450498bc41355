#include <cstdint>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/dom/DOMNodeList.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "testing/child_process.h"
#include "testing/dom_document.h"
#include "testing/xml_tree.h"

namespace {

using namespace projectdb;
using namespace test_support;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using xercesc::DOMElement;
using xercesc::XMLPlatformUtils;

constexpr char16_t kNamespace[] = u"urn:test";
constexpr char16_t kPrefix[] = u"t";

/// Where an element goes and how it is named.
struct Target {
  DOMElement* parent;
  const char16_t* namespace_uri = kNamespace;
  const char16_t* prefix = kPrefix;
};

std::vector<DesignFile> TwoFiles(const std::string& text) {
  return {{"z.v", "", ""}, {"a.v", "sv", text}};
}

IP OneIP(const std::string& text) { return {"u1", "ip/u1", {{"z.v"}, {text}}}; }

FlowProcess ProcessWithMap(const std::string& map_name, const Parameter& parameter) {
  FlowProcess process;
  process.name = "flow";
  process.parameter_maps.push_back({{parameter.name, parameter}});
  process.parameter_map_index[map_name] = 0;
  return process;
}

/// An operation that appends one element.
struct Writer {
  const char* name;
  /// Appends an element that holds the text somewhere.
  std::function<bool(const KelProjectDatabase&, const Target&, const std::string& text)> append;
  /// The element with the text "x".
  const char* expected;
};

void PrintTo(const Writer& writer, std::ostream* out) { *out << writer.name; }

const Writer kWriters[] = {
    {"AppendDeviceInfo",
     [](auto& db, auto& to, auto& text) {
       DeviceInfo info;
       info.family = "f";
       info.device = "d";
       info.timing_model = text;
       return db.AppendDeviceInfoToDOMElement(to.parent, info, to.namespace_uri, to.prefix);
     },
     R"(<device_info><family name="f"/><device name="d"/><timing_model name="x"/></device_info>)"},
    {"AppendDesignInfo",
     [](auto& db, auto& to, auto& text) {
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
     [](auto& db, auto& to, auto& text) {
       DesignConstraint constraint;
       constraint.sdc_files = {"z.sdc", "a.sdc"};
       constraint.inter_file = text;
       return db.AppendDesignConstraintToDOMElement(to.parent, constraint, to.namespace_uri,
                                                    to.prefix);
     },
     R"(<constraint_info><sdc_file name="z.sdc"/><sdc_file name="a.sdc"/><inter_file name="x"/></constraint_info>)"},
    {"AppendISF",
     [](auto& db, auto& to, auto& text) {
       DesignISF isf;
       isf.isf_files = {"z.isf", text};
       return db.AppendISFToDOMElement(to.parent, isf, to.namespace_uri, to.prefix);
     },
     R"(<isf_info><isf_file name="z.isf"/><isf_file name="x"/></isf_info>)"},
    {"AppendDesignFileList",
     [](auto& db, auto& to, auto& text) {
       std::vector<DesignFile> files = TwoFiles(text);
       return db.AppendDesignFileListToDOMElement(to.parent, "list", "item", files,
                                                  to.namespace_uri, to.prefix);
     },
     R"(<list><item library="" name="z.v" version=""/><item library="x" name="a.v" version="sv"/></list>)"},
    {"AppendDesignFile",
     [](auto& db, auto& to, auto& text) {
       DesignFile file("a.v", "sv", text);
       return db.AppendDesignFileToDOMElement(to.parent, "file", file, to.namespace_uri, to.prefix);
     },
     R"(<file library="x" name="a.v" version="sv"/>)"},
    {"AppendIPInfo",
     [](auto& db, auto& to, auto& text) {
       IPInfo info{{{"u0", "", {}}, OneIP(text)}};
       return db.AppendIPInfoToDOMElement(to.parent, info, to.namespace_uri, to.prefix);
     },
     R"(<ip_info><ip instance_name="u0" path=""/><ip instance_name="u1" path="ip/u1">)"
     R"(<ip_src_file name="z.v"/><ip_src_file name="x"/></ip></ip_info>)"},
    {"AppendIPInstance",
     [](auto& db, auto& to, auto& text) {
       IP ip = OneIP(text);
       return db.AppendIPInstanceToDOMElement(to.parent, "inst", ip, to.namespace_uri, to.prefix);
     },
     R"(<inst instance_name="u1" path="ip/u1"><ip_src_file name="z.v"/><ip_src_file name="x"/></inst>)"},
    {"AppendIPSrcFile",
     [](auto& db, auto& to, auto& text) {
       IPSrcFile file{text};
       return db.AppendIPSrcFileToDOMElement(to.parent, "src", file, to.namespace_uri, to.prefix);
     },
     R"(<src name="x"/>)"},
    {"AppendProcessParameter",
     [](auto& db, auto& to, auto& text) {
       return db.AppendProcessParameterToDOMElement(to.parent, Parameter("p", text, e_option),
                                                    "entry", to.namespace_uri, to.prefix);
     },
     R"(<entry name="p" value="x" value_type="e_option"/>)"},
    {"AppendFlowProcess",
     [](auto& db, auto& to, auto& text) {
       FlowProcess process = ProcessWithMap("param", Parameter("p", text, e_bool));
       process.tool_name = "tool";
       return db.AppendFlowProcessToDOMElement(to.parent, process, to.namespace_uri, to.prefix);
     },
     R"(<flow tool_name="tool"><param name="p" value="x" value_type="e_bool"/></flow>)"},
    {"AppendSynthesisProcess",
     [](auto& db, auto& to, auto& text) {
       SynthesisProcess process{"syn",
                                "tool",
                                {{"z", "1", e_string}, {"a", "", e_noarg}},
                                {{"D", "2", e_bool}},
                                {{"M", text, kNoParameterType}}};
       return db.AppendSynthesisProcessToDOMElement(to.parent, process, to.namespace_uri,
                                                    to.prefix);
     },
     R"(<syn tool_name="tool"><param name="z" value="1" value_type="e_string"/>)"
     R"(<param name="a" value="" value_type="e_noarg"/><dynparam name="D" value="2" value_type="e_bool"/>)"
     R"(<defmacro name="M" value="x"/></syn>)"},
};

class DomElement : public testing::Test {
 protected:
  Target ToRoot() const { return {document_.root()}; }

  /// What was appended to the root.
  std::vector<XmlElement> Appended() const { return ToXmlElement(*document_.root()).children; }

  /// The only element that was appended.
  XmlElement OnlyAppended() const { return Appended().at(0); }

  const DomDocument document_;
  const KelProjectDatabase database_;
};

class EveryDomElement : public DomElement, public testing::WithParamInterface<Writer> {
 protected:
  bool Append(const Target& target, const std::string& text = "x") const {
    return GetParam().append(database_, target, text);
  }
};

INSTANTIATE_TEST_SUITE_P(Writers, EveryDomElement, testing::ValuesIn(kWriters));

TEST_P(EveryDomElement, AppendsTheElementWithItsAttributesAndChildrenBehindWhatIsThere) {
  document_.root()->appendChild(document_.get()->createElement(u"former"));
  EXPECT_TRUE(Append(ToRoot()));
  EXPECT_TRUE(Append(ToRoot()));
  std::vector<std::string> shown;
  for (const XmlElement& element : Appended()) shown.push_back(Show(element));
  EXPECT_THAT(shown, ElementsAre("<former/>", GetParam().expected, GetParam().expected));
}

TEST_P(EveryDomElement, AppendsToAnElementThatIsNotInTheTree) {
  DOMElement* detached = document_.get()->createElement(u"detached");
  ASSERT_TRUE(Append({detached}));
  EXPECT_EQ(Show(ToXmlElement(*detached).children.at(0)), GetParam().expected);
}

TEST_P(EveryDomElement, NullParent_ReturnsFalseWhateverTheText) {
  EXPECT_FALSE(Append({nullptr}));
  EXPECT_FALSE(Append({nullptr}, "\x01"));
}

TEST(DomElementsWithoutPlatform, NullParent_EveryWriterReturnsFalse) {
  const auto append_to_null = [] {
    std::string accepting;
    for (const Writer& writer : kWriters) {
      if (writer.append(KelProjectDatabase(), {nullptr}, "x")) accepting += writer.name;
    }
    return accepting;
  };
  EXPECT_EQ(InChildProcess([&] {
              while (XMLPlatformUtils::fgMemoryManager) XMLPlatformUtils::Terminate();
              const std::string before_initialisation = append_to_null();
              XMLPlatformUtils::Initialize();
              XMLPlatformUtils::Terminate();
              return before_initialisation + append_to_null();
            }),
            "");
}

TEST_P(EveryDomElement, AllElementsHaveTheNamespaceAndThePrefix) {
  Append(ToRoot());
  const XmlElement appended = OnlyAppended();
  for (const XmlElement* element : AllElements(appended)) {
    EXPECT_EQ(element->namespace_uri, "urn:test") << element->name;
    EXPECT_THAT(element->name, StartsWith("t:"));
  }
}

TEST_P(EveryDomElement, AttributesHaveNoNamespace) {
  Append(ToRoot());
  const xercesc::DOMNodeList& elements = *document_.get()->getElementsByTagName(u"*");
  for (XMLSize_t i = 0; i < elements.getLength(); ++i) {
    const xercesc::DOMNamedNodeMap& attributes = *elements.item(i)->getAttributes();
    for (XMLSize_t j = 0; j < attributes.getLength(); ++j) {
      EXPECT_EQ(attributes.item(j)->getNamespaceURI(), nullptr);
    }
  }
}

TEST_P(EveryDomElement, NullPrefixOrNamespace_GivesElementsWithoutPrefix) {
  for (const Target& target :
       {Target{document_.root(), kNamespace, nullptr}, Target{document_.root(), nullptr, kPrefix},
        Target{document_.root(), nullptr, nullptr}}) {
    ASSERT_TRUE(Append(target));
    const XmlElement appended = Appended().back();
    EXPECT_EQ(appended.namespace_uri, target.namespace_uri ? "urn:test" : "");
    EXPECT_EQ(appended.name.find(':'), std::string::npos);
    EXPECT_EQ(Show(appended), GetParam().expected);
  }
}

TEST_P(EveryDomElement, PrefixThatNoElementCanHave_ReturnsFalseWhateverTheTextAndAppendsNothing) {
  EXPECT_FALSE(Append({document_.root(), kNamespace, u"not a name"}));
  EXPECT_FALSE(Append({document_.root(), kNamespace, u"not a name"}, "\x01"));
  EXPECT_THAT(Appended(), IsEmpty());
}

TEST_P(EveryDomElement, TextOutsideAscii_IsTheSameInTheDocument) {
  const std::string text = "Gr\xC3\xBC\xC3\x9F \xF0\x9F\x98\x80 \"<&>\t\n";
  Append(ToRoot(), text);
  EXPECT_NE(Show(OnlyAppended()).find(text), std::string::npos);
}

TEST_P(EveryDomElement, TextThatXmlCannotCarry_ThrowsAndAppendsNothing) {
  for (const char* text : {"\x01", "\xFF", "\xED\xA0\x80", "\xEF\xBF\xBE", "\xE2\x82"}) {
    EXPECT_THROW(Append(ToRoot(), text), std::runtime_error) << testing::PrintToString(text);
  }
  EXPECT_THAT(Appended(), IsEmpty());
}

// Tags that the caller gives.

/// An operation whose element is named by its caller.
struct TaggedWriter {
  const char* name;
  std::function<bool(const KelProjectDatabase&, const Target&, const char* tag)> append;
};

void PrintTo(const TaggedWriter& writer, std::ostream* out) { *out << writer.name; }

const TaggedWriter kTaggedWriters[] = {
    {"AppendDesignFileList, list",
     [](auto& db, auto& to, auto* tag) {
       std::vector<DesignFile> files = TwoFiles("w");
       return db.AppendDesignFileListToDOMElement(to.parent, tag, "item", files, to.namespace_uri,
                                                  to.prefix);
     }},
    {"AppendDesignFile",
     [](auto& db, auto& to, auto* tag) {
       DesignFile file("a.v", "", "");
       return db.AppendDesignFileToDOMElement(to.parent, tag, file, to.namespace_uri, to.prefix);
     }},
    {"AppendIPInstance",
     [](auto& db, auto& to, auto* tag) {
       IP ip = OneIP("a.v");
       return db.AppendIPInstanceToDOMElement(to.parent, tag, ip, to.namespace_uri, to.prefix);
     }},
    {"AppendIPSrcFile",
     [](auto& db, auto& to, auto* tag) {
       IPSrcFile file{"a.v"};
       return db.AppendIPSrcFileToDOMElement(to.parent, tag, file, to.namespace_uri, to.prefix);
     }},
    {"AppendProcessParameter",
     [](auto& db, auto& to, auto* tag) {
       return db.AppendProcessParameterToDOMElement(to.parent, Parameter("p", "v", e_string), tag,
                                                    to.namespace_uri, to.prefix);
     }},
};

const TaggedWriter kNamedWriters[] = {
    {"AppendFlowProcess",
     [](auto& db, auto& to, auto* tag) {
       FlowProcess process;
       process.name = tag;
       return db.AppendFlowProcessToDOMElement(to.parent, process, to.namespace_uri, to.prefix);
     }},
    {"AppendSynthesisProcess",
     [](auto& db, auto& to, auto* tag) {
       SynthesisProcess process{tag, "", {}, {}, {}};
       return db.AppendSynthesisProcessToDOMElement(to.parent, process, to.namespace_uri,
                                                    to.prefix);
     }},
};

const TaggedWriter kItemWriter = {"AppendDesignFileList, items", [](auto& db, auto& to, auto* tag) {
                                    std::vector<DesignFile> files = TwoFiles("w");
                                    return db.AppendDesignFileListToDOMElement(
                                        to.parent, "list", tag, files, to.namespace_uri, to.prefix);
                                  }};

const TaggedWriter kMapWriter = {
    "AppendFlowProcess, map", [](auto& db, auto& to, auto* tag) {
      const FlowProcess process = ProcessWithMap(tag, Parameter("p", "v", e_string));
      return db.AppendFlowProcessToDOMElement(to.parent, process, to.namespace_uri, to.prefix);
    }};

/// Whose element itself is named.
class TaggedDomElement : public DomElement, public testing::WithParamInterface<TaggedWriter> {
 protected:
  bool Append(const char* tag) const { return GetParam().append(database_, ToRoot(), tag); }
};

/// Whose element or elements below it are named.
class BadlyTaggedDomElement : public TaggedDomElement {};

constexpr const char* kNoNames[] = {"",   "x:y", ":a",  "a:",   "a b", "1a",
                                    "-a", "<",   "a/b", "\xFF", "\x01"};

/// Whose name is a tag that may be null.
class DomElementWithTag : public TaggedDomElement {};

INSTANTIATE_TEST_SUITE_P(Tagged, TaggedDomElement, testing::ValuesIn(kTaggedWriters));
INSTANTIATE_TEST_SUITE_P(Named, TaggedDomElement, testing::ValuesIn(kNamedWriters));
INSTANTIATE_TEST_SUITE_P(Tagged, BadlyTaggedDomElement, testing::ValuesIn(kTaggedWriters));
INSTANTIATE_TEST_SUITE_P(Named, BadlyTaggedDomElement, testing::ValuesIn(kNamedWriters));
INSTANTIATE_TEST_SUITE_P(Below, BadlyTaggedDomElement, testing::Values(kItemWriter, kMapWriter));
INSTANTIATE_TEST_SUITE_P(Tagged, DomElementWithTag, testing::ValuesIn(kTaggedWriters));

TEST_P(TaggedDomElement, IsNamedByItsTag) {
  for (const std::string tag : {"some_tag-1.x", "Gr\xC3\xB6\xC3\x9F"}) {
    ASSERT_TRUE(Append(tag.c_str()));
    EXPECT_EQ(Appended().back().name, "t:" + tag);
  }
}

TEST_P(DomElementWithTag, NullTag_ReturnsFalseAndAppendsNothing) {
  EXPECT_FALSE(Append(nullptr));
  EXPECT_THAT(Appended(), IsEmpty());
}

TEST_P(BadlyTaggedDomElement, TagThatIsNoName_ReturnsFalseAndAppendsNothing) {
  for (const char* tag : kNoNames) EXPECT_FALSE(Append(tag)) << testing::PrintToString(tag);
  EXPECT_THAT(Appended(), IsEmpty());
}

TEST_F(DomElement, AppendFlowProcess_NameWithAZeroThatIsNoName_ReturnsFalse) {
  FlowProcess process;
  process.name = std::string("flow\0", 5);
  EXPECT_FALSE(
      database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix));
}

TEST_F(DomElement, AppendFlowProcess_OneMapOfSeveralIsNoName_AppendsNothing) {
  FlowProcess process;
  process.name = "flow";
  for (std::int16_t i = 0; i < 20; ++i) {
    process.parameter_maps.push_back({{"p", {"p", "\x01", e_string}}});
    process.parameter_map_index["map" + std::to_string(i)] = i;
  }
  process.parameter_map_index["no name"] = 0;
  EXPECT_FALSE(
      database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix));
  EXPECT_THAT(Appended(), IsEmpty());
}

// Names of what has nothing to write.

TEST_F(DomElement, AppendFlowProcess_MapWithoutParameters_MayHaveAnyName) {
  for (const char* name : kNoNames) {
    FlowProcess process = ProcessWithMap("param", {"p", "v", kNoParameterType});
    process.parameter_maps.emplace_back();
    process.parameter_map_index[name] = 1;
    ASSERT_TRUE(
        database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix))
        << testing::PrintToString(name);
    EXPECT_EQ(Show(Appended().back()), R"(<flow><param name="p" value="v"/></flow>)");
  }
}

TEST_F(DomElement, AppendDesignFileList_NoFiles_ItemTagMayBeAnything) {
  std::vector<DesignFile> files;
  for (const char* tag : kNoNames) {
    ASSERT_TRUE(database_.AppendDesignFileListToDOMElement(document_.root(), "list", tag, files,
                                                           kNamespace, kPrefix))
        << testing::PrintToString(tag);
    EXPECT_EQ(Show(Appended().back()), "<list/>");
  }
}

TEST_F(DomElement, AppendDesignFileList_NullItemTag_AppendsTheListWithoutItems) {
  EXPECT_TRUE(kItemWriter.append(database_, ToRoot(), nullptr));
  EXPECT_EQ(Show(OnlyAppended()), "<list/>");
}

// Empty records.

TEST_F(DomElement, EmptyRecords_GiveEmptyAttributesAndNoListEntries) {
  DOMElement* root = document_.root();
  DeviceInfo device;
  DesignInfo design;
  DesignConstraint constraint;
  DesignISF isf;
  IPInfo ip_info;
  std::vector<DesignFile> files;
  database_.AppendDeviceInfoToDOMElement(root, device, kNamespace, kPrefix);
  database_.AppendDesignInfoToDOMElement(root, design, kNamespace, kPrefix);
  database_.AppendDesignConstraintToDOMElement(root, constraint, kNamespace, kPrefix);
  database_.AppendISFToDOMElement(root, isf, kNamespace, kPrefix);
  database_.AppendIPInfoToDOMElement(root, ip_info, kNamespace, kPrefix);
  database_.AppendDesignFileListToDOMElement(root, "list", "item", files, kNamespace, kPrefix);
  std::vector<std::string> shown;
  for (const XmlElement& element : Appended()) shown.push_back(Show(element));
  EXPECT_THAT(
      shown,
      ElementsAre(
          R"(<device_info><family name=""/><device name=""/><timing_model name=""/></device_info>)",
          R"(<design_info def_veri_version="" def_vhdl_version=""><top_module name=""/><top_vhdl_arch name=""/></design_info>)",
          R"(<constraint_info><inter_file name=""/></constraint_info>)", "<isf_info/>",
          "<ip_info/>", "<list/>"));
}

TEST_F(DomElement, AppendProcesses_NoTool_OmitTheAttribute) {
  FlowProcess flow;
  flow.name = "flow";
  SynthesisProcess synthesis{"syn", "", {}, {}, {}};
  database_.AppendFlowProcessToDOMElement(document_.root(), flow, kNamespace, kPrefix);
  database_.AppendSynthesisProcessToDOMElement(document_.root(), synthesis, kNamespace, kPrefix);
  EXPECT_THAT(ShowSortedChildren(ToXmlElement(*document_.root())),
              ElementsAre("<flow/>", "<syn/>"));
}

// Parameters.

TEST_F(DomElement, ParameterWriters_EveryType_IsWrittenAsText) {
  const std::pair<int, const char*> cases[] = {
      {0, R"(<param name="p" value="" value_type="e_string"/>)"},
      {1, R"(<param name="p" value="" value_type="e_bool"/>)"},
      {2, R"(<param name="p" value="" value_type="e_option"/>)"},
      {3, R"(<param name="p" value="" value_type="e_noarg"/>)"},
      {4, R"(<param name="p" value=""/>)"},
      {5, R"(<param name="p" value="" value_type=""/>)"},
      {7, R"(<param name="p" value="" value_type=""/>)"},
      {-1, R"(<param name="p" value="" value_type=""/>)"}};
  DOMElement* root = document_.root();
  for (const auto& [type, expected] : cases) {
    SCOPED_TRACE(type);
    const Parameter parameter("p", "", ParameterType(type));
    SynthesisProcess synthesis{"syn", "", {parameter}, {}, {}};
    database_.AppendProcessParameterToDOMElement(root, parameter, "param", kNamespace, kPrefix);
    EXPECT_EQ(Show(Appended().back()), expected);
    database_.AppendFlowProcessToDOMElement(root, ProcessWithMap("param", parameter), kNamespace,
                                            kPrefix);
    EXPECT_EQ(Show(Appended().back().Child("param")), expected);
    database_.AppendSynthesisProcessToDOMElement(root, synthesis, kNamespace, kPrefix);
    EXPECT_EQ(Show(Appended().back().Child("param")), expected);
  }
}

TEST_F(DomElement, AppendSynthesisProcess_KeepsTheOrderOfEachList) {
  const Parameter z("z", "1", kNoParameterType);
  const Parameter a("a", "2", kNoParameterType);
  SynthesisProcess process{"syn", "", {z, a}, {z, a, z}, {a}};
  database_.AppendSynthesisProcessToDOMElement(document_.root(), process, kNamespace, kPrefix);
  EXPECT_EQ(
      Show(OnlyAppended()),
      R"(<syn><param name="z" value="1"/><param name="a" value="2"/>)"
      R"(<dynparam name="z" value="1"/><dynparam name="a" value="2"/><dynparam name="z" value="1"/>)"
      R"(<defmacro name="a" value="2"/></syn>)");
}

TEST_F(DomElement, AppendFlowProcess_WritesEveryMapAtItsPosition) {
  FlowProcess process;
  process.name = "flow";
  process.parameter_maps = {
      {{"a", {"a", "1", kNoParameterType}}}, {{"b", {"b", "2", kNoParameterType}}}, {}};
  process.parameter_map_index = {{"second", 1}, {"first", 0}, {"empty", 2}};
  database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix);
  EXPECT_THAT(ShowSortedChildren(OnlyAppended()),
              ElementsAre(R"(<first name="a" value="1"/>)", R"(<second name="b" value="2"/>)"));
}

TEST_F(DomElement, AppendFlowProcess_WritesMapsInTheOrderOfTheirIndex) {
  FlowProcess process;
  process.name = "flow";
  std::vector<std::string> expected;
  for (std::int16_t i = 0; i < 20; ++i) {
    process.parameter_maps.push_back({{"p", {"p", "v", e_string}}});
    process.parameter_map_index["map" + std::to_string(i)] = i;
  }
  for (const auto& [name, position] : process.parameter_map_index) expected.push_back("t:" + name);
  database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix);
  EXPECT_EQ(ChildNames(OnlyAppended()), expected);
}

TEST_F(DomElement, AppendFlowProcess_WritesParametersInTheOrderOfTheirMap) {
  FlowProcess process = ProcessWithMap("param", {"p", "v", e_string});
  for (int i = 0; i < 20; ++i) {
    const std::string name = "p" + std::to_string(i);
    process.parameter_maps[0].emplace(name, Parameter(name, "v", e_string));
  }
  database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix);
  std::vector<std::string> written;
  for (const XmlElement& element : OnlyAppended().children) {
    written.push_back(element.attributes.at("name"));
  }
  std::vector<std::string> expected;
  for (const auto& [name, parameter] : process.parameter_maps[0]) expected.push_back(name);
  EXPECT_EQ(written, expected);
}

TEST_F(DomElement, AppendFlowProcess_PlainParametersAndPositionsWithoutAMap_ArePassedOver) {
  FlowProcess process = ProcessWithMap("param", {"p", "v", kNoParameterType});
  process.parameters.emplace_back("plain", "v", e_string);
  process.parameter_map_index["beyond"] = 1;
  process.parameter_map_index["before"] = -1;
  database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix);
  EXPECT_EQ(Show(OnlyAppended()), R"(<flow><param name="p" value="v"/></flow>)");
}

}  // namespace
