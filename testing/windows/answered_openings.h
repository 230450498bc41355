#pragma once

#include <functional>
#include <utility>

#include <windows.h>

#include "platform/windows/windows_system.h"

namespace test_support {

/// What the system is asked to open.
struct AskedOpening {
  const wchar_t* name;
  projectdb::files::Opening opening;

  HANDLE Open() const {
    return CreateFileW(name, opening.access, opening.sharing, opening.security, opening.disposition,
                       opening.flags, nullptr);
  }
};

/// For as long as it lives, a test answers whenever the system is asked to open a file.
class AnsweredOpenings {
 public:
  using Answer = std::function<HANDLE(const AskedOpening&)>;

  explicit AnsweredOpenings(Answer answer) {
    answer_ = std::move(answer);
    projectdb::files::FunctionsOfSystem().create_file = Open;
  }
  ~AnsweredOpenings() { projectdb::files::FunctionsOfSystem().create_file = CreateFileW; }
  AnsweredOpenings(const AnsweredOpenings&) = delete;
  AnsweredOpenings& operator=(const AnsweredOpenings&) = delete;

 private:
  static HANDLE WINAPI Open(const wchar_t* name, DWORD access, DWORD sharing,
                            SECURITY_ATTRIBUTES* security, DWORD disposition, DWORD flags,
                            HANDLE /*model*/) {
    return answer_({name, {access, disposition, flags, sharing, security}});
  }

  static inline Answer answer_;
};

/// Refuses to open some files, with the error that a function gives for them; ERROR_SUCCESS opens.
inline AnsweredOpenings::Answer Refusing(std::function<DWORD(const AskedOpening&)> error_of) {
  return [error_of = std::move(error_of)](const AskedOpening& asked) {
    const DWORD error = error_of(asked);
    if (error == ERROR_SUCCESS) return asked.Open();
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
  };
}

}  // namespace test_support
