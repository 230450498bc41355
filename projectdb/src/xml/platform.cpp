#include "xml/platform.h"

#include <mutex>

#include <xercesc/util/PlatformUtils.hpp>

#include "xml/errors.h"

namespace projectdb::xml {
namespace {

std::mutex& PlatformMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

void InitializeWithDefaultLocale() {
  // The library counts a failed initialisation like a successful one and would skip the next.
  static bool has_failed = false;
  if (has_failed) throw Failure("after an earlier failure");
  has_failed = true;
  xercesc::XMLPlatformUtils::Initialize();
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
