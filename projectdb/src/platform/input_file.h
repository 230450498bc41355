#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "platform/open_file.h"

namespace projectdb::files {

/// A file that is opened by its native path and read from its beginning to its end.
class InputFile {
 public:
  /// Opens the file and reads its first block: a file that cannot be read shows at once.
  /// @exception Failure with the system's reason
  explicit InputFile(const std::string& path);

  /// Reads the next bytes, fewer than are asked for only at the end.
  /// @return their number
  /// @exception Failure with the system's reason
  std::size_t Read(unsigned char* target, std::size_t most);

  /// As it was before the first read.
  const FileStatus& status() const { return status_; }

 private:
  /// As much as the XML parser asks for first.
  static constexpr std::size_t kBlockSize = 48 * 1024UL;

  OpenFile file_;
  FileStatus status_;
  std::array<unsigned char, kBlockSize> first_block_;
  std::size_t first_block_size_;
  std::size_t taken_ = 0;  // Of the first block.
};

}  // namespace projectdb::files
