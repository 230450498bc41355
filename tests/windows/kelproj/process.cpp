#include "tests/kelproj/process.h"

#include <filesystem>
#include <memory>
#include <stdexcept>

#include <windows.h>

#include "platform/windows/texts.h"
#include "testing/files.h"
#include "testing/temporary_directory.h"

namespace test_support {
namespace {

struct CloseStream {
  using pointer = HANDLE;
  void operator()(HANDLE stream) const { CloseHandle(stream); }
};
using Stream = std::unique_ptr<HANDLE, CloseStream>;

/// Opens a file that is passed on to a process.
Stream OpenStream(const std::string& path, DWORD access) {
  SECURITY_ATTRIBUTES passed_on{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  const HANDLE stream =
      CreateFileW(NativePath(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &passed_on,
                  OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (stream == INVALID_HANDLE_VALUE) throw std::runtime_error("cannot open " + path);
  return Stream(stream);
}

/// Changes the environment of this process, which is passed on, for as long as it lives.
class Environment {
 public:
  explicit Environment(const std::map<std::string, std::string>& variables) {
    for (const auto& [name, value] : variables) {
      const std::wstring variable = kelproj::Utf16From(name);
      former_.emplace(variable, ValueOf(variable));
      SetEnvironmentVariableW(variable.c_str(), kelproj::Utf16From(value).c_str());
    }
  }
  ~Environment() {
    for (const auto& [name, value] : former_) {
      SetEnvironmentVariableW(name.c_str(), value ? value->c_str() : nullptr);
    }
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  static std::unique_ptr<std::wstring> ValueOf(const std::wstring& name) {
    const DWORD size = GetEnvironmentVariableW(name.c_str(), nullptr, 0);
    if (size == 0) return nullptr;
    auto value = std::make_unique<std::wstring>(size, L'\0');
    value->resize(GetEnvironmentVariableW(name.c_str(), value->data(), size));
    return value;
  }

  std::map<std::wstring, std::unique_ptr<std::wstring>> former_;
};

// As shells have it.
constexpr int kNoSuchProgram = 127;

}  // namespace

void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << "status " << outcome.status << "\nout:\n" << outcome.out << "\nerr:\n" << outcome.err;
}

Outcome RunProcess(const std::vector<std::string>& command, const ProcessSettings& settings) {
  const TemporaryDirectory streams;
  const std::string output = settings.output.empty() ? streams / "out" : settings.output;
  WriteFile(streams / "in", settings.input);
  const Environment environment(settings.environment);
  int status = -1;
  {
    const Stream in = OpenStream(streams / "in", GENERIC_READ);
    const Stream out = OpenStream(output, GENERIC_WRITE);
    const Stream err = OpenStream(streams / "err", GENERIC_WRITE);
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = in.get();
    start.hStdOutput = out.get();
    start.hStdError = err.get();
    PROCESS_INFORMATION started{};
    if (CreateProcessW(nullptr, kelproj::CommandLineOf(command).data(), nullptr, nullptr, TRUE, 0,
                       nullptr, NativePath(settings.directory).c_str(), &start, &started) == 0) {
      if (GetLastError() != ERROR_FILE_NOT_FOUND) {
        throw std::runtime_error("cannot start " + command.front());
      }
      return {kNoSuchProgram, "", ""};
    }
    const Stream process(started.hProcess);
    const Stream thread(started.hThread);
    WaitForSingleObject(process.get(), INFINITE);
    DWORD end = 0;
    GetExitCodeProcess(process.get(), &end);
    status = static_cast<int>(end);
  }
  return {status, settings.output.empty() ? ReadFile(output) : "", ReadFile(streams / "err")};
}

}  // namespace test_support
