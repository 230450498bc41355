#include "xml/platform.h"

#include <mutex>
#include <string>

#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "xml/errors.h"

namespace projectdb::xml {
namespace {

/// The library's own handler would end the process.
class ThrowingPanicHandler : public xercesc::PanicHandler {
 public:
  void panic(PanicReasons reason) override {
    throw Failure(std::string("the XML library: ") + getPanicReasonString(reason));
  }
};

std::mutex& PlatformMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

void InitializeWithDefaultLocale() {
  // The library counts a failed initialisation like a successful one and would skip the next.
  static bool has_failed = false;
  static ThrowingPanicHandler panic_handler;
  if (has_failed) throw Failure("after an earlier failure");
  has_failed = true;
  xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                                        &panic_handler);
  has_failed = false;
}

void InitializeXMLPlatform(void (*initialize)()) {
  const std::lock_guard<std::mutex> lock(PlatformMutex());
  WithPrefixedErrors("Failed to initialize ", initialize);
}

void TerminateXMLPlatform() {
  const std::lock_guard<std::mutex> lock(PlatformMutex());
  xercesc::XMLPlatformUtils::Terminate();
}

}  // namespace projectdb::xml
