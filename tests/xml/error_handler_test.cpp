#include "xml/error_handler.h"

#include <tuple>
#include <type_traits>

#include <xercesc/dom/impl/DOMErrorImpl.hpp>
#include <xercesc/dom/impl/DOMLocatorImpl.hpp>

#include "testing/test.h"
#include "testing/xml_platform.h"

namespace {

using namespace projectdb;
using xercesc::DOMError;

static_assert(std::is_base_of_v<xercesc::DOMErrorHandler, KelProjectDbErrorHandler>);

class ErrorHandler : public testing::Test {
 protected:
  /// Reports a problem at line 12, column 34.
  /// @param uri, message may be null
  bool Report(DOMError::ErrorSeverity severity, const char16_t* message = u"a message",
              const char16_t* uri = u"file:///p.xml") {
    xercesc::DOMLocatorImpl location(12, 34, nullptr, uri);
    return handler_.handleError(xercesc::DOMErrorImpl(severity, message, &location));
  }

  test_support::XmlPlatform platform_;
  KelProjectDbErrorHandler handler_;
};

using Severities = std::tuple<DOMError::ErrorSeverity, bool, const char*>;

/// Each severity, whether it is a failure, and its name in print.
const Severities kSeverities[] = {{DOMError::DOM_SEVERITY_WARNING, false, "warning"},
                                  {DOMError::DOM_SEVERITY_ERROR, true, "error"},
                                  {DOMError::DOM_SEVERITY_FATAL_ERROR, true, "error"}};

TEST_F(ErrorHandler, HandleError_EverySeverity_SetsFailedUnlessItIsAWarningAndGoesOn) {
  EXPECT_FALSE(handler_.failed);
  EXPECT_FALSE(handler_.print);
  for (const auto& [severity, fails, name] : kSeverities) {
    handler_.failed = false;
    EXPECT_TRUE(Report(severity)) << severity;
    EXPECT_EQ(handler_.failed, fails) << severity;
  }
}

TEST_F(ErrorHandler, HandleError_WarningAfterError_KeepsFailed) {
  Report(DOMError::DOM_SEVERITY_ERROR);
  Report(DOMError::DOM_SEVERITY_WARNING);
  EXPECT_TRUE(handler_.failed);
}

TEST_F(ErrorHandler, HandleError_PrintSet_PrintsOneLineWithPlaceSeverityAndMessage) {
  handler_.print = true;
  for (const auto& [severity, fails, name] : kSeverities) {
    testing::internal::CaptureStdout();
    EXPECT_TRUE(Report(severity));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "file:///p.xml:12:34 " + std::string(name) + " a message\n");
  }
}

TEST_F(ErrorHandler, HandleError_TextOutsideAsciiOrNone_IsPrintedAsUtf8OrEmpty) {
  handler_.print = true;
  testing::internal::CaptureStdout();
  Report(DOMError::DOM_SEVERITY_ERROR, u"größe 日本 \U0001F41F {}%s", u"file:///é.xml");
  Report(DOMError::DOM_SEVERITY_ERROR, nullptr, nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "file:///é.xml:12:34 error größe 日本 🐟 {}%s\n:12:34 error \n");
}

TEST_F(ErrorHandler, HandleError_PrintNotSet_PrintsNothing) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  Report(DOMError::DOM_SEVERITY_FATAL_ERROR);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
