#include "xml/nodes.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>

#include "testing/dom_document.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "testing/xml_tree.h"
#include "xml/dom.h"

namespace {

using namespace projectdb::xml;
using namespace test_support;
using xercesc::DOMAttr;
using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNamedNodeMap;
using xercesc::DOMNode;

constexpr char16_t kTestNamespace[] = u"urn:test";

/// A document of this library with two elements, of which the second has attributes as texts.
class OwnTree {
 public:
  OwnTree() {
    ElementWriter writer(kTestNamespace, u"t");
    for (const char* name : {"first", "second"}) {
      writer.AppendElement(root(), u"file", [&](DOMElement* element) {
        writer.SetDOMElementAttribute(element, "version", "0");
        writer.SetDOMElementAttribute(element, "name", name);
        writer.SetDOMElementAttribute(element, "version", "1");
      });
    }
  }

  DOMDocument& document() const { return *document_; }
  DOMElement* root() const { return document_->getDocumentElement(); }
  DOMElement& first() const { return *root()->getFirstElementChild(); }
  DOMElement& second() const { return *root()->getLastElementChild(); }

 private:
  const XmlPlatform platform_;
  Owned<DOMDocument> document_ = CreateDocument(
      *xercesc::DOMImplementationRegistry::getDOMImplementation(u"Core"), kTestNamespace, u"root");
};

/// As the XML library makes it.
DOMElement& AppendUsualElement(DOMDocument& document) {
  DOMElement* element = document.createElementNS(kTestNamespace, u"file");
  element->setPrefix(u"t");
  element->setAttribute(u"name", u"second");
  element->setAttribute(u"version", u"1");
  document.getDocumentElement()->appendChild(element);
  return *element;
}

TEST(Nodes, AppendElement_KnownTag_HasTextsForAttributes) {
  if (!MakesElements()) GTEST_SKIP() << "the XML library makes all elements";
  const OwnTree tree;
  EXPECT_EQ(TextAttributesOf(tree.first()), nullptr);
  ASSERT_NE(TextAttributesOf(tree.second()), nullptr);
  EXPECT_EQ(Utf8(TextAttributesOf(tree.second())->first()->name), "name");
}

TEST(Nodes, AppendElement_KnownTag_IsLinkedAndNamedAsByTheXmlLibrary) {
  const OwnTree tree;
  const DomDocument usual;
  EXPECT_TRUE(tree.second().isEqualNode(&AppendUsualElement(*usual.get())));
  EXPECT_EQ(tree.second().getParentNode(), tree.root());
  EXPECT_EQ(tree.second().getPreviousSibling(), &tree.first());
  EXPECT_EQ(tree.first().getNextSibling(), &tree.second());
  EXPECT_EQ(tree.second().getNextSibling(), nullptr);
}

TEST(Nodes, AppendElement_ListOfNodesInUse_SeesTheNewElement) {
  if (!MakesElements()) GTEST_SKIP() << "the XML library makes all elements";
  const OwnTree tree;
  const xercesc::DOMNodeList* list = tree.root()->getElementsByTagNameNS(kTestNamespace, u"file");
  ASSERT_EQ(list->getLength(), 2U);
  ASSERT_NE(AppendElement(*tree.root(), ElementNames(tree.first())), nullptr);
  EXPECT_EQ(list->getLength(), 3U);
}

/// Something that leaves the next element under a parent to the XML library.
struct Refusal {
  const char* name;
  /// @return the parent
  std::function<DOMNode*(OwnTree&)> prepare;
};

void PrintTo(const Refusal& refusal, std::ostream* out) { *out << refusal.name; }

class Refusals : public testing::TestWithParam<Refusal> {};

TEST_P(Refusals, AppendElement_ChangesNothing) {
  OwnTree tree;
  DOMNode* parent = GetParam().prepare(tree);
  const auto count = parent->getChildNodes()->getLength();
  EXPECT_EQ(AppendElement(*parent, ElementNames(tree.first())), nullptr);
  EXPECT_EQ(parent->getChildNodes()->getLength(), count);
}

INSTANTIATE_TEST_SUITE_P(
    Nodes, Refusals,
    testing::Values(
        Refusal{"DocumentAsParent", [](OwnTree& tree) -> DOMNode* { return &tree.document(); }},
        Refusal{"ParentWithoutNamespaces",
                [](OwnTree& tree) -> DOMNode* {
                  return tree.root()->appendChild(tree.document().createElement(u"old"));
                }},
        Refusal{"TextAsLastChild",
                [](OwnTree& tree) -> DOMNode* {
                  tree.root()->appendChild(tree.document().createTextNode(u"text"));
                  return tree.root();
                }},
        Refusal{"CommentAsFirstChild",
                [](OwnTree& tree) -> DOMNode* {
                  tree.root()->insertBefore(tree.document().createComment(u"note"), &tree.first());
                  return tree.root();
                }},
        Refusal{"RangeInTheDocument",
                [](OwnTree& tree) -> DOMNode* {
                  tree.document().createRange();
                  return tree.root();
                }},
        Refusal{"ReadOnlyParent",
                [](OwnTree& tree) -> DOMNode* {
                  static_cast<xercesc::DOMElementNSImpl*>(tree.root())->setReadOnly(true, false);
                  return tree.root();
                }}),
    [](const auto& test_info) { return test_info.param.name; });

TEST(Nodes, AppendElement_DocumentOfTheXmlLibrary_ChangesNothing) {
  const OwnTree tree;
  const DomDocument other;
  EXPECT_EQ(AppendElement(AppendUsualElement(*other.get()), ElementNames(tree.first())), nullptr);
  EXPECT_EQ(other.root()->getFirstElementChild()->getFirstChild(), nullptr);
}

/// A question to an element about its attributes, or a change of them.
struct Question {
  const char* name;
  std::function<std::string(DOMElement& element)> ask;
};

void PrintTo(const Question& question, std::ostream* out) { *out << question.name; }

class Questions : public testing::TestWithParam<Question> {};

TEST_P(Questions, Element_WithTextAttributes_AnswersAsUsual) {
  const OwnTree tree;
  const DomDocument usual;
  DOMElement& expected = AppendUsualElement(*usual.get());
  EXPECT_EQ(GetParam().ask(tree.second()), GetParam().ask(expected));
  EXPECT_EQ(ToXmlElement(tree.second()), ToXmlElement(expected));
}

TEST_P(Questions, Element_WithTextAttributes_AnswersWithNodesFromThenOn) {
  const OwnTree tree;
  GetParam().ask(tree.second());
  EXPECT_EQ(TextAttributesOf(tree.second()), nullptr);
}

DOMNamedNodeMap& MapOf(DOMElement& element) { return *element.getAttributes(); }

std::string ValueOf(const DOMNode* node) { return node ? Utf8(node->getNodeValue()) : "null"; }

DOMAttr* NewAttribute(DOMElement& element, const char16_t* uri, const char16_t* name) {
  DOMAttr* attribute = element.getOwnerDocument()->createAttributeNS(uri, name);
  attribute->setValue(u"new");
  return attribute;
}

template <typename Action>
std::string CodeOf(Action action) {
  try {
    action();
    return "done";
  } catch (const xercesc::DOMException& exception) {
    return std::to_string(exception.code);
  }
}

const Question kQuestions[] = {
    {"GetLength", [](DOMElement& e) { return std::to_string(MapOf(e).getLength()); }},
    {"Item", [](DOMElement& e) { return ValueOf(MapOf(e).item(1)) + ValueOf(MapOf(e).item(2)); }},
    {"ItemOfAMapThatWasAskedFor",
     [](DOMElement& e) {
       DOMNamedNodeMap& map = MapOf(e);
       e.setAttribute(u"name", u"changed");
       return ValueOf(map.item(0)) + std::to_string(map.getLength());
     }},
    {"GetNamedItem", [](DOMElement& e) { return ValueOf(MapOf(e).getNamedItem(u"name")); }},
    {"GetNamedItemNS",
     [](DOMElement& e) { return ValueOf(MapOf(e).getNamedItemNS(u"urn:x", u"name")); }},
    {"SetNamedItem",
     [](DOMElement& e) {
       return ValueOf(MapOf(e).setNamedItem(e.getOwnerDocument()->createAttribute(u"name")));
     }},
    {"SetNamedItemNS",
     [](DOMElement& e) {
       return ValueOf(MapOf(e).setNamedItemNS(NewAttribute(e, u"urn:x", u"x:name")));
     }},
    {"RemoveNamedItem", [](DOMElement& e) { return ValueOf(MapOf(e).removeNamedItem(u"name")); }},
    {"RemoveNamedItemNS",
     [](DOMElement& e) { return CodeOf([&] { MapOf(e).removeNamedItemNS(u"urn:x", u"name"); }); }},
    {"RemoveNamedItemAt",
     [](DOMElement& e) {
       auto& map = static_cast<xercesc::DOMElementNSImpl&>(e).fAttributes;
       return ValueOf(map->removeNamedItemAt(0));
     }},
    {"FindNamePoint",
     [](DOMElement& e) {
       auto& map = static_cast<xercesc::DOMElementNSImpl&>(e).fAttributes;
       return std::to_string(map->findNamePoint(u"version"));
     }},
    {"FindNamePointInANamespace",
     [](DOMElement& e) {
       auto& map = static_cast<xercesc::DOMElementNSImpl&>(e).fAttributes;
       return std::to_string(map->findNamePoint(u"urn:x", u"version"));
     }},
    {"GetAttribute", [](DOMElement& e) { return Utf8(e.getAttribute(u"version")); }},
    {"OwnerElement",
     [](DOMElement& e) {
       const DOMAttr* attribute = e.getAttributeNode(u"name");
       return std::to_string(attribute->getOwnerElement() == &e && attribute->getSpecified());
     }},
    {"SetReadOnly",
     [](DOMElement& e) {
       static_cast<xercesc::DOMElementNSImpl&>(e).setReadOnly(true, true);
       return CodeOf([&] { e.getAttributeNode(u"name")->setValue(u"other"); });
     }},
    {"CloneNode",
     [](DOMElement& e) {
       return Show(ToXmlElement(static_cast<DOMElement&>(*e.cloneNode(false))));
     }},
    {"ImportNode",
     [](DOMElement& e) {
       const DomDocument other;
       return Show(ToXmlElement(static_cast<DOMElement&>(*other.get()->importNode(&e, true))));
     }},
    {"RenameNode", [](DOMElement& e) {
       return Show(ToXmlElement(
           static_cast<DOMElement&>(*e.getOwnerDocument()->renameNode(&e, u"urn:x", u"x:other"))));
     }}};

INSTANTIATE_TEST_SUITE_P(Nodes, Questions, testing::ValuesIn(kQuestions),
                         [](const auto& test_info) { return test_info.param.name; });

}  // namespace
