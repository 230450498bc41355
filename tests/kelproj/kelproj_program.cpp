#include <iostream>
#include <sstream>

#include "tests/kelproj/kelproj_test.h"
#include "tools/kelproj/program.h"

namespace test_support {
namespace {

/// Gives standard input a text for as long as it lives.
class StandardInput {
 public:
  explicit StandardInput(const std::string& text) : text_(text), former_(std::cin.rdbuf(&text_)) {}
  ~StandardInput() { std::cin.rdbuf(former_); }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;

 private:
  std::stringbuf text_;
  std::streambuf* former_;
};

}  // namespace

std::string KelprojProgram() { return KELPROJ_PROGRAM; }

Outcome RunKelprojHere(const std::vector<std::string>& arguments, const std::string& directory,
                       const std::string& input) {
  const WorkingDirectory here(NativePath(directory));
  const StandardInput standard_input(input);
  std::ostringstream out;
  std::ostringstream err;
  const kelproj::ExitStatus status = kelproj::RunProgram(arguments, {out, err, false});
  return {static_cast<int>(status), out.str(), err.str()};
}

}  // namespace test_support
