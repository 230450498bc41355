#include <cstdint>
#include <functional>
#include <stdexcept>

#include <projectdb/project_db.h>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/dom/DOMNodeList.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "testing/child_process.h"
#include "testing/dom_document.h"
#include "testing/test.h"
#include "testing/xml_tree.h"

namespace {

using namespace projectdb;
using namespace test_support;
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

const Writer kWriters[] = {
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
    return GetParam().append(database_, target, text, "named");
  }
};

INSTANTIATE_TEST_SUITE_P(Writers, EveryDomElement, testing::ValuesIn(kWriters), ByName());

TEST_P(EveryDomElement, AppendsTheElementWithItsAttributesAndChildrenBehindWhatIsThere) {
  document_.root()->appendChild(document_.get()->createElement(u"former"));
  EXPECT_TRUE(Append(ToRoot()));
  EXPECT_TRUE(Append(ToRoot()));
  const std::string expected = GetParam().expected;
  EXPECT_EQ(Show(ToXmlElement(*document_.root())),
            "<root><former/>" + expected + expected + "</root>");
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
      if (writer.append(KelProjectDatabase(), {nullptr}, "x", "named")) accepting += writer.name;
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

TEST_P(EveryDomElement, ElementsHaveTheNamespaceAndThePrefixAndAttributesNone) {
  Append(ToRoot());
  const xercesc::DOMNodeList& elements = *document_.root()->getElementsByTagName(u"*");
  ASSERT_GT(elements.getLength(), 0U);
  for (XMLSize_t i = 0; i < elements.getLength(); ++i) {
    const xercesc::DOMNode& element = *elements.item(i);
    EXPECT_EQ(Utf8(element.getNamespaceURI()), "urn:test");
    EXPECT_THAT(Utf8(element.getNodeName()), StartsWith("t:"));
    for (XMLSize_t j = 0; j < element.getAttributes()->getLength(); ++j) {
      EXPECT_EQ(element.getAttributes()->item(j)->getNamespaceURI(), nullptr);
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
  const std::string text = "Grüß \U0001F600 \"<&>\t\n";
  Append(ToRoot(), text);
  EXPECT_NE(Show(OnlyAppended()).find(text), std::string::npos);
}

TEST_P(EveryDomElement, TextThatXmlCannotCarry_ThrowsAndAppendsNothing) {
  for (const char* text : {"\x01", "\xFF", "\xED\xA0\x80", "\xEF\xBF\xBE", "\xE2\x82"}) {
    EXPECT_THROW(Append(ToRoot(), text), std::runtime_error) << testing::PrintToString(text);
  }
  EXPECT_THAT(Appended(), IsEmpty());
}

const Writer kItemWriter = {"AppendDesignFileList, items",
                            [](auto& db, auto& to, auto& text, auto* tag) {
                              std::vector<DesignFile> files = TwoFiles(text);
                              return db.AppendDesignFileListToDOMElement(
                                  to.parent, "list", tag, files, to.namespace_uri, to.prefix);
                            },
                            "", Naming::kBelow};

const Writer kMapWriter = {
    "AppendFlowProcess, map",
    [](auto& db, auto& to, auto& text, auto* tag) {
      const FlowProcess process = ProcessWithMap(tag, Parameter("p", text, e_string));
      return db.AppendFlowProcessToDOMElement(to.parent, process, to.namespace_uri, to.prefix);
    },
    "", Naming::kBelow};

/// An operation whose element, or an element below it, is named by its caller.
class NamedDomElement : public DomElement, public testing::WithParamInterface<Writer> {
 protected:
  bool Append(const char* tag) const { return GetParam().append(database_, ToRoot(), "x", tag); }
};

std::vector<Writer> NamingWriters() {
  std::vector<Writer> writers = {kItemWriter, kMapWriter};
  for (const Writer& writer : kWriters) {
    if (writer.naming != Naming::kFixed) writers.push_back(writer);
  }
  return writers;
}

INSTANTIATE_TEST_SUITE_P(Writers, NamedDomElement, testing::ValuesIn(NamingWriters()), ByName());

constexpr const char* kNoNames[] = {"",   "x:y", ":a",  "a:",   "a b", "1a",
                                    "-a", "<",   "a/b", "\xFF", "\x01"};

TEST_P(NamedDomElement, Name_IsThatOfTheElement) {
  for (const std::string tag : {"some_tag-1.x", "Größe"}) {
    ASSERT_TRUE(Append(tag.c_str()));
    const XmlElement element = Appended().back();
    const bool is_below = GetParam().naming == Naming::kBelow;
    EXPECT_EQ((is_below ? element.children.at(0) : element).name, "t:" + tag);
  }
}

TEST_P(NamedDomElement, NullTag_ReturnsFalseAndAppendsNothing) {
  if (GetParam().naming != Naming::kByTag) return;
  EXPECT_FALSE(Append(nullptr));
  EXPECT_THAT(Appended(), IsEmpty());
}

TEST_P(NamedDomElement, TagThatIsNoName_ReturnsFalseAndAppendsNothing) {
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
  EXPECT_TRUE(kItemWriter.append(database_, ToRoot(), "x", nullptr));
  EXPECT_EQ(Show(OnlyAppended()), "<list/>");
}

TEST_F(DomElement, AppendProcesses_NoTool_OmitTheAttribute) {
  FlowProcess flow;
  flow.name = "flow";
  SynthesisProcess synthesis{"syn", "", {}, {}, {}};
  database_.AppendFlowProcessToDOMElement(document_.root(), flow, kNamespace, kPrefix);
  database_.AppendSynthesisProcessToDOMElement(document_.root(), synthesis, kNamespace, kPrefix);
  EXPECT_EQ(Show(ToXmlElement(*document_.root())), "<root><flow/><syn/></root>");
}

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

TEST_F(DomElement, AppendFlowProcess_WritesMapsInTheOrderOfTheirIndexEachAtItsPosition) {
  FlowProcess process;
  process.name = "flow";
  for (std::int16_t i = 0; i < 20; ++i) {
    const std::string name = "map" + std::to_string(i);
    process.parameter_maps.push_back({{name, {name, "v", kNoParameterType}}});
    process.parameter_map_index[name] = i;
  }
  std::string expected;
  for (const auto& [name, position] : process.parameter_map_index) {
    expected.append("<").append(name).append(" name=\"").append(name).append("\" value=\"v\"/>");
  }
  database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix);
  EXPECT_EQ(Show(OnlyAppended()), "<flow>" + expected + "</flow>");
}

TEST_F(DomElement, AppendFlowProcess_WritesParametersInTheOrderOfTheirMap) {
  FlowProcess process = ProcessWithMap("param", {"p", "v", e_string});
  for (int i = 0; i < 20; ++i) {
    const std::string name = "p" + std::to_string(i);
    process.parameter_maps[0].emplace(name, Parameter(name, "v", e_string));
  }
  database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix);
  const std::vector<XmlElement> written = OnlyAppended().children;
  ASSERT_EQ(written.size(), 21U);
  std::size_t next = 0;
  for (const auto& [name, parameter] : process.parameter_maps[0]) {
    EXPECT_EQ(written[next++].attributes.at("name"), name);
  }
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
