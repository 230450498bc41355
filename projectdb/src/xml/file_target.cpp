#include "xml/file_target.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>
#include <xercesc/util/IOException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>

#include "base/failure.h"
#include "base/system_calls.h"
#include "xml/text.h"

namespace projectdb::xml {
namespace {

// One write for each piece that the serializer hands over would cost more than the serializer.
constexpr std::size_t kBufferSize = std::size_t{1} << 16U;

// Gives a negative number if the file cannot be opened.
int OpenFile(const std::string& path) {
  // Beyond a zero the system would not see the name, and write another file.
  if (path.find('\0') != std::string::npos) return -1;
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
  constexpr mode_t kAnyNewFile = 0666;
  return files::CallSystem("open", ::open, path.c_str(), kFlags, kAnyNewFile);
}

// The path as message text; one that is no text is shown with escapes.
std::u16string Printable(const std::string& path) {
  Transcoder transcoder;
  try {
    return transcoder.ToXml(path);
  } catch (const Failure&) {
    return transcoder.ToXml(fmt::format("{:?}", path));
  }
}

sigset_t SizeSignal() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGXFSZ);
  return signals;
}

}  // namespace

FileTarget::SizeSignalBlock::SizeSignalBlock() {
  const sigset_t size_signal = SizeSignal();
  pthread_sigmask(SIG_BLOCK, &size_signal, &former_mask_);
}

FileTarget::SizeSignalBlock::~SizeSignalBlock() {
  const sigset_t size_signal = SizeSignal();
  const std::timespec at_once{};
  while (sigtimedwait(&size_signal, nullptr, &at_once) > 0) {
  }
  pthread_sigmask(SIG_SETMASK, &former_mask_, nullptr);
}

FileTarget::FileTarget(const std::string& path) : buffer_(kBufferSize) {
  const int number = OpenFile(path);
  if (number < 0) {
    ThrowXMLwithMemMgr1(xercesc::IOException, xercesc::XMLExcepts::File_CouldNotOpenFile,
                        Printable(path).c_str(), xercesc::XMLPlatformUtils::fgMemoryManager);
  }
  file_.emplace(number);
}

// The system may write less than it is given, such as up to where the disk is full.
void FileTarget::Write(const XMLByte* bytes, std::size_t count) {
  while (error_ == 0 && count > 0) {
    const ssize_t written = files::CallSystem("write", ::write, file_->number(), bytes, count);
    if (written < 0) {
      error_ = errno;
    } else {
      bytes += written;
      count -= static_cast<std::size_t>(written);
    }
  }
}

void FileTarget::WriteBuffer() {
  Write(buffer_.data(), used_);
  used_ = 0;
}

void FileTarget::writeChars(const XMLByte* bytes, XMLSize_t count, xercesc::XMLFormatter*) {
  if (count > buffer_.size() - used_) WriteBuffer();
  if (count > buffer_.size()) {
    Write(bytes, count);
  } else {
    std::memcpy(buffer_.data() + used_, bytes, count);
    used_ += count;
  }
}

void FileTarget::flush() {}

void FileTarget::Close() {
  WriteBuffer();
  if (file_->Close() != 0 && error_ == 0) error_ = errno;
  if (error_ != 0) throw Failure(std::generic_category().message(error_));
}

}  // namespace projectdb::xml
