#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>

/// Telling by which functions of shared libraries the running code was called.
namespace test_support {

/// The calls that are under way, as places in the code. Does not allocate once it has been used.
class CallStack {
 public:
  CallStack() : depth_(backtrace(frames_, kMaxDepth)) {}
  void* const* begin() const { return frames_; }
  void* const* end() const { return frames_ + depth_; }

 private:
  static constexpr int kMaxDepth = 200;
  void* frames_[kMaxDepth];
  int depth_;
};

/// A function that a shared library exports.
class LibraryFunction {
 public:
  /// @param symbol the mangled name
  /// @exception std::invalid_argument if no library has it
  explicit LibraryFunction(const char* symbol) {
    void* const address = dlsym(RTLD_DEFAULT, symbol);
    Dl_info info;
    void* entry = nullptr;
    if (address == nullptr || dladdr1(address, &info, &entry, RTLD_DL_SYMENT) == 0) {
      throw std::invalid_argument(std::string("no library has ") + symbol);
    }
    begin_ = reinterpret_cast<std::uintptr_t>(address);
    size_ = static_cast<const ElfW(Sym)*>(entry)->st_size;
  }

  /// Whether one of the calls is a call of this function.
  bool IsIn(const CallStack& calls) const {
    for (const void* frame : calls) {
      // A frame has the address of the instruction after the call.
      const auto place = reinterpret_cast<std::uintptr_t>(frame) - 1;
      if (place >= begin_ && place - begin_ < size_) return true;
    }
    return false;
  }

 private:
  std::uintptr_t begin_ = 0;
  std::uintptr_t size_ = 0;
};

}  // namespace test_support
