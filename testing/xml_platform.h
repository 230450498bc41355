#pragma once

#include "xml/platform.h"

namespace test_support {

/// Keeps the XML library usable for as long as it lives.
using XmlPlatform = projectdb::xml::Platform;

/// Leaves the XML library to those who need it, whoever has initialised it.
inline void TerminateXmlPlatformForAll() {
  constexpr int kMoreThanEver = 10'000;
  for (int i = 0; i < kMoreThanEver; ++i) projectdb::xml::TerminateXMLPlatform();
}

}  // namespace test_support
