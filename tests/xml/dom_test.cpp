#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMComment.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMProcessingInstruction.hpp>
#include <xercesc/dom/DOMText.hpp>

#include "base/failure.h"
#include "testing/dom_document.h"
#include "testing/xml_tree.h"
#include "xml/dom.h"

namespace {

using projectdb::Failure;
using projectdb::xml::ChildElements;
using projectdb::xml::DescendantElements;
using projectdb::xml::ElementWriter;
using projectdb::xml::GetDOMAttributeString;
using projectdb::xml::HasLocalName;
using projectdb::xml::ReadAttributes;
using projectdb::xml::Transcoder;
using test_support::Show;
using test_support::ToXmlElement;
using test_support::Utf8;
using testing::ElementsAre;
using testing::IsEmpty;
using xercesc::DOMElement;

constexpr char16_t kNamespace[] = u"urn:one";
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

  const test_support::DomDocument document_;
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

// Children.

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

// Descendants.

TEST_F(Dom, DescendantElements_FindsThemAtAnyDepthInDocumentOrder) {
  const auto append = [&](DOMElement* parent, const char16_t* number) {
    DOMElement* item = Append(parent, kNamespace, u"item");
    item->setAttribute(u"number", number);
    return item;
  };
  DOMElement* wrapper = Append(root(), nullptr, u"wrapper");
  DOMElement* inner = append(wrapper, u"1");
  append(Append(inner, nullptr, u"wrapper"), u"2");
  append(wrapper, u"3");
  append(root(), u"4");
  std::vector<std::string> numbers;
  for (const DOMElement* item : DescendantElements(root(), kNamespace, u"item")) {
    numbers.push_back(Utf8(item->getAttribute(u"number")));
  }
  EXPECT_THAT(numbers, ElementsAre("1", "2", "3", "4"));
}

TEST_F(Dom, DescendantElements_SelectsByNamespaceAndWholeLocalName) {
  const DOMElement* first = Append(root(), kNamespace, u"a:item");
  const DOMElement* second = Append(root(), kNamespace, u"b:item");
  Append(root(), kOtherNamespace, u"item");
  Append(root(), u"urn:one/more", u"item");
  Append(root(), nullptr, u"item");
  Append(root(), kNamespace, u"items");
  Append(root(), kNamespace, u"item:other");
  root()->appendChild(document_.get()->createElement(u"item"));  // Of no namespace support.
  EXPECT_THAT(DescendantElements(root(), kNamespace, u"item"), ElementsAre(first, second));
}

TEST_F(Dom, DescendantElements_LeavesOutTheElementAndWhatIsBesideAndAboveIt) {
  DOMElement* first = Append(root(), kNamespace, u"item");
  const DOMElement* within = Append(first, kNamespace, u"item");
  Append(Append(root(), nullptr, u"second"), kNamespace, u"item");
  EXPECT_THAT(DescendantElements(first, kNamespace, u"item"), ElementsAre(within));
  EXPECT_THAT(DescendantElements(within, kNamespace, u"item"), IsEmpty());
}

TEST_F(Dom, DescendantElements_VisitsAllOthersInDocumentOrder) {
  DOMElement* wrapper = Append(root(), kNamespace, u"wrapper");
  Append(Append(wrapper, kNamespace, u"item"), kNamespace, u"within");
  Append(root(), kOtherNamespace, u"item");
  std::vector<const DOMElement*> others;
  DescendantElements(root(), kNamespace, u"item",
                     [&](const DOMElement* other) { others.push_back(other); });
  EXPECT_THAT(NamesOf(others), ElementsAre("wrapper", "within", "item"));
}

TEST_F(Dom, DescendantElements_VeryDeepNesting_FindsThemAll) {
  constexpr std::size_t kDepth = 100000;
  // From the innermost outwards: each append to a tree looks at all that is above it.
  DOMElement* outermost = document_.get()->createElementNS(kNamespace, u"item");
  for (std::size_t depth = 1; depth < kDepth; ++depth) {
    DOMElement* outer = document_.get()->createElementNS(kNamespace, u"item");
    outer->appendChild(outermost);
    outermost = outer;
  }
  root()->appendChild(outermost);
  EXPECT_EQ(DescendantElements(root(), kNamespace, u"item").size(), kDepth);
}

TEST_F(Dom, DescendantElements_VeryManySiblings_FindsThemAll) {
  constexpr std::size_t kCount = 100000;
  for (std::size_t i = 0; i < kCount; ++i) Append(root(), kNamespace, u"item");
  EXPECT_EQ(DescendantElements(root(), kNamespace, u"item").size(), kCount);
}

// Names and attributes.

TEST_F(Dom, HasLocalName_ComparesTheNameWithoutPrefix) {
  EXPECT_TRUE(HasLocalName(Append(root(), kNamespace, u"item"), "item"));
  EXPECT_TRUE(HasLocalName(Append(root(), kNamespace, u"a:item"), "item"));
  EXPECT_FALSE(HasLocalName(Append(root(), kNamespace, u"items"), "item"));
  EXPECT_FALSE(HasLocalName(Append(root(), kNamespace, u"Item"), "item"));
  EXPECT_FALSE(HasLocalName(Append(root(), kNamespace, u"item:a"), "item"));
}

TEST_F(Dom, GetDOMAttributeString_GivesTheTextAsUtf8AndNothingWithoutTheAttribute) {
  Transcoder transcoder;
  root()->setAttribute(u"name", u"\u00FC\U0001F600");
  root()->setAttribute(u"empty", u"");
  EXPECT_EQ(GetDOMAttributeString(transcoder, root(), "name"), "\xC3\xBC\xF0\x9F\x98\x80");
  EXPECT_EQ(GetDOMAttributeString(transcoder, root(), "empty"), "");
  EXPECT_EQ(GetDOMAttributeString(transcoder, root(), "nam"), "");
}

TEST_F(Dom, ReadAttributes_GivesTheTextOfEach) {
  Transcoder transcoder;
  root()->setAttribute(u"name", u"\u00FC");
  root()->setAttribute(u"other", u"none of these");
  root()->setAttribute(u"version", u"");
  std::string name = "former";
  std::string version = "former";
  ReadAttributes(transcoder, root(), {{"name", name}, {"version", version}});
  EXPECT_EQ(name, "\xC3\xBC");
  EXPECT_EQ(version, "");
}

TEST_F(Dom, ReadAttributes_AbsentAttribute_LeavesTheTextAlone) {
  Transcoder transcoder;
  root()->setAttribute(u"name2", u"other");
  root()->setAttributeNS(kNamespace, u"p:name", u"other");
  std::string name = "former";
  ReadAttributes(transcoder, root(), {{"name", name}});
  EXPECT_EQ(name, "former");
}

// Making elements.

TEST_F(Dom, AddChildDOMElement_AppendsAndGivesTheElement) {
  ElementWriter writer(kNamespace, u"p");
  const DOMElement* child = writer.AddChildDOMElement(root(), u"item");
  ASSERT_NE(child, nullptr);
  EXPECT_EQ(root()->getLastElementChild(), child);
  EXPECT_EQ(Utf8(child->getNodeName()), "p:item");
  EXPECT_EQ(Utf8(child->getNamespaceURI()), "urn:one");
}

TEST_F(Dom, AddChildDOMElement_NoParentOrNoTag_GivesNullAndAppendsNothing) {
  ElementWriter writer(kNamespace, u"p");
  EXPECT_EQ(writer.AddChildDOMElement(nullptr, u"item"), nullptr);
  EXPECT_EQ(writer.AddChildDOMElement(root(), nullptr), nullptr);
  EXPECT_EQ(writer.AddChildDOMElement(root(), u""), nullptr);
  EXPECT_EQ(root()->getFirstChild(), nullptr);
}

TEST_F(Dom, AddChildDOMElement_NullPrefixOrNamespace_GivesAnElementWithoutPrefix) {
  const DOMElement* child = ElementWriter(kNamespace, nullptr).AddChildDOMElement(root(), u"item");
  EXPECT_EQ(Utf8(child->getNodeName()), "item");
  EXPECT_EQ(Utf8(child->getNamespaceURI()), "urn:one");
  child = ElementWriter(nullptr, u"p").AddChildDOMElement(root(), u"item");
  EXPECT_EQ(Utf8(child->getNodeName()), "item");
  EXPECT_EQ(child->getNamespaceURI(), nullptr);
}

TEST_F(Dom, AddChildDOMElement_PrefixThatDoesNotFit_GivesNullAndAppendsNothing) {
  EXPECT_EQ(ElementWriter(kNamespace, u"xml").AddChildDOMElement(root(), u"item"), nullptr);
  EXPECT_EQ(ElementWriter(kNamespace, u"a b").AddChildDOMElement(root(), u"item"), nullptr);
  EXPECT_EQ(root()->getFirstChild(), nullptr);
}

TEST_F(Dom, ElementName_Name_IsConverted) {
  EXPECT_EQ(ElementWriter(kNamespace, u"p").ElementName("gr\xC3\xBCn"), u"gr\u00FCn");
}

TEST_F(Dom, ElementName_NoName_IsEmpty) {
  ElementWriter writer(kNamespace, u"p");
  for (const char* name : {"", "a b", "a:b", "1", "\xFF"}) {
    EXPECT_EQ(writer.ElementName(name), u"") << name;
  }
}

TEST_F(Dom, AppendElement_FillsTheElementThatItAppends) {
  DOMElement* filled = nullptr;
  EXPECT_TRUE(ElementWriter(kNamespace, u"p").AppendElement(root(), u"item", [&](DOMElement* item) {
    filled = item;
  }));
  EXPECT_EQ(root()->getLastElementChild(), filled);
}

TEST_F(Dom, AppendElement_NoElement_GivesFalseAndFillsNothing) {
  const auto fill = [](DOMElement*) { ADD_FAILURE() << "filled"; };
  EXPECT_FALSE(ElementWriter(kNamespace, u"p").AppendElement(nullptr, u"item", fill));
  EXPECT_FALSE(ElementWriter(kNamespace, u"p").AppendElement(root(), nullptr, fill));
  EXPECT_FALSE(ElementWriter(kNamespace, u"a b").AppendElement(root(), u"item", fill));
}

TEST_F(Dom, AppendElement_FillThrows_LeavesNoElement) {
  const auto fill = [](DOMElement*) { throw Failure("cannot be filled"); };
  EXPECT_THROW(ElementWriter(kNamespace, u"p").AppendElement(root(), u"item", fill), Failure);
  EXPECT_EQ(root()->getFirstChild(), nullptr);
}

TEST_F(Dom, SetDOMElementAttribute_SetsAnAttributeWithoutNamespace) {
  ElementWriter(kNamespace, u"p").SetDOMElementAttribute(root(), "name", "gr\xC3\xBCn");
  const xercesc::DOMAttr* attribute = root()->getAttributeNode(u"name");
  ASSERT_NE(attribute, nullptr);
  EXPECT_EQ(Utf8(attribute->getValue()), "gr\xC3\xBCn");
  EXPECT_EQ(attribute->getNamespaceURI(), nullptr);
}

TEST_F(Dom, SetDOMElementAttribute_SetAgain_HasTheLastValue) {
  ElementWriter writer(kNamespace, u"p");
  EXPECT_NO_THROW(writer.SetDOMElementAttribute(nullptr, "name", "a"));
  writer.SetDOMElementAttribute(root(), "name", "");
  EXPECT_EQ(Show(ToXmlElement(*root())), "<root name=\"\"/>");
  writer.SetDOMElementAttribute(root(), "name", "b");
  EXPECT_EQ(Show(ToXmlElement(*root())), "<root name=\"b\"/>");
}

TEST_F(Dom, SetDOMElementAttribute_ValueThatXmlCannotCarry_FailsAndSetsNothing) {
  EXPECT_THROW(ElementWriter(kNamespace, u"p").SetDOMElementAttribute(root(), "name", "\x01"),
               Failure);
  EXPECT_FALSE(root()->hasAttribute(u"name"));
}

TEST_F(Dom, AddChildDOMElementWithAttribute_AppendsBoth) {
  EXPECT_TRUE(ElementWriter(kNamespace, u"p")
                  .AddChildDOMElementWithAttribute(root(), u"item", "name", "a"));
  EXPECT_EQ(Show(ToXmlElement(*root())), "<root><item name=\"a\"/></root>");
}

TEST_F(Dom, AddChildDOMElementWithAttribute_NoElement_GivesFalse) {
  ElementWriter writer(kNamespace, u"p");
  EXPECT_FALSE(writer.AddChildDOMElementWithAttribute(nullptr, u"item", "name", "a"));
  EXPECT_FALSE(writer.AddChildDOMElementWithAttribute(root(), nullptr, "name", "a"));
}

TEST_F(Dom, AddChildDOMElementWithAttribute_NoElementAndNoValue_GivesFalse) {
  ElementWriter writer(kNamespace, u"a b");
  EXPECT_FALSE(writer.AddChildDOMElementWithAttribute(root(), u"item", "name", "\x01"));
}

TEST_F(Dom, AddChildDOMElementWithAttribute_ValueThatXmlCannotCarry_FailsAndAppendsNothing) {
  ElementWriter writer(kNamespace, u"p");
  EXPECT_THROW(writer.AddChildDOMElementWithAttribute(root(), u"item", "name", "\x01"), Failure);
  EXPECT_EQ(root()->getFirstChild(), nullptr);
}

// Attributes whose name may have a prefix.

TEST_F(Dom, SetQualifiedAttribute_KeepsNameAndLastValue) {
  ElementWriter writer(kNamespace, u"p");
  writer.SetQualifiedAttribute(root(), "gr\xC3\xBCn:id", "1");
  writer.SetQualifiedAttribute(root(), "gr\xC3\xBCn:id", "\xC3\xBC");
  EXPECT_EQ(Show(ToXmlElement(*root())), "<root gr\xC3\xBCn:id=\"\xC3\xBC\"/>");
}

/// The namespace of an attribute that a writer with the prefix "p" sets.
std::string NamespaceOf(DOMElement* element, const std::string& name) {
  ElementWriter(kNamespace, u"p").SetQualifiedAttribute(element, name, "v");
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
  ElementWriter writer(kNamespace, u"p");
  for (const std::string name :
       {"", ":", ":a", "a:", "a:b:c", "a::b", "a b", "1a", "a:1", "1:a", "<"}) {
    std::string error;
    try {
      writer.SetQualifiedAttribute(root(), name, "v");
    } catch (const Failure& failure) {
      error = failure.what();
    }
    EXPECT_EQ(error, '"' + name + "\" cannot be the name of an attribute");
  }
  EXPECT_EQ(Show(ToXmlElement(*root())), "<root/>");
}

TEST_F(Dom, SetQualifiedAttribute_ValueThatXmlCannotCarry_FailsAndSetsNothing) {
  ElementWriter writer(kNamespace, u"p");
  EXPECT_THROW(writer.SetQualifiedAttribute(root(), "a", "\x01"), Failure);
  EXPECT_THROW(writer.SetQualifiedAttribute(root(), "v:a", "\xFF"), Failure);
  EXPECT_EQ(Show(ToXmlElement(*root())), "<root/>");
}

}  // namespace
