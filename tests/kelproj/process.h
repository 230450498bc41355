#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace test_support {

/// What a process ended with.
struct Outcome {
  int status;  ///< -1 if a signal ended it.
  std::string out;
  std::string err;

  bool operator==(const Outcome& other) const {
    return status == other.status && out == other.out && err == other.err;
  }
  bool operator!=(const Outcome& other) const { return !(*this == other); }
};

void PrintTo(const Outcome& outcome, std::ostream* out);

struct ProcessSettings {
  std::string directory = ".";
  std::map<std::string, std::string> environment = {};  ///< Beside that of this process.
  std::string output = {};         ///< The file to which standard output goes; "" to capture it.
  bool obeys_permissions = false;  ///< Whether permissions of files bind it even if it is root.
  std::string input = {};          ///< What it reads on standard input.
};

/// Runs a program to its end.
/// @param command the program, which is looked for like a shell's, and its arguments
Outcome RunProcess(const std::vector<std::string>& command, const ProcessSettings& settings = {});

}  // namespace test_support
