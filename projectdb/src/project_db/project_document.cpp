#include "project_db/project_document.h"

#include <kel/version.h>
#include <xercesc/validators/schema/SchemaSymbols.hpp>

#include "platform/local_time.h"
#include "xml/nodes.h"

namespace projectdb {

Stamps NewStamps() { return {KEL_VERSION_NO, GetLocalTimeString()}; }

xml::Owned<xercesc::DOMDocument> CreateProjectDocument(xercesc::DOMImplementation& core) {
  xml::Owned<xercesc::DOMDocument> document =
      xml::CreateDocument(core, format::kNamespace.wide, format::kProject.wide);
  xercesc::DOMElement* root = document->getDocumentElement();
  root->setPrefix(format::kPrefix.wide);
  const std::u16string location =
      std::u16string(format::kNamespace.wide) + u" " + format::kSchemaFile.wide;
  root->setAttributeNS(xercesc::SchemaSymbols::fgURI_XSI, format::kSchemaLocation.wide,
                       location.c_str());
  return document;
}

}  // namespace projectdb
