#pragma once

#include <functional>
#include <utility>

#include <windows.h>

#include "platform/windows/windows_system.h"

namespace test_support {

/// What the system is asked to open.
struct AskedOpening {
  const wchar_t* name;
  DWORD access;
  DWORD disposition;
  DWORD flags;
};

/// For as long as it lives, the system refuses to open some files.
class RefusedOpenings {
 public:
  using Refusal = std::function<DWORD(const AskedOpening&)>;

  /// @param refusal gives the error with which an opening is refused, or ERROR_SUCCESS
  explicit RefusedOpenings(Refusal refusal) {
    refusal_ = std::move(refusal);
    projectdb::files::FunctionsOfSystem().create_file = Open;
  }
  ~RefusedOpenings() {
    projectdb::files::FunctionsOfSystem() = projectdb::files::SystemFunctions();
  }
  RefusedOpenings(const RefusedOpenings&) = delete;
  RefusedOpenings& operator=(const RefusedOpenings&) = delete;

 private:
  static HANDLE WINAPI Open(const wchar_t* name, DWORD access, DWORD sharing,
                            SECURITY_ATTRIBUTES* security, DWORD disposition, DWORD flags,
                            HANDLE model) {
    const DWORD error = refusal_({name, access, disposition, flags});
    if (error == ERROR_SUCCESS) {
      return CreateFileW(name, access, sharing, security, disposition, flags, model);
    }
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
  }

  static inline Refusal refusal_;
};

}  // namespace test_support
