#include "standard_input.h"

#include <fstream>
#include <iostream>
#include <iterator>

#include "console.h"
#include "platform/file_names.h"
#include "stored_project.h"

namespace kelproj {
namespace {

std::string ReadAll(std::istream& in, const std::string& title) {
  std::string bytes(std::istreambuf_iterator<char>(in), {});
  if (in.bad()) throw Trouble(title + " cannot be read");
  return bytes;
}

}  // namespace

std::string ReadFile(const std::string& path, const std::string& title) {
  RequireReadable(path);
  std::ifstream file(PathFrom(path), std::ios::binary);
  return ReadAll(file, title);
}

std::string ReadInput(const std::string& name) {
  return name == kStandardInput ? ReadAll(std::cin, "standard input") : ReadFile(name, name);
}

}  // namespace kelproj
