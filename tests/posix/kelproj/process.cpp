#include "tests/kelproj/process.h"

#include <array>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test_support {
namespace {

/// A file in memory that a process reads from or writes to.
class MemoryFile {
 public:
  explicit MemoryFile(const char* name) : descriptor_(memfd_create(name, MFD_CLOEXEC)) {
    if (descriptor_ < 0) throw std::runtime_error("memfd_create failed");
  }
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  int descriptor() const { return descriptor_; }

  // To be read from its begin.
  void Hold(const std::string& text) const {
    const auto size = static_cast<ssize_t>(text.size());
    if (pwrite(descriptor_, text.data(), text.size(), 0) != size) {
      throw std::runtime_error("pwrite failed");
    }
  }

  std::string Text() const {
    std::string text;
    std::array<char, 4096> block;
    lseek(descriptor_, 0, SEEK_SET);
    for (ssize_t size = 0; (size = read(descriptor_, block.data(), block.size())) > 0;) {
      text.append(block.data(), static_cast<std::size_t>(size));
    }
    return text;
  }

 private:
  int descriptor_;
};

// Root's rights over files are not passed on to the program that is started next.
void ObeyPermissions() {
  for (const int capability : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH, CAP_FOWNER}) {
    prctl(PR_CAPBSET_DROP, capability, 0, 0, 0);
  }
}

[[noreturn]] void BecomeProgram(const std::vector<std::string>& command,
                                const ProcessSettings& settings, int in, int out, int err) {
  if (chdir(settings.directory.c_str()) != 0) _exit(126);
  for (const auto& [name, value] : settings.environment) setenv(name.c_str(), value.c_str(), 1);
  if (!settings.output.empty()) out = open(settings.output.c_str(), O_WRONLY | O_CLOEXEC);
  if (dup2(in, STDIN_FILENO) < 0 || dup2(out, STDOUT_FILENO) < 0 || dup2(err, STDERR_FILENO) < 0) {
    _exit(126);
  }
  if (settings.obeys_permissions) ObeyPermissions();
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

}  // namespace

void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << "status " << outcome.status << "\nout:\n" << outcome.out << "\nerr:\n" << outcome.err;
}

Outcome RunProcess(const std::vector<std::string>& command, const ProcessSettings& settings) {
  const MemoryFile in("in");
  const MemoryFile out("out");
  const MemoryFile err("err");
  in.Hold(settings.input);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) {
    BecomeProgram(command, settings, in.descriptor(), out.descriptor(), err.descriptor());
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child) throw std::runtime_error("waitpid failed");
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, out.Text(), err.Text()};
}

}  // namespace test_support
