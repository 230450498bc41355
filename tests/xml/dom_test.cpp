#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMComment.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMProcessingInstruction.hpp>
#include <xercesc/dom/DOMText.hpp>

#include "base/failure.h"
#include "testing/dom_document.h"
#include "testing/test.h"
#include "testing/xml_tree.h"
#include "xml/dom.h"

namespace {

using namespace projectdb;
using namespace projectdb::xml;
using namespace test_support;
using xercesc::DOMElement;

constexpr char16_t kNamespaceOfNodes[] = u"urn:one";
constexpr char16_t kOtherNamespace[] = u"urn:two";

class Dom : public testing::Test {
 protected:
  /// Appends an element in a namespace, or in none.
  DOMElement* Append(DOMElement* parent, const char16_t* namespace_uri,
                     const char16_t* name) const {
    DOMElement* child = document_.get()->createElementNS(namespace_uri, name);
    parent->appendChild(child);
    return child;
  }

  DOMElement* root() const { return document_.root(); }

  const DomDocument document_;
};

template <typename Elements>
std::vector<std::string> NamesOf(const Elements& elements) {
  std::vector<std::string> names;
  for (const DOMElement* element : elements) {
    // NOLINTNEXTLINE(performance-inefficient-vector-operation): not all tell their number.
    names.push_back(Utf8(element->getNodeName()));
  }
  return names;
}

TEST_F(Dom, ChildElements_GivesThemInDocumentOrderWithoutWhatIsNoElementOrNoChild) {
  EXPECT_THAT(NamesOf(ChildElements(root())), IsEmpty());
  root()->appendChild(document_.get()->createTextNode(u"text"));
  EXPECT_THAT(NamesOf(ChildElements(root())), IsEmpty());
  DOMElement* first = Append(root(), nullptr, u"z");
  EXPECT_THAT(NamesOf(ChildElements(first)), IsEmpty());
  root()->appendChild(document_.get()->createComment(u"comment"));
  root()->appendChild(document_.get()->createProcessingInstruction(u"target", u"data"));
  Append(root(), nullptr, u"a");
  Append(root(), nullptr, u"z");
  root()->appendChild(document_.get()->createTextNode(u" "));
  EXPECT_THAT(NamesOf(ChildElements(root())), ElementsAre("z", "a", "z"));
  EXPECT_THAT(NamesOf(ChildElements(first)), IsEmpty());
  Append(first, nullptr, u"grandchild");
  EXPECT_THAT(NamesOf(ChildElements(root())), ElementsAre("z", "a", "z"));
}

TEST_F(Dom, DescendantElements_FindsThemAtAnyDepthInDocumentOrder) {
  const auto append = [&](DOMElement* parent, const char16_t* number) {
    DOMElement* item = Append(parent, kNamespaceOfNodes, u"item");
    item->setAttribute(u"number", number);
    return item;
  };
  DOMElement* wrapper = Append(root(), nullptr, u"wrapper");
  DOMElement* inner = append(wrapper, u"1");
  append(Append(inner, nullptr, u"wrapper"), u"2");
  append(wrapper, u"3");
  append(root(), u"4");
  std::vector<std::string> numbers;
  for (const DOMElement* item : DescendantElements(root(), kNamespaceOfNodes, u"item")) {
    numbers.push_back(Utf8(item->getAttribute(u"number")));
  }
  EXPECT_THAT(numbers, ElementsAre("1", "2", "3", "4"));
}

TEST_F(Dom, DescendantElements_SelectsByNamespaceAndWholeLocalName) {
  const DOMElement* first = Append(root(), kNamespaceOfNodes, u"a:item");
  const DOMElement* second = Append(root(), kNamespaceOfNodes, u"b:item");
  Append(root(), kOtherNamespace, u"item");
  Append(root(), u"urn:one/more", u"item");
  Append(root(), nullptr, u"item");
  Append(root(), kNamespaceOfNodes, u"items");
  Append(root(), kNamespaceOfNodes, u"item:other");
  root()->appendChild(document_.get()->createElement(u"item"));  // Of no namespace support.
  EXPECT_THAT(DescendantElements(root(), kNamespaceOfNodes, u"item"), ElementsAre(first, second));
}

TEST_F(Dom, DescendantElements_LeavesOutTheElementAndWhatIsBesideAndAboveIt) {
  DOMElement* first = Append(root(), kNamespaceOfNodes, u"item");
  const DOMElement* within = Append(first, kNamespaceOfNodes, u"item");
  Append(Append(root(), nullptr, u"second"), kNamespaceOfNodes, u"item");
  EXPECT_THAT(DescendantElements(first, kNamespaceOfNodes, u"item"), ElementsAre(within));
  EXPECT_THAT(DescendantElements(within, kNamespaceOfNodes, u"item"), IsEmpty());
}

TEST_F(Dom, DescendantElements_VisitsAllOthersInDocumentOrder) {
  DOMElement* wrapper = Append(root(), kNamespaceOfNodes, u"wrapper");
  Append(Append(wrapper, kNamespaceOfNodes, u"item"), kNamespaceOfNodes, u"within");
  Append(root(), kOtherNamespace, u"item");
  std::vector<const DOMElement*> others;
  DescendantElements(root(), kNamespaceOfNodes, u"item",
                     [&](const DOMElement* other) { others.push_back(other); });
  EXPECT_THAT(NamesOf(others), ElementsAre("wrapper", "within", "item"));
}

TEST_F(Dom, HasLocalName_ComparesTheNameWithoutPrefix) {
  EXPECT_TRUE(HasLocalName(Append(root(), kNamespaceOfNodes, u"item"), "item"));
  EXPECT_TRUE(HasLocalName(Append(root(), kNamespaceOfNodes, u"a:item"), "item"));
  EXPECT_FALSE(HasLocalName(Append(root(), kNamespaceOfNodes, u"items"), "item"));
  EXPECT_FALSE(HasLocalName(Append(root(), kNamespaceOfNodes, u"Item"), "item"));
  EXPECT_FALSE(HasLocalName(Append(root(), kNamespaceOfNodes, u"item:a"), "item"));
}

TEST_F(Dom, GetDOMAttributeString_GivesTheTextAsUtf8AndNothingWithoutTheAttribute) {
  Transcoder transcoder;
  root()->setAttribute(u"name", u"\u00FC\U0001F600");
  EXPECT_EQ(GetDOMAttributeString(transcoder, root(), "name"), "\xC3\xBC\xF0\x9F\x98\x80");
  EXPECT_EQ(GetDOMAttributeString(transcoder, root(), "nam"), "");
}

TEST_F(Dom, ReadAttributes_GivesTheTextOfEachAndLeavesThatOfAnAbsentOneAlone) {
  Transcoder transcoder;
  root()->setAttribute(u"name", u"\u00FC");
  root()->setAttribute(u"name2", u"other");
  root()->setAttribute(u"version", u"");
  root()->setAttributeNS(kNamespaceOfNodes, u"p:library", u"other");
  std::string name = "former";
  std::string version = "former";
  std::string library = "former";
  ReadAttributes(transcoder, root(), {{"name", name}, {"version", version}, {"library", library}});
  EXPECT_EQ(name, "\xC3\xBC");
  EXPECT_EQ(version, "");
  EXPECT_EQ(library, "former");
}

// What the writers of records do not show.

TEST_F(Dom, AddChildDOMElement_NoTagOrAPrefixThatDoesNotFit_GivesNullAndAppendsNothing) {
  EXPECT_EQ(ElementWriter(kNamespaceOfNodes, u"p").AddChildDOMElement(root(), nullptr), nullptr);
  EXPECT_EQ(ElementWriter(kNamespaceOfNodes, u"xml").AddChildDOMElement(root(), u"item"), nullptr);
  EXPECT_EQ(root()->getFirstChild(), nullptr);
}

TEST_F(Dom, SetDOMElementAttribute_SetAgain_HasTheLastValue) {
  ElementWriter writer(kNamespaceOfNodes, u"p");
  EXPECT_NO_THROW(writer.SetDOMElementAttribute(nullptr, "name", "a"));
  writer.SetDOMElementAttribute(root(), "name", "");
  writer.SetDOMElementAttribute(root(), "name", "b");
  EXPECT_EQ(Show(ToXmlElement(*root())), "<root name=\"b\"/>");
}

TEST_F(Dom, SetQualifiedAttribute_KeepsNameAndLastValue) {
  ElementWriter writer(kNamespaceOfNodes, u"p");
  writer.SetQualifiedAttribute(root(), "gr\xC3\xBCn:id", "1");
  writer.SetQualifiedAttribute(root(), "gr\xC3\xBCn:id", "\xC3\xBC");
  EXPECT_EQ(Show(ToXmlElement(*root())), "<root gr\xC3\xBCn:id=\"\xC3\xBC\"/>");
}

/// The namespace of an attribute that a writer with the prefix "p" sets.
std::string NamespaceOf(DOMElement* element, const std::string& name) {
  ElementWriter(kNamespaceOfNodes, u"p").SetQualifiedAttribute(element, name, "v");
  Transcoder transcoder;
  const xercesc::DOMAttr* attribute = element->getAttributeNode(transcoder.ToXml(name).c_str());
  return attribute ? Utf8(attribute->getNamespaceURI()) : "no attribute";
}

TEST_F(Dom, SetQualifiedAttribute_PrefixWithAMeaning_HasTheNamespaceThatItIsBoundTo) {
  EXPECT_EQ(NamespaceOf(root(), "board"), "");
  EXPECT_EQ(NamespaceOf(root(), "p:id"), "urn:one");
  EXPECT_EQ(NamespaceOf(root(), "xml:lang"), "http://www.w3.org/XML/1998/namespace");
}

TEST_F(Dom, SetQualifiedAttribute_EachOtherPrefix_HasANamespaceOfItsOwn) {
  const std::string first = NamespaceOf(root(), "v:id");
  EXPECT_NE(first, NamespaceOf(root(), "w:id"));
  EXPECT_EQ(first, NamespaceOf(root(), "v:other"));
  EXPECT_NE(first, "urn:one");
  EXPECT_NE(first, "");
}

TEST_F(Dom, SetQualifiedAttribute_NameThatNoAttributeCanHave_FailsWithItAndSetsNothing) {
  ElementWriter writer(kNamespaceOfNodes, u"p");
  for (const std::string name :
       {"", ":", ":a", "a:", "a:b:c", "a::b", "a b", "1a", "a:1", "1:a", "<"}) {
    EXPECT_EQ(ErrorOf<Failure>([&] { writer.SetQualifiedAttribute(root(), name, "v"); }),
              '"' + name + "\" cannot be the name of an attribute");
  }
  EXPECT_EQ(Show(ToXmlElement(*root())), "<root/>");
}

TEST_F(Dom, SetQualifiedAttribute_ValueThatXmlCannotCarry_FailsAndSetsNothing) {
  ElementWriter writer(kNamespaceOfNodes, u"p");
  EXPECT_THROW(writer.SetQualifiedAttribute(root(), "a", "\x01"), Failure);
  EXPECT_THROW(writer.SetQualifiedAttribute(root(), "v:a", "\xFF"), Failure);
  EXPECT_EQ(Show(ToXmlElement(*root())), "<root/>");
}

}  // namespace
