#include "base/input_file.h"

#include <algorithm>

#include <fcntl.h>
#include <unistd.h>

#include "base/system_calls.h"

namespace projectdb::files {

InputFile::InputFile(const std::string& path)
    : descriptor_(CallSystem("open", ::open, path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)),
      status_(descriptor_.Status()),
      first_block_size_(ReadFromSystem(first_block_.data(), first_block_.size())) {}

std::size_t InputFile::Read(unsigned char* target, std::size_t most) {
  if (taken_ == first_block_size_) return ReadFromSystem(target, most);
  const std::size_t size = std::min(most, first_block_size_ - taken_);
  std::copy_n(first_block_.data() + taken_, size, target);
  taken_ += size;
  return size;
}

// A pipe gives what there is; the parser wants enough at first to tell the encoding.
std::size_t InputFile::ReadFromSystem(unsigned char* target, std::size_t most) const {
  std::size_t size = 0;
  while (size < most) {
    const ssize_t count =
        CallSystem("read", ::read, descriptor_.number(), target + size, most - size);
    if (count < 0) ThrowSystemFailure();
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
  }
  return size;
}

}  // namespace projectdb::files
