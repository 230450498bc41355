// Runs a program in its console, which has the code page of old, and ends with the code page that
// the console has then.

#include <process.h>

#include <windows.h>

int main(int argc, char** argv) {
  constexpr UINT kFormer = 437;
  if (argc < 2 || SetConsoleOutputCP(kFormer) == 0) return 1;
  if (_spawnl(_P_WAIT, argv[1], argv[1], "--version", nullptr) != 0) return 2;
  return static_cast<int>(GetConsoleOutputCP());
}
