#include "standard_input.h"

#include <fstream>
#include <iostream>
#include <iterator>

#include "console.h"
#include "stored_project.h"

namespace kelproj {
namespace {

std::string ReadAll(std::istream& in, const std::string& title) {
  std::string bytes(std::istreambuf_iterator<char>(in), {});
  if (in.bad()) throw Trouble(title + " cannot be read");
  return bytes;
}

}  // namespace

std::string ReadInput(const std::string& name) {
  if (name == kStandardInput) return ReadAll(std::cin, "standard input");
  RequireReadable(name);
  std::ifstream file(name, std::ios::binary);
  return ReadAll(file, name);
}

}  // namespace kelproj
