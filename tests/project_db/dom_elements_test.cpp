#include <cstdint>
#include <functional>
#include <stdexcept>

#include <projectdb/project_db.h>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/dom/DOMNodeList.hpp>

#include "testing/dom_document.h"
#include "testing/test.h"
#include "testing/xml_tree.h"
#include "tests/project_db/dom_writers.h"

namespace {

using namespace projectdb;
using namespace test_support;
using namespace test_support::dom_writers;

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
