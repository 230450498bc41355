#pragma once

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>

#include "testing/xml_platform.h"
#include "xml/owned.h"

namespace test_support {

/// A document with an empty root element, and the XML library to work on it.
class DomDocument {
 public:
  DomDocument()
      : document_(xercesc::DOMImplementationRegistry::getDOMImplementation(u"Core")->createDocument(
            nullptr, u"root", nullptr)) {}

  xercesc::DOMDocument* get() const { return document_.get(); }
  xercesc::DOMElement* root() const { return document_->getDocumentElement(); }

 private:
  XmlPlatform platform_;
  projectdb::xml::Owned<xercesc::DOMDocument> document_;
};

}  // namespace test_support
