#include "platform/other_program.h"

#include <array>
#include <utility>

#include <windows.h>

#include "console.h"
#include "platform/windows/processes.h"
#include "platform/windows/texts.h"

namespace kelproj {
namespace {

struct Pipe {
  Handle reading;
  Handle writing;
};

// Its writing end is passed on to programs that are started.
Pipe MakePipe() {
  HANDLE reading = nullptr;
  HANDLE writing = nullptr;
  SECURITY_ATTRIBUTES passed_on = PassedOn();
  if (CreatePipe(&reading, &writing, &passed_on, 0) == 0) {
    throw Trouble("no program can be started");
  }
  SetHandleInformation(reading, HANDLE_FLAG_INHERIT, 0);
  return {Handle(reading), Handle(writing)};
}

std::string ReadToEnd(const Handle& file) {
  std::string text;
  std::array<char, 4096> block{};
  DWORD size = 0;
  while (ReadFile(file.get(), block.data(), static_cast<DWORD>(block.size()), &size, nullptr) !=
         0) {
    text.append(block.data(), size);
  }
  return text;
}

std::wstring SearchPath() {
  std::wstring path(GetEnvironmentVariableW(L"PATH", nullptr, 0), L'\0');
  path.resize(GetEnvironmentVariableW(L"PATH", path.data(), static_cast<DWORD>(path.size())));
  return path;
}

// Not in the current directory, where the system would begin: a project's files are no programs to
// be run. Empty if there is none.
std::wstring PlaceOf(const std::string& program) {
  const std::wstring path = SearchPath();
  const std::wstring name = Utf16From(program);
  const auto search = [&](wchar_t* place, DWORD size) {
    return SearchPathW(path.c_str(), name.c_str(), L".exe", size, place, nullptr);
  };
  std::wstring place(search(nullptr, 0), L'\0');
  place.resize(search(place.data(), static_cast<DWORD>(place.size())));
  return place;
}

}  // namespace

std::optional<ProgramAnswer> RunOtherProgram(const std::vector<std::string>& command,
                                             ProgramMessages messages) {
  const std::wstring place = PlaceOf(command.front());
  if (place.empty()) return std::nullopt;
  std::wstring line = CommandLineOf(command);
  Pipe pipe = MakePipe();
  STARTUPINFOW start =
      StartWith(GetStdHandle(STD_INPUT_HANDLE), pipe.writing.get(),
                messages == ProgramMessages::kAmongOutput ? pipe.writing.get() : nullptr);
  PROCESS_INFORMATION started{};
  if (CreateProcessW(place.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                     nullptr, &start, &started) == 0) {
    throw Trouble("no program can be started");
  }
  const Handle process(started.hProcess);
  const Handle thread(started.hThread);
  pipe.writing.reset();  // Else nobody would see the end.
  std::string text = ReadToEnd(pipe.reading);
  return ProgramAnswer{StatusAtEnd(process), std::move(text)};
}

}  // namespace kelproj
