#include "xml/platform.h"

#include <atomic>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RuntimeException.hpp>

#include <projectdb/project_db.h>

#include "testing/child_process.h"
#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/project_loading.h"
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

/// Whether the work ends the use of the XML library that it begins, in a process of its own, as
/// failed loads of other tests have left theirs open.
template <typename Work>
std::string StateOfTheLibraryAfter(Work work) {
  return InChildProcess([&] {
    while (xercesc::XMLPlatformUtils::fgMemoryManager) TerminateXMLPlatform();
    work();
    return std::string(xercesc::XMLPlatformUtils::fgMemoryManager ? "in use" : "terminated");
  });
}

TEST(XmlPlatform, LoadProjectData_Successful_TerminatesIt) {
  const MessageRecorder recorder;
  const TemporaryDirectory directory;
  WriteFile(directory / "p.xml", ProjectXml(DeviceInfoXml("Orrin")));
  projectdb::KelProjectDatabase database;
  EXPECT_EQ(StateOfTheLibraryAfter([&] { database.LoadProjectData(directory / "p.xml", ""); }),
            "terminated");
}

TEST(XmlPlatform, ExportProjectData_Successful_TerminatesIt) {
  const TemporaryDirectory directory;
  projectdb::KelProjectDatabase database;
  database.CreateNewProjectDatabase("mixer");
  EXPECT_EQ(StateOfTheLibraryAfter([&] { database.ExportProjectData(directory / "p.xml"); }),
            "terminated");
  EXPECT_NE(ReadFile(directory / "p.xml"), "");
}

TEST(XmlPlatform, LoadProjectData_Malformed_LeavesItInUse) {
  const MessageRecorder recorder;
  const TemporaryDirectory directory;
  WriteFile(directory / "p.xml", "<project>");
  projectdb::KelProjectDatabase database;
  EXPECT_EQ(StateOfTheLibraryAfter([&] { database.LoadProjectData(directory / "p.xml", ""); }),
            "in use");
}

}  // namespace
