#include "platform/input_file.h"

#include <algorithm>

namespace projectdb::files {

InputFile::InputFile(const std::string& path)
    : file_(OpenForReading(path)),
      status_(file_.Status()),
      first_block_size_(file_.Read(first_block_.data(), first_block_.size())) {}

std::size_t InputFile::Read(unsigned char* target, std::size_t most) {
  if (taken_ == first_block_size_) return file_.Read(target, most);
  const std::size_t size = std::min(most, first_block_size_ - taken_);
  std::copy_n(first_block_.data() + taken_, size, target);
  taken_ += size;
  return size;
}

}  // namespace projectdb::files
