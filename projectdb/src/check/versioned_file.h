#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

#include <projectdb/project_file.h>

#include "check/bytes_digest.h"
#include "platform/file_status.h"
#include "platform/input_file.h"

namespace projectdb::files {

/// A file, and which version of it is read.
class VersionedFile {
 public:
  /// @exception Failure as InputFile
  explicit VersionedFile(const std::string& path) : file_(path) {}

  /// As InputFile::Read, and the last one if it fails.
  std::size_t Read(unsigned char* target, std::size_t most);

  /// @exception Failure that of the read that failed, if one did
  void RequireReads() const;

  /// The version of the whole file, of which the rest is read for it. Any other than a regular file
  /// may have no end: its version is that of no file.
  /// @exception Failure if the rest cannot be read
  ProjectFileVersion Version();

  /// As it was before the first read.
  const FileStatus& status() const { return file_.status(); }

 private:
  InputFile file_;
  BytesDigest digest_;
  std::exception_ptr failure_;
};

/// The version of a file that was not read.
ProjectFileVersion VersionWithoutDigest(const FileStatus& status);

/// Whether a file of this version has these bytes.
bool HasBytes(const ProjectFileVersion& version, std::string_view bytes);

/// Whether the file at a path is still that of a version, or still missing.
/// @exception Failure if it cannot be read
bool IsOfVersion(const std::string& path, const ProjectFileVersion& version);

}  // namespace projectdb::files
