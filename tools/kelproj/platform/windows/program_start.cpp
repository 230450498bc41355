#include "platform/program_start.h"

#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <io.h>

#include <windows.h>

#include <shellapi.h>  // After the system's own header, without which it does not compile.

#include "platform/windows/texts.h"

namespace kelproj {
namespace {

struct FreeLocal {
  void operator()(void* memory) const { LocalFree(memory); }
};

}  // namespace

// Those of the main function are in the code page of the user, which lacks most characters.
std::vector<std::string> CallArguments(int /*argc*/, char** /*argv*/) {
  int count = 0;
  const std::unique_ptr<wchar_t*, FreeLocal> words(CommandLineToArgvW(GetCommandLineW(), &count));
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(Utf8From(words.get()[i]));
  return arguments;
}

std::shared_ptr<void> KeepBytesOfStreams() {
  for (FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
  // Of the console alone, which others go on with; a file or a pipe takes bytes.
  const UINT former = GetConsoleOutputCP();
  SetConsoleOutputCP(CP_UTF8);
  return {nullptr, [former](void*) { SetConsoleOutputCP(former); }};
}

bool IsColouredTerminal() {
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  return GetConsoleMode(output, &mode) != 0 &&
         SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

}  // namespace kelproj
