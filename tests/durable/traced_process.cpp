#include "tests/durable/traced_process.h"

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test_support {
namespace {

constexpr int kCannotBeTraced = 125;
constexpr int kSystemCallStop = SIGTRAP | 0x80;

[[noreturn]] void RunTraced(const std::function<int()>& work) {
  if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(kCannotBeTraced);
  ::raise(SIGSTOP);
  int status = 1;
  try {
    status = work();
  } catch (...) {
  }
  ::_exit(status);
}

}  // namespace

TracedProcess::TracedProcess(const std::function<int()>& work) : process_(::fork()) {
  if (process_ < 0) throw std::runtime_error("fork failed");
  if (process_ == 0) RunTraced(work);
  constexpr unsigned long kOptions = PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL;
  if (WaitForStop()) ::ptrace(PTRACE_SETOPTIONS, process_, nullptr, kOptions);
}

TracedProcess::~TracedProcess() { Kill(); }

bool TracedProcess::IsPossible() {
  TracedProcess process([] { return 0; });
  const std::optional<Stop> stop = process.Continue();
  return stop.has_value();
}

bool TracedProcess::WaitForStop() {
  ended_ = ::waitpid(process_, &status_, 0) != process_ || !WIFSTOPPED(status_);
  return !ended_;
}

std::optional<TracedProcess::Stop> TracedProcess::Continue() {
  while (!ended_) {
    if (::ptrace(PTRACE_SYSCALL, process_, nullptr, nullptr) != 0 || !WaitForStop()) break;
    if (WSTOPSIG(status_) != kSystemCallStop) continue;
    __ptrace_syscall_info info{};
    if (::ptrace(PTRACE_GET_SYSCALL_INFO, process_, sizeof(info), &info) <= 0) break;
    if (info.op != PTRACE_SYSCALL_INFO_ENTRY) return Stop{false};
    return Stop{true, info.entry.nr, info.entry.args[0]};
  }
  return std::nullopt;
}

void TracedProcess::Kill() {
  if (ended_) return;
  ::kill(process_, SIGKILL);
  while (WaitForStop()) {
  }
}

std::string TracedProcess::PathOf(std::uint64_t descriptor) const {
  std::error_code error;
  return std::filesystem::read_symlink(
             "/proc/" + std::to_string(process_) + "/fd/" + std::to_string(descriptor), error)
      .string();
}

}  // namespace test_support
