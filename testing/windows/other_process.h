#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>

#include <windows.h>

namespace test_support {

/// This program, run again to do a part of a test in a process of its own.
class OtherProcess {
 public:
  /// @param part name of a test that does it
  /// @param path that FileOfTheTest gives there
  /// @param choice that ChoiceOfTheTest gives there
  OtherProcess(const std::string& part, const std::string& path, const std::string& choice = "") {
    SetEnvironmentVariableA(kFile, path.c_str());
    SetEnvironmentVariableA(kChoice, choice.c_str());
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring command = L"\"" + std::wstring(program) +
                           L"\" --gtest_also_run_disabled_tests --gtest_brief=1 --gtest_filter=" +
                           std::wstring(part.begin(), part.end());
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    // The shares of the tests are this process's.
    SetEnvironmentVariableA("GTEST_TOTAL_SHARDS", nullptr);
    SetEnvironmentVariableA("GTEST_SHARD_INDEX", nullptr);
    if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                       &start, &process_) == 0) {
      throw std::runtime_error("no process can be started");
    }
  }
  ~OtherProcess() {
    TerminateProcess(process_.hProcess, 1);
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
  }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;

  /// @return its exit code
  DWORD Wait() const {
    WaitForSingleObject(process_.hProcess, INFINITE);
    DWORD status = 1;
    GetExitCodeProcess(process_.hProcess, &status);
    return status;
  }

  /// In the other process.
  static std::string FileOfTheTest() { return std::getenv(kFile); }
  static std::string ChoiceOfTheTest() { return std::getenv(kChoice); }

 private:
  static constexpr const char* kFile = "PROJECTDB_TEST_FILE";
  static constexpr const char* kChoice = "PROJECTDB_TEST_CHOICE";

  PROCESS_INFORMATION process_{};
};

}  // namespace test_support
