#include "xml/writer.h"

#include <xercesc/dom/DOMConfiguration.hpp>
#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>
#include <xercesc/dom/DOMLSOutput.hpp>
#include <xercesc/dom/DOMLSSerializer.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "base/failure.h"
#include "xml/errors.h"
#include "xml/file_target.h"
#include "xml/leaf_filter.h"
#include "xml/owned.h"
#include "xml/text.h"

namespace projectdb::xml {
namespace {

/// Made before a file is opened and so emptied, as making it may fail.
class Serializer {
 public:
  Serializer()
      : implementation_(xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS")),
        serializer_(implementation_->createLSSerializer()),
        output_(implementation_->createLSOutput()) {
    xercesc::DOMConfiguration& configuration = *serializer_->getDomConfig();
    if (configuration.canSetParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true)) {
      configuration.setParameter(xercesc::XMLUni::fgDOMWRTFormatPrettyPrint, true);
    }
  }

  void Write(const xercesc::DOMDocument* document, xercesc::XMLFormatTarget& target) {
    output_->setByteStream(&target);
    LeafFilter filter(target, transcoder_);
    serializer_->setFilter(&filter);
    if (!serializer_->write(document, output_.get())) {
      throw Failure("the document cannot be written as XML");
    }
  }

 private:
  xercesc::DOMImplementation* implementation_;
  Owned<xercesc::DOMLSSerializer> serializer_;
  Owned<xercesc::DOMLSOutput> output_;
  Transcoder transcoder_;
};

void WriteToFile(const std::string& path, const xercesc::DOMDocument* document) {
  Serializer serializer;
  const std::string prefix = WritingPrefix(path);
  FileTarget target(path);
  WithOnlyRuntimeErrors(prefix, [&] {
    serializer.Write(document, target);
    target.Close();
  });
}

}  // namespace

void WriteDOMDocumentToFile(const std::string& path, const xercesc::DOMDocument* document) {
  if (path.empty() || !document) return;
  WithBadAlloc([&] { WriteToFile(path, document); });
}

std::string WriteDOMDocumentToBytes(const xercesc::DOMDocument& document) {
  return WithBadAlloc([&] {
    xercesc::MemBufFormatTarget target;
    Serializer().Write(&document, target);
    return std::string(reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen());
  });
}

}  // namespace projectdb::xml
