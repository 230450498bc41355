#include "xml/error_handler.h"

#include <iostream>

#include <xercesc/dom/DOMLocator.hpp>

#include "xml/text.h"

namespace projectdb {
namespace {

void Print(const xercesc::DOMError& error) {
  xml::Transcoder transcoder;
  const xercesc::DOMLocator& location = *error.getLocation();
  const bool is_warning = error.getSeverity() == xercesc::DOMError::DOM_SEVERITY_WARNING;
  std::cout << transcoder.ToUtf8(location.getURI()) << ':' << location.getLineNumber() << ':'
            << location.getColumnNumber() << ' ' << (is_warning ? "warning" : "error") << ' '
            << transcoder.ToUtf8(error.getMessage()) << '\n';
}

}  // namespace

bool KelProjectDbErrorHandler::handleError(const xercesc::DOMError& error) {
  if (error.getSeverity() != xercesc::DOMError::DOM_SEVERITY_WARNING) failed = true;
  if (print) Print(error);
  return true;
}

}  // namespace projectdb
