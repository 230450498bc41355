#include <cstdint>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
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

using projectdb::DesignConstraint;
using projectdb::DesignFile;
using projectdb::DesignInfo;
using projectdb::DesignISF;
using projectdb::DeviceInfo;
using projectdb::FlowProcess;
using projectdb::IP;
using projectdb::IPInfo;
using projectdb::IPSrcFile;
using projectdb::KelProjectDatabase;
using projectdb::Parameter;
using projectdb::ParameterType;
using projectdb::SynthesisProcess;
using test_support::AllElements;
using test_support::InChildProcess;
using test_support::Show;
using test_support::ShowSortedChildren;
using test_support::ToXmlElement;
using test_support::XmlElement;
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
       return db.AppendProcessParameterToDOMElement(to.parent,
                                                    Parameter("p", text, projectdb::e_option),
                                                    "entry", to.namespace_uri, to.prefix);
     },
     R"(<entry name="p" value="x" value_type="e_option"/>)"},
    {"AppendFlowProcess",
     [](auto& db, auto& to, auto& text) {
       FlowProcess process = ProcessWithMap("param", Parameter("p", text, projectdb::e_bool));
       process.tool_name = "tool";
       return db.AppendFlowProcessToDOMElement(to.parent, process, to.namespace_uri, to.prefix);
     },
     R"(<flow tool_name="tool"><param name="p" value="x" value_type="e_bool"/></flow>)"},
    {"AppendSynthesisProcess",
     [](auto& db, auto& to, auto& text) {
       SynthesisProcess process{"syn",
                                "tool",
                                {{"z", "1", projectdb::e_string}, {"a", "", projectdb::e_noarg}},
                                {{"D", "2", projectdb::e_bool}},
                                {{"M", text, projectdb::kNoParameterType}}};
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

  const test_support::DomDocument document_;
  const KelProjectDatabase database_;
};

class EveryDomElement : public DomElement, public testing::WithParamInterface<Writer> {
 protected:
  bool Append(const Target& target, const std::string& text = "x") const {
    return GetParam().append(database_, target, text);
  }
};

INSTANTIATE_TEST_SUITE_P(Writers, EveryDomElement, testing::ValuesIn(kWriters));

TEST_P(EveryDomElement, ReturnsTrue) { EXPECT_TRUE(Append(ToRoot())); }

TEST_P(EveryDomElement, AppendsTheElementWithItsAttributesAndChildren) {
  Append(ToRoot());
  EXPECT_EQ(Show(OnlyAppended()), GetParam().expected);
}

TEST_P(EveryDomElement, AppendsBehindWhatIsThere) {
  document_.root()->appendChild(document_.get()->createElement(u"former"));
  Append(ToRoot());
  EXPECT_EQ(Show(Appended().back()), GetParam().expected);
}

TEST_P(EveryDomElement, AppendsAgainAtTheNextCall) {
  Append(ToRoot());
  Append(ToRoot());
  EXPECT_EQ(Appended().size(), 2U);
}

TEST_P(EveryDomElement, AppendsToAnElementThatIsNotInTheTree) {
  DOMElement* detached = document_.get()->createElement(u"detached");
  ASSERT_TRUE(Append({detached}));
  EXPECT_EQ(Show(ToXmlElement(*detached).children.at(0)), GetParam().expected);
}

TEST_P(EveryDomElement, NullParent_ReturnsFalse) { EXPECT_FALSE(Append({nullptr})); }

TEST_P(EveryDomElement, NullParentAndTextThatXmlCannotCarry_ReturnsFalse) {
  EXPECT_FALSE(Append({nullptr}, "\x01"));
}

/// Runs work in a process in which the XML library is not in use.
template <typename Work>
std::string WithoutXmlPlatform(Work work) {
  return InChildProcess([&] {
    while (XMLPlatformUtils::fgMemoryManager) XMLPlatformUtils::Terminate();
    return work();
  });
}

class EveryDomElementWithoutPlatform : public testing::TestWithParam<Writer> {
 protected:
  /// What the operation gives with a null parent.
  std::string AppendToNull() const {
    return GetParam().append(database_, {nullptr}, "x") ? "true" : "false";
  }

  const KelProjectDatabase database_;
};

INSTANTIATE_TEST_SUITE_P(Writers, EveryDomElementWithoutPlatform, testing::ValuesIn(kWriters));

TEST_P(EveryDomElementWithoutPlatform, NullParentBeforeInitialisation_ReturnsFalse) {
  EXPECT_EQ(WithoutXmlPlatform([this] { return AppendToNull(); }), "false");
}

TEST_P(EveryDomElementWithoutPlatform, NullParentAfterTermination_ReturnsFalse) {
  EXPECT_EQ(WithoutXmlPlatform([this] {
              XMLPlatformUtils::Initialize();
              XMLPlatformUtils::Terminate();
              return AppendToNull();
            }),
            "false");
}

TEST_P(EveryDomElement, AllElementsAreInTheNamespace) {
  Append(ToRoot());
  const XmlElement appended = OnlyAppended();
  for (const XmlElement* element : AllElements(appended)) {
    EXPECT_EQ(element->namespace_uri, "urn:test") << element->name;
  }
}

TEST_P(EveryDomElement, AllElementsHaveThePrefix) {
  Append(ToRoot());
  const XmlElement appended = OnlyAppended();
  for (const XmlElement* element : AllElements(appended)) {
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

TEST_P(EveryDomElement, NullPrefix_GivesElementsOfTheNamespaceWithoutPrefix) {
  ASSERT_TRUE(Append({document_.root(), kNamespace, nullptr}));
  const XmlElement appended = OnlyAppended();
  EXPECT_EQ(appended.namespace_uri, "urn:test");
  EXPECT_EQ(appended.name.find(':'), std::string::npos);
  EXPECT_EQ(Show(appended), GetParam().expected);
}

TEST_P(EveryDomElement, NullNamespace_GivesElementsWithoutNamespaceAndPrefix) {
  ASSERT_TRUE(Append({document_.root(), nullptr, kPrefix}));
  const XmlElement appended = OnlyAppended();
  EXPECT_EQ(appended.namespace_uri, "");
  EXPECT_EQ(appended.name.find(':'), std::string::npos);
  EXPECT_EQ(Show(appended), GetParam().expected);
}

TEST_P(EveryDomElement, NullNamespaceAndPrefix_GivesElementsWithoutBoth) {
  ASSERT_TRUE(Append({document_.root(), nullptr, nullptr}));
  EXPECT_EQ(OnlyAppended().namespace_uri, "");
}

TEST_P(EveryDomElement, PrefixThatNoElementCanHave_ReturnsFalse) {
  EXPECT_FALSE(Append({document_.root(), kNamespace, u"not a name"}));
}

TEST_P(EveryDomElement, PrefixThatNoElementCanHaveAndTextThatXmlCannotCarry_ReturnsFalse) {
  EXPECT_FALSE(Append({document_.root(), kNamespace, u"not a name"}, "\x01"));
}

TEST_P(EveryDomElement, PrefixThatNoElementCanHave_AppendsNothing) {
  Append({document_.root(), kNamespace, u"not a name"});
  EXPECT_THAT(Appended(), IsEmpty());
}

TEST_P(EveryDomElement, TextOutsideAscii_IsTheSameInTheDocument) {
  const std::string text = "Gr\xC3\xBC\xC3\x9F \xF0\x9F\x98\x80 \"<&>\t\n";
  Append(ToRoot(), text);
  EXPECT_NE(Show(OnlyAppended()).find(text), std::string::npos);
}

TEST_P(EveryDomElement, TextThatXmlCannotCarry_Throws) {
  for (const char* text : {"\x01", "\xFF", "\xED\xA0\x80", "\xEF\xBF\xBE", "\xE2\x82"}) {
    EXPECT_THROW(Append(ToRoot(), text), std::runtime_error) << testing::PrintToString(text);
  }
}

TEST_P(EveryDomElement, TextThatXmlCannotCarry_AppendsNothing) {
  EXPECT_ANY_THROW(Append(ToRoot(), "\x01"));
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
       return db.AppendProcessParameterToDOMElement(
           to.parent, Parameter("p", "v", projectdb::e_string), tag, to.namespace_uri, to.prefix);
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
      const FlowProcess process = ProcessWithMap(tag, Parameter("p", "v", projectdb::e_string));
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
  ASSERT_TRUE(Append("some_tag-1.x"));
  EXPECT_EQ(OnlyAppended().name, "t:some_tag-1.x");
}

TEST_P(TaggedDomElement, TagOutsideAscii_NamesTheElement) {
  ASSERT_TRUE(
      Append("Gr\xC3\xB6\xC3\x9F"
             "e"));
  EXPECT_EQ(OnlyAppended().name,
            "t:Gr\xC3\xB6\xC3\x9F"
            "e");
}

TEST_P(DomElementWithTag, NullTag_ReturnsFalse) { EXPECT_FALSE(Append(nullptr)); }

TEST_P(DomElementWithTag, NullTag_AppendsNothing) {
  Append(nullptr);
  EXPECT_THAT(Appended(), IsEmpty());
}

TEST_P(BadlyTaggedDomElement, TagThatIsNoName_ReturnsFalse) {
  for (const char* tag : kNoNames) EXPECT_FALSE(Append(tag)) << testing::PrintToString(tag);
}

TEST_P(BadlyTaggedDomElement, TagThatIsNoName_AppendsNothing) {
  for (const char* tag : kNoNames) Append(tag);
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
    process.parameter_maps.push_back({{"p", {"p", "\x01", projectdb::e_string}}});
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
    FlowProcess process = ProcessWithMap("param", {"p", "v", projectdb::kNoParameterType});
    process.parameter_maps.emplace_back();
    process.parameter_map_index[name] = 1;
    EXPECT_TRUE(
        database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix))
        << testing::PrintToString(name);
    EXPECT_EQ(Show(Appended().back()), R"(<flow><param name="p" value="v"/></flow>)");
  }
}

TEST_F(DomElement, AppendDesignFileList_NoFiles_ItemTagMayBeAnything) {
  std::vector<DesignFile> files;
  for (const char* tag : kNoNames) {
    EXPECT_TRUE(database_.AppendDesignFileListToDOMElement(document_.root(), "list", tag, files,
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

struct TypeCase {
  int type;
  const char* expected;
};

void PrintTo(const TypeCase& c, std::ostream* out) { *out << "type " << c.type; }

class DomElementOfParameterType : public DomElement, public testing::WithParamInterface<TypeCase> {
 protected:
  const Parameter parameter_{"p", "", ParameterType(GetParam().type)};
};

INSTANTIATE_TEST_SUITE_P(
    Types, DomElementOfParameterType,
    testing::Values(TypeCase{0, R"(<param name="p" value="" value_type="e_string"/>)"},
                    TypeCase{1, R"(<param name="p" value="" value_type="e_bool"/>)"},
                    TypeCase{2, R"(<param name="p" value="" value_type="e_option"/>)"},
                    TypeCase{3, R"(<param name="p" value="" value_type="e_noarg"/>)"},
                    TypeCase{4, R"(<param name="p" value=""/>)"},
                    TypeCase{5, R"(<param name="p" value="" value_type=""/>)"},
                    TypeCase{7, R"(<param name="p" value="" value_type=""/>)"},
                    TypeCase{-1, R"(<param name="p" value="" value_type=""/>)"}));

TEST_P(DomElementOfParameterType, AppendProcessParameter_WritesTheTypeAsText) {
  database_.AppendProcessParameterToDOMElement(document_.root(), parameter_, "param", kNamespace,
                                               kPrefix);
  EXPECT_EQ(Show(OnlyAppended()), GetParam().expected);
}

TEST_P(DomElementOfParameterType, AppendFlowProcess_WritesTheTypeAsText) {
  database_.AppendFlowProcessToDOMElement(document_.root(), ProcessWithMap("param", parameter_),
                                          kNamespace, kPrefix);
  EXPECT_EQ(Show(OnlyAppended().Child("param")), GetParam().expected);
}

TEST_P(DomElementOfParameterType, AppendSynthesisProcess_WritesTheTypeAsText) {
  SynthesisProcess process{"syn", "", {parameter_}, {}, {}};
  database_.AppendSynthesisProcessToDOMElement(document_.root(), process, kNamespace, kPrefix);
  EXPECT_EQ(Show(OnlyAppended().Child("param")), GetParam().expected);
}

TEST_F(DomElement, AppendSynthesisProcess_KeepsTheOrderOfEachList) {
  const Parameter z("z", "1", projectdb::kNoParameterType);
  const Parameter a("a", "2", projectdb::kNoParameterType);
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
  process.parameter_maps = {{{"a", {"a", "1", projectdb::kNoParameterType}}},
                            {{"b", {"b", "2", projectdb::kNoParameterType}}},
                            {}};
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
    process.parameter_maps.push_back({{"p", {"p", "v", projectdb::e_string}}});
    process.parameter_map_index["map" + std::to_string(i)] = i;
  }
  for (const auto& [name, position] : process.parameter_map_index) expected.push_back("t:" + name);
  database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix);
  EXPECT_EQ(test_support::ChildNames(OnlyAppended()), expected);
}

TEST_F(DomElement, AppendFlowProcess_WritesParametersInTheOrderOfTheirMap) {
  FlowProcess process = ProcessWithMap("param", {"p", "v", projectdb::e_string});
  for (int i = 0; i < 20; ++i) {
    const std::string name = "p" + std::to_string(i);
    process.parameter_maps[0].emplace(name, Parameter(name, "v", projectdb::e_string));
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

TEST_F(DomElement, AppendFlowProcess_PlainParameters_AreNotWritten) {
  FlowProcess process;
  process.name = "flow";
  process.parameters.emplace_back("p", "v", projectdb::e_string);
  database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix);
  EXPECT_EQ(Show(OnlyAppended()), "<flow/>");
}

TEST_F(DomElement, AppendFlowProcess_PositionWithoutAMap_IsPassedOver) {
  FlowProcess process = ProcessWithMap("param", {"p", "v", projectdb::e_string});
  process.parameter_map_index["beyond"] = 1;
  process.parameter_map_index["before"] = -1;
  database_.AppendFlowProcessToDOMElement(document_.root(), process, kNamespace, kPrefix);
  EXPECT_EQ(OnlyAppended().children.size(), 1U);
}

}  // namespace
