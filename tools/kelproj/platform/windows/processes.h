#pragma once

#include <memory>

#include <windows.h>

namespace kelproj {

struct CloseHandleOfSystem {
  using pointer = HANDLE;
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<HANDLE, CloseHandleOfSystem>;

/// For what programs that are started take over.
inline SECURITY_ATTRIBUTES PassedOn() { return {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE}; }

/// How a program starts with these streams.
inline STARTUPINFOW StartWith(HANDLE input, HANDLE output, HANDLE error) {
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = input;
  start.hStdOutput = output;
  start.hStdError = error;
  return start;
}

/// Waits for the end of a process. @return its status
inline int StatusAtEnd(const Handle& process) {
  WaitForSingleObject(process.get(), INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(process.get(), &status);
  return static_cast<int>(status);
}

}  // namespace kelproj
