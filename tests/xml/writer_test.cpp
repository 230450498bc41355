#include <filesystem>
#include <stdexcept>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/IOException.hpp>

#include "testing/dom_document.h"
#include "testing/files.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"
#include "testing/xml_tree.h"
#include "xml/writer.h"

namespace {

using projectdb::xml::WriteDOMDocumentToFile;
using namespace test_support;

class Writer : public testing::Test {
 protected:
  /// Writes the document. @return the text of the std::runtime_error that this ends in
  std::string WriteError(const std::string& path) const {
    return ErrorOf([&] { WriteDOMDocumentToFile(path, document_.get()); });
  }

  const DomDocument document_;
  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "file.xml";
};

TEST_F(Writer, Document_IsWrittenWithItsElementsAndAttributes) {
  xercesc::DOMElement* child = document_.get()->createElement(u"child");
  child->setAttribute(u"name", u"\u00FC \U0001F600 <\"&\n");
  document_.root()->appendChild(child);
  WriteDOMDocumentToFile(path_, document_.get());
  EXPECT_EQ(Show(ReadXmlFile(path_)),
            "<root><child name=\"\xC3\xBC \xF0\x9F\x98\x80 <\"&\n\"/></root>");
}

TEST_F(Writer, Document_IsPrettyPrintedAsUtf8) {
  document_.root()->appendChild(document_.get()->createElement(u"child"));
  WriteDOMDocumentToFile(path_, document_.get());
  EXPECT_THAT(ReadFile(path_), AllOf(StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\""),
                                     EndsWith("\n<root>\n\n  <child/>\n\n</root>\n")));
}

TEST_F(Writer, NullDocument_WritesNoFileAndLeavesOneThatIsThere) {
  WriteDOMDocumentToFile(path_, nullptr);
  EXPECT_FALSE(std::filesystem::exists(path_));
  WriteFile(path_, "former");
  WriteDOMDocumentToFile(path_, nullptr);
  EXPECT_EQ(ReadFile(path_), "former");
}

TEST_F(Writer, TextThatXmlCannotCarry_IsAnErrorAndTheCorrectedDocumentIsWritten) {
  const char16_t high[] = {0xD83D, 0};
  const char16_t low[] = {0xDE00, 0};
  const char16_t high_and_letter[] = {0xD83D, u'a', 0};
  for (const char16_t* text : {u"\x01", u"a\xFFFE", u"\xFFFF", high, low, high_and_letter}) {
    document_.root()->setAttribute(u"name", text);
    EXPECT_THAT(WriteError(path_),
                AllOf(StartsWith("Failed writing XML file " + path_ + ": "), EndsWith("\n")));
  }
  document_.root()->setAttribute(u"name", u"a");
  WriteDOMDocumentToFile(path_, document_.get());
  EXPECT_EQ(Show(ReadXmlFile(path_)), "<root name=\"a\"/>");
}

TEST_F(Writer, NameThatTheEncodingOfTheDocumentLacks_IsAnError) {
  constexpr char kBytes[] = "<?xml version='1.0' encoding='US-ASCII'?><root/>";
  xercesc::XercesDOMParser parser;
  parser.parse(xercesc::MemBufInputSource(reinterpret_cast<const XMLByte*>(kBytes),
                                          sizeof(kBytes) - 1, "file"));
  xercesc::DOMDocument& document = *parser.getDocument();
  document.getDocumentElement()->appendChild(document.createElement(u"\u00FC"));
  EXPECT_THROW(WriteDOMDocumentToFile(path_, &document), std::runtime_error);
}

}  // namespace
