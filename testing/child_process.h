#pragma once

#include <exception>
#include <stdexcept>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace test_support {

/// Runs work that changes the process (limits, locale, mounts) in a child of its own.
/// @param work gives a text
/// @return that text; what the work threw, or what ended the child, shows in it
template <typename Work>
std::string InChildProcess(Work work) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("pipe failed");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) {
    std::string text;
    try {
      text = work();
    } catch (const std::exception& exception) {
      text = std::string("thrown: ") + exception.what();
    } catch (...) {
      text = "thrown: something else";
    }
    const bool written = write(ends[1], text.data(), text.size()) >= 0;
    _exit(written ? 0 : 1);
  }
  close(ends[1]);
  std::string text;
  char block[4096];
  for (ssize_t size = 0; (size = read(ends[0], block, sizeof(block))) > 0;) {
    text.append(block, static_cast<std::size_t>(size));
  }
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  return status == 0 ? text : text + " (child ended with status " + std::to_string(status) + ")";
}

}  // namespace test_support
