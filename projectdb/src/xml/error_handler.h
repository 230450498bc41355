#pragma once

#include <xercesc/dom/DOMError.hpp>
#include <xercesc/dom/DOMErrorHandler.hpp>

namespace projectdb {

/// Notes whether a document has errors and lets the parser go on, so that it finds them all.
class KelProjectDbErrorHandler : public xercesc::DOMErrorHandler {
 public:
  /// Sets failed unless the problem is a warning, and prints it if print is set.
  /// @return true: parsing goes on
  bool handleError(const xercesc::DOMError& error) override;

  bool failed = false;  ///< Whether an error or fatal error was reported.
  bool print = false;   ///< Whether every problem is printed to standard output.
};

}  // namespace projectdb
