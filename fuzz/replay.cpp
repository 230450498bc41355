// Runs a fuzz target over every file of a directory: replay_TARGET DIRECTORY

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "testing/files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::string> FilesOf(const std::string& directory) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    if (entry.is_regular_file()) files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void Run(const std::string& bytes) {
  // Of the exact size: an address sanitizer sees a read beyond it.
  const std::vector<std::uint8_t> copy(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(copy.data(), copy.size());
}

int Replay(const std::string& directory) {
  const std::vector<std::string> files = FilesOf(directory);
  if (files.empty()) {
    std::cerr << "no files in " << directory << "\n";
    return 1;
  }
  Run("");
  for (const std::string& file : files) {
    // A target that finds something ends the process: this is then the last line.
    std::cout << file << std::endl;
    Run(test_support::ReadFile(file));
  }
  std::cout << files.size() << " files replayed\n";
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: " << argv[0] << " DIRECTORY\n";
    return 2;
  }
  try {
    return Replay(argv[1]);
  } catch (const std::exception& exception) {
    std::cerr << "thrown: " << exception.what() << "\n";
  }
  return 1;
}
