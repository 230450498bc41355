#include "xml/writer.h"

#include <xercesc/dom/DOMConfiguration.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "base/failure.h"
#include "xml/errors.h"
#include "xml/file_target.h"
#include "xml/owned.h"

namespace projectdb::xml {
namespace {

void Write(const std::string& path, const xercesc::DOMDocument* document) {
  xercesc::DOMImplementation* implementation =
      xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
  const Owned<xercesc::DOMLSSerializer> serializer(implementation->createLSSerializer());
  xercesc::DOMConfiguration& configuration = *serializer->getDomConfig();
  if (configuration.canSetParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true)) {
    configuration.setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true);
  }
  FileTarget target(path);
  const Owned<xercesc::DOMLSOutput> output(implementation->createLSOutput());
  output->setByteStream(&target);
  WithOnlyRuntimeErrors(WritingPrefix(path), [&] {
    if (!serializer->write(document, output.get())) {
      throw Failure("the document cannot be written as XML");
    }
    target.Close();
  });
}

}  // namespace

void WriteDOMDocumentToFile(const std::string& path, const xercesc::DOMDocument* document) {
  if (path.empty() || !document) return;
  WithBadAlloc([&] { Write(path, document); });
}

}  // namespace projectdb::xml
