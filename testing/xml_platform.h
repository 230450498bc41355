#pragma once

#include "xml/platform.h"

namespace test_support {

/// Keeps the XML library usable for as long as it lives.
using XmlPlatform = projectdb::xml::Platform;

}  // namespace test_support
