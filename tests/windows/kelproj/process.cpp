#include "tests/kelproj/process.h"

#include <filesystem>
#include <memory>
#include <stdexcept>

#include <windows.h>

#include "platform/windows/processes.h"
#include "platform/windows/texts.h"
#include "testing/files.h"
#include "testing/temporary_directory.h"

namespace test_support {
namespace {

using kelproj::Handle;

/// Opens a file that is passed on to a process.
Handle OpenStream(const std::string& path, DWORD access) {
  SECURITY_ATTRIBUTES passed_on = kelproj::PassedOn();
  const HANDLE stream =
      CreateFileW(NativePath(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &passed_on,
                  OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (stream == INVALID_HANDLE_VALUE) throw std::runtime_error("cannot open " + path);
  return Handle(stream);
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
    const Handle in = OpenStream(streams / "in", GENERIC_READ);
    const Handle out = OpenStream(output, GENERIC_WRITE);
    const Handle err = OpenStream(streams / "err", GENERIC_WRITE);
    STARTUPINFOW start = kelproj::StartWith(in.get(), out.get(), err.get());
    PROCESS_INFORMATION started{};
    if (CreateProcessW(nullptr, kelproj::CommandLineOf(command).data(), nullptr, nullptr, TRUE, 0,
                       nullptr, NativePath(settings.directory).c_str(), &start, &started) == 0) {
      if (GetLastError() != ERROR_FILE_NOT_FOUND) {
        throw std::runtime_error("cannot start " + command.front());
      }
      return {kNoSuchProgram, "", ""};
    }
    const Handle process(started.hProcess);
    const Handle thread(started.hThread);
    status = kelproj::StatusAtEnd(process);
  }
  return {status, settings.output.empty() ? ReadFile(output) : "", ReadFile(streams / "err")};
}

}  // namespace test_support
