#pragma once

#include "xml/platform.h"

namespace test_support {

/// Keeps the XML library usable for as long as it lives.
class XmlPlatform {
 public:
  XmlPlatform() { projectdb::xml::InitializeXMLPlatform(); }
  ~XmlPlatform() { projectdb::xml::TerminateXMLPlatform(); }
  XmlPlatform(const XmlPlatform&) = delete;
  XmlPlatform& operator=(const XmlPlatform&) = delete;
};

}  // namespace test_support
