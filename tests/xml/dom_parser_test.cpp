#include "xml/dom_parser.h"

#include <ostream>

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>

#include "testing/files.h"
#include "testing/project_loading.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "testing/xml_tree.h"
#include "xml/dom.h"
#include "xml/error_handler.h"
#include "xml/input.h"
#include "xml/owned.h"
#include "xml/parser.h"

namespace {

using namespace projectdb::xml;
using namespace test_support;
using namespace projectdb;

/// The parser that the XML library gives to everybody.
Owned<xercesc::DOMLSParser> CreateLibraryParser() {
  return Owned<xercesc::DOMLSParser>(
      xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS")->createLSParser(
          xercesc::DOMImplementationLS::MODE_SYNCHRONOUS, nullptr));
}

/// What a parser makes of a text.
struct Parsed {
  Parsed(Owned<xercesc::DOMLSParser> used_parser, const std::string& text)
      : parser(std::move(used_parser)) {
    Set(*parser, xercesc::XMLUni::fgXercesUserAdoptsDOMDocument, true);
    parser->getDomConfig()->setParameter(xercesc::XMLUni::fgDOMErrorHandler, &errors);
    document = Parse(*parser, BytesInput(text, "file:///p.xml"));
  }

  KelProjectDbErrorHandler errors;
  Owned<xercesc::DOMLSParser> parser;
  Owned<xercesc::DOMDocument> document;
};

void RemoveText(xercesc::DOMNode& node) {
  xercesc::DOMNode* child = node.getFirstChild();
  while (child) {
    xercesc::DOMNode* const next = child->getNextSibling();
    if (child->getNodeType() == xercesc::DOMNode::TEXT_NODE ||
        child->getNodeType() == xercesc::DOMNode::CDATA_SECTION_NODE) {
      node.removeChild(child)->release();
    } else {
      RemoveText(*child);
    }
    child = next;
  }
}

std::string Numbered(const std::string& before, const std::string& after, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all.append(before).append(std::to_string(i)).append(after);
  return all;
}

struct Text {
  const char* name;
  std::string xml;
};

class DomParserOf : public testing::TestWithParam<Text> {
 protected:
  XmlPlatform platform_;
};

TEST_P(DomParserOf, Parse_GivesTheDocumentThatTheXmlLibraryGivesButItsTextAgainAndAgain) {
  const Parsed parsed(Owned<xercesc::DOMLSParser>(new DomParser), GetParam().xml);
  const Parsed expected(CreateLibraryParser(), GetParam().xml);
  ASSERT_FALSE(expected.errors.failed);
  EXPECT_FALSE(parsed.errors.failed);
  RemoveText(*expected.document->getDocumentElement());
  EXPECT_TRUE(parsed.document->isEqualNode(expected.document.get()));
  EXPECT_EQ(Utf8(parsed.document->getDocumentURI()), Utf8(expected.document->getDocumentURI()));
  EXPECT_EQ(Utf8(parsed.document->getInputEncoding()), Utf8(expected.document->getInputEncoding()));
  const auto again = Parse(*parsed.parser, BytesInput(GetParam().xml, "file:///p.xml"));
  EXPECT_FALSE(parsed.errors.failed);
  EXPECT_TRUE(again->isEqualNode(parsed.document.get()));
}

TEST_P(DomParserOf, Parse_KeepsTheAttributesInTheOrderOfTheXmlLibrary) {
  const Parsed parsed(Owned<xercesc::DOMLSParser>(new DomParser), GetParam().xml);
  const Parsed expected(CreateLibraryParser(), GetParam().xml);
  const auto* attributes = parsed.document->getDocumentElement()->getAttributes();
  const auto* expected_attributes = expected.document->getDocumentElement()->getAttributes();
  ASSERT_EQ(attributes->getLength(), expected_attributes->getLength());
  for (XMLSize_t i = 0; i < attributes->getLength(); ++i) {
    EXPECT_EQ(Utf8(attributes->item(i)->getNodeName()),
              Utf8(expected_attributes->item(i)->getNodeName()));
  }
}

// More levels, attributes, names and prefixes than any that are handled together.
INSTANTIATE_TEST_SUITE_P(
    Texts, DomParserOf,
    testing::Values(
        Text{"a small file", CompleteProjectXml()}, Text{"a root alone", "<a/>"},
        Text{"many attributes",
             "<a z=\"&lt;\" empty=\"\"" + Numbered(" b", "=\"v &amp; \xC3\xA9\"", 1000) + "/>"},
        Text{"many attributes below the root", "<a><b" + Numbered(" b", "='v'", 100) +
                                                   "><c/></b><d" + Numbered(" b", "='v'", 100) +
                                                   "/>text</a>"},
        Text{"text, blanks and references between tags",
             "<a>\n t&lt;&#65;<b/> <![CDATA[ <c/> ]]><d>u</d> </a>\n"},
        Text{"many attributes with prefixes",
             "<a xmlns='urn:a' xmlns:q='urn:q' xmlns:p='urn:p' xml:lang='la'" +
                 Numbered(" p:b", "='v'", 50) + Numbered(" q:b", "='v'", 50) +
                 Numbered(" b", "='v'", 50) + "/>"},
        Text{"many prefixes", "<a" + Numbered(" xmlns:p", "='urn:p'", 100) + ">" +
                                  Repeated("<a p99:b='v'>", 200) + "<p98:a/>" +
                                  Repeated("</a>", 200) + "</a>"},
        Text{"many names", "<a>" + Numbered("<b", "/>", 20000) + "</a>"},
        Text{"elements in a namespace, deeply nested",
             "<a xmlns='urn:a'>" + Repeated("<b>", 300) + "<c/>" + Repeated("</b>", 300) + "</a>"},
        Text{"prefixes in use deep below their declaration",
             "<a xmlns:p='urn:p' xmlns:q='urn:q'>" + Repeated("<p:b>", 300) + "<q:c p:d='v'/><e/>" +
                 Repeated("</p:b>", 300) + "<q:c/></a>"},
        Text{"prefixes declared anew deep below",
             "<a xmlns='urn:1' xmlns:p='urn:1'>" + Repeated("<p:b>", 100) +
                 "<c xmlns='urn:2' xmlns:p='urn:2'>" +
                 Repeated("<p:b><b xmlns='urn:3'><p:b/></b>", 100) + "<d xmlns=''>" +
                 Repeated("<b><p:b/>", 100) + Repeated("</b>", 100) + "</d>" +
                 Repeated("</p:b>", 100) + "</c><p:c/>" + Repeated("</p:b>", 100) + "</a>"},
        Text{"prefixes that are gone by the time of others",
             "<a>" +
                 Repeated("<b>" + Repeated("<p:b xmlns:p='urn:1'>", 70) + Repeated("</p:b>", 70) +
                              Repeated("<b xmlns='urn:2'>", 70) + Repeated("</b>", 70) +
                              "<p:b xmlns:p='urn:3'/>",
                          70) +
                 Repeated("</b>", 70) + "</a>"}),
    ByName());

TEST(DomParserErrors, Parse_TextThatIsNoDocument_ReportsAnError) {
  const XmlPlatform platform;
  const std::string many = Numbered(" b", "='v'", 100);
  const std::string open = Repeated("<b>", 70);
  const std::pair<const char*, std::string> cases[] = {
      {"an attribute twice among many", "<a" + many + " b7='w'/>"},
      {"an attribute twice by two prefixes",
       "<a xmlns:p='urn:p' xmlns:q='urn:p'" + Numbered(" p:b", "='v'", 100) + " q:b7='w'/>"},
      {"a prefix that is not declared", "<a" + many + " p:c='v'/>"},
      {"a prefix that is no longer declared deep below",
       "<a><p:b xmlns:p='urn:p'/>" + open + "<p:b/>" + Repeated("</b>", 70) + "</a>"},
      {"an end without a start", "<a>" + open + Repeated("</b>", 71) + "</a>"},
      {"another end deep below", "<a>" + open + "</c>"}};
  for (const auto& [name, text] : cases) {
    const Parsed parsed(Owned<xercesc::DOMLSParser>(new DomParser), text);
    EXPECT_TRUE(parsed.errors.failed) << name;
  }
}

/// The attribute "added" of each element below one.
std::vector<std::string> AddedIn(const xercesc::DOMElement* parent) {
  std::vector<std::string> added;
  for (const auto* element : ChildElements(parent)) {
    added.push_back(Utf8(element->getAttribute(u"added")));
  }
  return added;
}

TEST(DomParserWithSchema, Parse_AttributeThatTheSchemaAdds_IsInTheDocument) {
  const XmlPlatform platform;
  const TemporaryDirectory directory;
  WriteFile(directory / "s.xsd",
            "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\">"
            "<xs:element name=\"project\"><xs:complexType>"
            "<xs:attribute name=\"added\" default=\"here\"/><xs:anyAttribute"
            " processContents=\"skip\"/></xs:complexType></xs:element></xs:schema>");
  WriteFile(directory / "p.xml", "<project" + Numbered(" b", "='v'", 100) + "/>");
  const auto document = ParseProjectXMLFile(directory / "p.xml", directory / "s.xsd");
  ASSERT_NE(document, nullptr);
  const auto* root = document->getDocumentElement();
  EXPECT_EQ(Utf8(root->getAttribute(u"added")), "here");
  EXPECT_EQ(root->getAttributes()->getLength(), 101U);
}

TEST(DomParserWithSchema, Parse_ElementsOfOneNameAndTwoTypes_HaveTheAttributesOfTheirTypes) {
  const XmlPlatform platform;
  const TemporaryDirectory directory;
  const auto parent = [](const std::string& name, const std::string& attributes) {
    return "<xs:element name=\"" + name +
           "\"><xs:complexType><xs:sequence><xs:element name=\"e\" maxOccurs=\"unbounded\">"
           "<xs:complexType>" +
           attributes +
           "</xs:complexType></xs:element></xs:sequence></xs:complexType></xs:element>";
  };
  WriteFile(directory / "s.xsd",
            "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"><xs:element name=\"project\">"
            "<xs:complexType><xs:sequence>" +
                parent("plain", "") +
                parent("full", "<xs:attribute name=\"added\" default=\"here\"/>") +
                "</xs:sequence></xs:complexType></xs:element></xs:schema>");
  WriteFile(directory / "p.xml",
            "<project><plain><e/><e/><e/></plain><full><e/><e added=\"v\"/><e/></full></project>");
  const auto document = ParseProjectXMLFile(directory / "p.xml", directory / "s.xsd");
  ASSERT_NE(document, nullptr);
  const auto* root = document->getDocumentElement();
  EXPECT_THAT(AddedIn(root->getFirstElementChild()), ElementsAre("", "", ""));
  EXPECT_THAT(AddedIn(root->getLastElementChild()), ElementsAre("here", "v", "here"));
}

TEST(DomParserWithSchema, Parse_ElementsWithIds_AreFoundByThem) {
  const XmlPlatform platform;
  const TemporaryDirectory directory;
  WriteFile(directory / "s.xsd",
            "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"><xs:element name=\"project\">"
            "<xs:complexType><xs:sequence><xs:element name=\"e\" maxOccurs=\"unbounded\">"
            "<xs:complexType><xs:attribute name=\"key\" type=\"xs:ID\"/></xs:complexType>"
            "</xs:element></xs:sequence></xs:complexType></xs:element></xs:schema>");
  WriteFile(directory / "p.xml", "<project><e key=\"a\"/><e key=\"b\"/><e key=\"c\"/></project>");
  const auto document = ParseProjectXMLFile(directory / "p.xml", directory / "s.xsd");
  ASSERT_NE(document, nullptr);
  const auto* root = document->getDocumentElement();
  EXPECT_EQ(document->getElementById(u"a"), root->getFirstElementChild());
  EXPECT_EQ(document->getElementById(u"c"), root->getLastElementChild());
  EXPECT_TRUE(root->getLastElementChild()->getAttributeNode(u"key")->isId());
}

TEST(DomParserWithSchema, Parse_ElementsThatAreNotValidated_HaveTheDefaultsOfTheirDeclaration) {
  const XmlPlatform platform;
  const TemporaryDirectory directory;
  WriteFile(directory / "s.xsd",
            "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\">"
            "<xs:element name=\"e\"><xs:complexType><xs:attribute name=\"added\" default=\"here\"/>"
            "<xs:attribute name=\"other\"/></xs:complexType></xs:element>"
            "<xs:element name=\"project\"><xs:complexType><xs:sequence>"
            "<xs:element ref=\"e\" maxOccurs=\"unbounded\"/>"
            "<xs:any processContents=\"skip\" minOccurs=\"0\" maxOccurs=\"unbounded\"/>"
            "</xs:sequence></xs:complexType></xs:element></xs:schema>");
  WriteFile(directory / "p.xml",
            "<project><e/><e added=\"v\"/><s><e/><e other=\"v\"/><e/></s></project>");
  const auto document = ParseProjectXMLFile(directory / "p.xml", directory / "s.xsd");
  ASSERT_NE(document, nullptr);
  EXPECT_THAT(AddedIn(document->getDocumentElement()->getLastElementChild()),
              ElementsAre("here", "here", "here"));
}

TEST(DomParserWithSchema, Parse_ElementDeepBelowItsNamespace_IsValidatedInIt) {
  const XmlPlatform platform;
  const TemporaryDirectory directory;
  WriteFile(directory / "s.xsd",
            "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" targetNamespace=\"urn:s\""
            " xmlns=\"urn:s\" elementFormDefault=\"qualified\"><xs:element name=\"b\">"
            "<xs:complexType><xs:sequence><xs:element ref=\"b\" minOccurs=\"0\"/>"
            "</xs:sequence></xs:complexType></xs:element></xs:schema>");
  const std::string start = "<p:b xmlns:p='urn:s'>" + Repeated("<p:b>", 200);
  const std::string end = Repeated("</p:b>", 200) + "</p:b>";
  WriteFile(directory / "good.xml", start + "<p:b/>" + end);
  WriteFile(directory / "bad.xml", start + "<p:c/>" + end);
  EXPECT_NE(ParseProjectXMLFile(directory / "good.xml", directory / "s.xsd"), nullptr);
  EXPECT_EQ(ParseProjectXMLFile(directory / "bad.xml", directory / "s.xsd"), nullptr);
}

}  // namespace
