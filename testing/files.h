#pragma once

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>

#include "testing/native_path.h"

namespace test_support {

/// What the system says of an errno.
inline std::string TextOfErrno(int error) { return std::generic_category().message(error); }

inline std::string ReadFile(const std::string& path) {
  std::ifstream in(NativePath(path), std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream out(NativePath(path), std::ios::binary);
  out << bytes;
  if (!out.flush()) throw std::runtime_error("cannot write " + path);
}

}  // namespace test_support
