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

void InitializeWithDefaultLocale() { xercesc::XMLPlatformUtils::Initialize(); }

void InitializeXMLPlatform(void (*initialize)()) {
  const std::lock_guard<std::mutex> lock(PlatformMutex());
  WithPrefixedErrors("Failed to initialize ", initialize);
}

void TerminateXMLPlatform() {
  const std::lock_guard<std::mutex> lock(PlatformMutex());
  xercesc::XMLPlatformUtils::Terminate();
}

}  // namespace projectdb::xml
