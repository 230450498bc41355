#include "xml/platform.h"

#include <atomic>
#include <stdexcept>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RuntimeException.hpp>

#include "testing/test.h"
#include "testing/threads.h"
#include "testing/xml_platform.h"
#include "xml/text.h"

namespace {

using namespace projectdb;
using namespace projectdb::xml;
using namespace test_support;

[[noreturn]] void FailToInitialize() {
  ThrowXML(xercesc::RuntimeException, xercesc::XMLExcepts::CPtr_PointerIsZero);
}

std::string InitializationError(void (*initialize)()) {
  return ErrorOf([&] { InitializeXMLPlatform(initialize); });
}

TEST(XmlPlatform, InitializeXMLPlatform_LibraryThrows_ThrowsTheReasonAndCanBeCalledAgain) {
  const XmlPlatform platform;
  std::string reason;
  try {
    FailToInitialize();
  } catch (const xercesc::XMLException& exception) {
    reason = TranscodeXMLString(exception.getMessage());
  }
  ASSERT_NE(reason, "");
  EXPECT_EQ(InitializationError(FailToInitialize), "Failed to initialize " + reason + "\n");
  EXPECT_EQ(InitializationError(InitializeWithDefaultLocale), "");
  TerminateXMLPlatform();
}

TEST(XmlPlatform, InitializeXMLPlatform_OtherException_LeavesAsItIs) {
  EXPECT_THROW(InitializeXMLPlatform([] { throw std::logic_error("other"); }), std::logic_error);
}

TEST(XmlPlatform, Platform_AfterAnotherWithinItOrBeforeIt_IsUsable) {
  { const XmlPlatform former; }
  const XmlPlatform outer;
  { const XmlPlatform inner; }
  EXPECT_EQ(TranscodeXMLString(u"größe"), "größe");
}

TEST(XmlPlatform, InitializeXMLPlatform_EightThreads_EachCanUseTheLibrary) {
  std::atomic<int> good{0};
  InThreads(8, [&](int number) {
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
