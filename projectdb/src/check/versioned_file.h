#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <projectdb/project_file.h>

#include "base/input_file.h"

namespace projectdb::files {

/// A file, and which version of it is read.
class VersionedFile {
 public:
  /// @exception Failure as InputFile
  explicit VersionedFile(const std::string& path);

  /// As InputFile::Read.
  std::size_t Read(unsigned char* target, std::size_t most);

  /// The version of the whole file, of which the rest is read for it. Any other than a regular file
  /// may have no end: its version is that of no file.
  /// @exception Failure if the rest cannot be read
  ProjectFileVersion Version();

 private:
  InputFile file_;
  std::uint64_t digest_;
};

/// Whether a file of this version has these bytes.
bool HasBytes(const ProjectFileVersion& version, std::string_view bytes);

/// The version of the file at a path; that of no file if there is none.
/// @exception Failure if it cannot be read
ProjectFileVersion VersionOf(const std::string& path);

}  // namespace projectdb::files
