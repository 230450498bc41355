#include "xml/platform.h"

#include <atomic>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <xercesc/util/RuntimeException.hpp>

#include "testing/threads.h"
#include "testing/xml_platform.h"
#include "xml/text.h"

namespace {

using namespace projectdb::xml;
using namespace test_support;

[[noreturn]] void FailToInitialize() {
  ThrowXML(xercesc::RuntimeException, xercesc::XMLExcepts::CPtr_PointerIsZero);
}

std::string InitializationError(void (*initialize)()) {
  try {
    InitializeXMLPlatform(initialize);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

TEST(XmlPlatform, InitializeXMLPlatform_LibraryThrows_ThrowsRuntimeErrorWithTheReason) {
  const XmlPlatform platform;
  std::string reason;
  try {
    FailToInitialize();
  } catch (const xercesc::XMLException& exception) {
    reason = TranscodeXMLString(exception.getMessage());
  }
  ASSERT_NE(reason, "");
  EXPECT_EQ(InitializationError(FailToInitialize), "Failed to initialize " + reason + "\n");
}

TEST(XmlPlatform, InitializeXMLPlatform_OtherException_LeavesAsItIs) {
  EXPECT_THROW(InitializeXMLPlatform([] { throw std::logic_error("other"); }), std::logic_error);
}

TEST(XmlPlatform, InitializeXMLPlatform_AfterAFailure_CanBeCalledAgain) {
  const XmlPlatform platform;
  ASSERT_NE(InitializationError(FailToInitialize), "");
  EXPECT_EQ(InitializationError(InitializeWithDefaultLocale), "");
  TerminateXMLPlatform();
}

TEST(XmlPlatform, TerminateXMLPlatform_InnerOfTwo_LeavesTheLibraryUsable) {
  const XmlPlatform outer;
  { const XmlPlatform inner; }
  EXPECT_EQ(TranscodeXMLString(u"größe"), "größe");
}

TEST(XmlPlatform, InitializeXMLPlatform_AfterTheLastTermination_MakesTheLibraryUsableAgain) {
  { const XmlPlatform first; }
  const XmlPlatform second;
  EXPECT_EQ(TranscodeXMLString(u"größe"), "größe");
}

TEST(XmlPlatform, InitializeXMLPlatform_EightThreads_EachCanUseTheLibrary) {
  std::atomic<int> good{0};
  test_support::InThreads(8, [&](int number) {
    const std::string text = "größe " + std::to_string(number);
    for (int i = 0; i < 200; ++i) {
      const XmlPlatform platform;
      Transcoder transcoder;
      const std::u16string xml_text = transcoder.ToXml(text);
      if (transcoder.ToUtf8(xml_text.c_str()) == text) ++good;
    }
  });
  EXPECT_EQ(good, 8 * 200);
}

}  // namespace
