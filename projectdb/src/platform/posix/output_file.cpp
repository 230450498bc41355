#include "platform/output_file.h"

#include <csignal>
#include <ctime>
#include <optional>

#include <fcntl.h>
#include <unistd.h>

#include "platform/posix/posix_system.h"

namespace projectdb::files {
namespace {

sigset_t SizeSignal() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGXFSZ);
  return signals;
}

/// Keeps a write beyond the process's file-size limit from ending the process: it fails instead.
class SizeSignalBlock {
 public:
  SizeSignalBlock() {
    const sigset_t size_signal = SizeSignal();
    pthread_sigmask(SIG_BLOCK, &size_signal, &former_mask_);
  }
  ~SizeSignalBlock() {
    const sigset_t size_signal = SizeSignal();
    const std::timespec at_once{};
    while (sigtimedwait(&size_signal, nullptr, &at_once) > 0) {
    }
    pthread_sigmask(SIG_SETMASK, &former_mask_, nullptr);
  }
  SizeSignalBlock(const SizeSignalBlock&) = delete;
  SizeSignalBlock& operator=(const SizeSignalBlock&) = delete;

 private:
  sigset_t former_mask_;
};

// Gives a negative number if the file cannot be opened.
int OpenForOutput(const std::string& path) {
  // Beyond a zero the system would not see the name, and write another file.
  if (path.find('\0') != std::string::npos) return -1;
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
  constexpr mode_t kAnyNewFile = 0666;
  return CallSystem("open", ::open, path.c_str(), kFlags, kAnyNewFile);
}

}  // namespace

struct OutputFile::State {
  SizeSignalBlock size_signal_block;  // First, so that it outlives the file.
  std::optional<OpenFile> file;
  int error = 0;  // The first failure's errno.
};

OutputFile::OutputFile(const std::string& path) : state_(std::make_unique<State>()) {
  const int descriptor = OpenForOutput(path);
  if (descriptor >= 0) state_->file.emplace(descriptor);
}

OutputFile::~OutputFile() = default;

bool OutputFile::is_open() const { return state_->file.has_value(); }

// The system may write less than it is given, such as up to where the disk is full.
void OutputFile::Write(const unsigned char* bytes, std::size_t count) {
  const int descriptor = DescriptorOf(*state_->file);
  while (state_->error == 0 && count > 0) {
    const ssize_t written = CallSystem("write", ::write, descriptor, bytes, count);
    if (written < 0) {
      state_->error = errno;
    } else {
      bytes += written;
      count -= static_cast<std::size_t>(written);
    }
  }
}

void OutputFile::Close() {
  if (!state_->file->Close() && state_->error == 0) state_->error = errno;
  if (state_->error != 0) ThrowSystemFailure(state_->error);
}

}  // namespace projectdb::files
