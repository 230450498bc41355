#pragma once

#include <stdexcept>
#include <string>

namespace projectdb {

/// Why a document cannot be made or written, or a file not replaced; the text has no trailing
/// newline. Before it leaves the library it is told with the path, as WritingPrefix puts it.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// How every text begins that tells why a project file was not written.
inline std::string WritingPrefix(const std::string& path) {
  return "Failed writing XML file " + path + ": ";
}

}  // namespace projectdb
