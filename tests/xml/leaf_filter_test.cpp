#include "xml/leaf_filter.h"

#include <functional>
#include <ostream>
#include <string>

#include <xercesc/dom/DOM.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>

#include "testing/test.h"
#include "testing/xml_platform.h"
#include "testing/xml_tree.h"
#include "xml/dom.h"

namespace {

using namespace projectdb::xml;
using namespace test_support;
using xercesc::DOMDocument;
using xercesc::DOMElement;

/// A section with three elements, the second of which has attributes as texts.
class Section {
 public:
  explicit Section(const std::string& text = "text", const char16_t* tag = u"file") : tag_(tag) {
    writer_.AppendElement(document_->getDocumentElement(), u"section", [&](DOMElement* section) {
      for (const auto& name : {text, text, text}) Append(*section, name);
    });
  }

  DOMElement* section() const { return document_->getDocumentElement()->getFirstElementChild(); }
  DOMElement* first() const { return section()->getFirstElementChild(); }
  DOMElement* second() const { return first()->getNextElementSibling(); }
  DOMElement* third() const { return second()->getNextElementSibling(); }

  void Append(DOMElement& parent, const std::string& text) {
    writer_.AppendElement(&parent, tag_, [&](DOMElement* element) {
      writer_.SetDOMElementAttribute(element, "name", text);
      writer_.SetDOMElementAttribute(element, "kind", "1");
    });
  }

  /// What the filter writes for an element; "" if it leaves it to the serializer.
  static std::string Filtered(const DOMElement& element) {
    xercesc::MemBufFormatTarget target;
    Transcoder transcoder;
    const auto action = LeafFilter(target, transcoder).acceptNode(&element);
    const std::string written(reinterpret_cast<const char*>(target.getRawBuffer()),
                              target.getLen());
    EXPECT_EQ(action == LeafFilter::FILTER_ACCEPT, written.empty());
    return written;
  }

 private:
  const XmlPlatform platform_;
  Owned<DOMDocument> document_ = CreateDocument(
      *xercesc::DOMImplementationRegistry::getDOMImplementation(u"Core"), u"urn:test", u"root");
  const char16_t* tag_;
  ElementWriter writer_{u"urn:test", nullptr};
};

TEST(LeafFilter, AcceptNode_PlainLeafAmongOthers_WritesItInALineOfItsOwn) {
  if (!MakesElements()) GTEST_SKIP() << "the XML library makes all elements";
  const Section section;
  EXPECT_EQ(Section::Filtered(*section.second()), "\n    <file kind=\"1\" name=\"text\"/>");
}

TEST(LeafFilter, AcceptNode_LeafDeeperDown_IsIndentedMore) {
  if (!MakesElements()) GTEST_SKIP() << "the XML library makes all elements";
  Section section;
  for (int i = 0; i < 2; ++i) section.Append(*section.second(), "below");
  EXPECT_EQ(Section::Filtered(*section.second()->getFirstElementChild()),
            "\n      <file kind=\"1\" name=\"below\"/>");
}

TEST(LeafFilter, AcceptNode_CharactersOf16Bits_WritesThemInUtf8) {
  if (!MakesElements()) GTEST_SKIP() << "the XML library makes all elements";
  const Section section("größe 日本", u"größe");
  EXPECT_EQ(Section::Filtered(*section.second()), "\n    <größe kind=\"1\" name=\"größe 日本\"/>");
}

/// An element that is left to the serializer.
struct Left {
  const char* name;
  std::function<const DOMElement*(Section&)> prepare;
};

void PrintTo(const Left& left, std::ostream* out) { *out << left.name; }

class LeftElements : public testing::TestWithParam<Left> {};

TEST_P(LeftElements, AcceptNode_WritesNothing) {
  Section section;
  EXPECT_EQ(Section::Filtered(*GetParam().prepare(section)), "");
}

INSTANTIATE_TEST_SUITE_P(
    LeafFilter, LeftElements,
    testing::Values(Left{"AttributesAsNodes", [](Section& section) { return section.first(); }},
                    Left{"LastInItsList", [](Section& section) { return section.third(); }},
                    Left{"ChildOfTheRoot", [](Section& section) { return section.section(); }},
                    Left{"HasChildren",
                         [](Section& section) {
                           section.Append(*section.second(), "below");
                           return section.second();
                         }},
                    Left{"HasText",
                         [](Section& section) {
                           section.second()->appendChild(
                               section.second()->getOwnerDocument()->createTextNode(u"text"));
                           return section.second();
                         }},
                    Left{"PrefixOfItsOwn",
                         [](Section& section) {
                           section.second()->setPrefix(u"other");
                           return section.second();
                         }},
                    Left{"ChildOfTheRootAmongOthers",
                         [](Section& section) {
                           DOMElement* root =
                               section.section()->getOwnerDocument()->getDocumentElement();
                           for (int i = 0; i < 2; ++i) section.Append(*root, "text");
                           return section.section()->getNextElementSibling();
                         }}),
    [](const auto& test_info) { return test_info.param.name; });

class LeftTexts : public testing::TestWithParam<const char*> {};

TEST_P(LeftTexts, AcceptNode_WritesNothing) {
  const Section section(GetParam());
  EXPECT_EQ(Section::Filtered(*section.second()), "");
}

INSTANTIATE_TEST_SUITE_P(LeafFilter, LeftTexts,
                         testing::Values("a&b", "a<b", "a>b", "a\"b", "a'b", "a\tb", "a\nb", "a\rb",
                                         "\x7F", "\u0085", "𝒳", "\uE000"));

}  // namespace
