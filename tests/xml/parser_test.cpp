#include "xml/parser.h"

#include <new>
#include <stdexcept>
#include <typeinfo>

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMException.hpp>
#include <xercesc/dom/DOMNodeList.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/RuntimeException.hpp>

#include "base/failure.h"
#include "testing/project_loading.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "xml/errors.h"
#include "xml/text.h"

namespace {

using namespace projectdb::xml;
using namespace projectdb;
using namespace test_support;

/// What leaves a call as std::runtime_error; "" if nothing does.
template <typename Call>
std::string RuntimeErrorOf(Call call) {
  try {
    call();
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(typeid(error), typeid(std::runtime_error));
    return error.what();
  }
  return {};
}

class XmlErrors : public testing::Test {
 protected:
  [[noreturn]] static void ThrowXmlException() {
    ThrowXML(xercesc::RuntimeException, xercesc::XMLExcepts::Val_InvalidElemId);
  }

  [[noreturn]] static void ThrowDomException() {
    throw xercesc::DOMException(xercesc::DOMException::NOT_FOUND_ERR);
  }

  /// The text that the XML library itself gives to what a call throws.
  template <typename Exception>
  static std::string ReasonOf(void (*call)()) {
    try {
      call();
    } catch (const Exception& exception) {
      return TranscodeXMLString(exception.getMessage());
    }
    return {};
  }

  XmlPlatform platform_;
};

TEST_F(XmlErrors, EitherWrapper_NoException_GivesTheResult) {
  EXPECT_EQ(WithPrefixedErrors("P ", [] { return 42; }), 42);
  EXPECT_EQ(WithOnlyRuntimeErrors("P ", [] { return std::string("result"); }), "result");
}

TEST_F(XmlErrors, EitherWrapper_ExceptionWithReason_ThrowsPrefixReasonAndLineEnd) {
  const std::pair<void (*)(), std::string> cases[] = {
      {[] { throw Failure("why {}"); }, "why {}"},
      {ThrowXmlException, ReasonOf<xercesc::XMLException>(ThrowXmlException)},
      {ThrowDomException, ReasonOf<xercesc::DOMException>(ThrowDomException)}};
  for (const auto& [call, reason] : cases) {
    ASSERT_NE(reason, "");
    EXPECT_EQ(RuntimeErrorOf([&, c = call] { WithPrefixedErrors("P ", c); }), "P " + reason + "\n");
    EXPECT_EQ(RuntimeErrorOf([&, c = call] { WithOnlyRuntimeErrors("P ", c); }),
              "P " + reason + "\n");
  }
}

TEST_F(XmlErrors, WithPrefixedErrors_OtherException_LeavesAsItIsOrAsBadAlloc) {
  EXPECT_THROW(WithPrefixedErrors("P ", [] { throw 7; }), int);
  EXPECT_THROW(WithPrefixedErrors("P ", [] { throw std::bad_alloc(); }), std::bad_alloc);
  EXPECT_THROW(WithPrefixedErrors("P ", [] { throw xercesc::OutOfMemoryException(); }),
               std::bad_alloc);
}

TEST_F(XmlErrors, WithOnlyRuntimeErrors_OtherException_ThrowsUnexpectedException) {
  for (void (*call)() :
       {+[] { throw 7; }, +[] { throw std::bad_alloc(); }, +[] { throw std::logic_error("x"); },
        +[] { throw xercesc::OutOfMemoryException(); }}) {
    EXPECT_EQ(RuntimeErrorOf([&] { WithOnlyRuntimeErrors("P ", call); }), "Unexpected Exception\n");
  }
}

class XmlParser : public testing::Test {
 protected:
  std::string Write(const std::string& name, const std::string& bytes) const {
    WriteFile(directory_ / name, bytes);
    return directory_ / name;
  }

  /// The root of a project file with these bytes, parsed with a schema of those bytes.
  Owned<xercesc::DOMDocument> Parse(const std::string& bytes,
                                    const std::string& schema = "") const {
    const std::string path = Write("p.xml", bytes);
    return ParseProjectXMLFile(path, schema.empty() ? "" : Write("s.xsd", schema));
  }

  XmlPlatform platform_;
  TemporaryDirectory directory_;
};

TEST_F(XmlParser, ParseProjectXMLFile_EmptyPath_GivesNull) {
  EXPECT_EQ(ParseProjectXMLFile("", ""), nullptr);
  EXPECT_EQ(ParseProjectXMLFile("", Write("s.xsd", DeviceOnlySchema())), nullptr);
}

// An element may belong to two declarations of this schema, which only full checking objects to.
TEST_F(XmlParser, ParseProjectXMLFile_AmbiguousSchema_IsUsed) {
  const std::string schema =
      "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"><xs:element name=\"root\">"
      "<xs:complexType><xs:sequence><xs:element name=\"a\" minOccurs=\"0\"/>"
      "<xs:element name=\"a\"/></xs:sequence></xs:complexType></xs:element></xs:schema>";
  EXPECT_NE(Parse("<root><a/></root>", schema), nullptr);
}

TEST_F(XmlParser, ParseProjectXMLFile_Comments_AreNotInTheDocument) {
  const auto document = Parse("<root><!-- c --></root>");
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(document->getDocumentElement()->getFirstChild(), nullptr);
}

TEST_F(XmlParser, ParseProjectXMLFile_WhitespaceBetweenElementsOfASchema_IsNotInTheDocument) {
  const auto document = Parse(ProjectXml("\n <device_info/> \n"), DeviceOnlySchema());
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(document->getDocumentElement()->getChildNodes()->getLength(), 1u);
}

TEST_F(XmlParser, ParseProjectXMLFile_ValueWithATypeOfTheSchema_IsNormalised) {
  const auto document =
      Parse("<root a=\"  x   y \"/>",
            "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"><xs:element name=\"root\">"
            "<xs:complexType><xs:attribute name=\"a\" type=\"xs:token\"/></xs:complexType>"
            "</xs:element></xs:schema>");
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(std::u16string(document->getDocumentElement()->getAttribute(u"a")), u"x y");
}

TEST_F(XmlParser, ParseProjectXMLFile_RefusedFile_PrintsNothing) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_EQ(Parse("<root a=\"1\" a=\"2\">"), nullptr);
  EXPECT_EQ(Parse(ProjectXml("<isf_info/>"), DeviceOnlySchema()), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(XmlParser, ParseProjectXMLFile_DomException_IsThrownWithPathAndReasonAndPrinted) {
  // Versions and namespaces that do not exist pass the parser and fail in the document.
  for (const std::string bytes : {"<?xml version=\"1.X\"?><root/>",
                                  "<?xml version=\"1.1\"?><root xmlns:p=\"\" p:a=\"1\"/>"}) {
    SCOPED_TRACE(bytes);
    testing::internal::CaptureStdout();
    const std::string error = RuntimeErrorOf([&] { Parse(bytes); });
    EXPECT_THAT(error, StartsWith("Failed parsing XML file " + (directory_ / "p.xml") + ": "));
    EXPECT_THAT(error, EndsWith("\n"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), error + "\n");
  }
}

}  // namespace
