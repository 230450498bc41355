#include "xml/file_target.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <system_error>

#include <fmt/format.h>
#include <xercesc/util/IOException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>

#include "base/failure.h"
#include "xml/text.h"

namespace projectdb::xml {
namespace {

// One write for each piece that the serializer hands over would cost more than the serializer.
constexpr std::size_t kBufferSize = std::size_t{1} << 16U;

std::FILE* OpenFile(const std::string& path) {
  // Beyond a zero the system would not see the name, and write another file.
  const bool is_name = path.find('\0') == std::string::npos;
  return is_name ? std::fopen(path.c_str(), "wb") : nullptr;
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

FileTarget::FileTarget(const std::string& path) : buffer_(kBufferSize), file_(OpenFile(path)) {
  if (!file_) {
    ThrowXMLwithMemMgr1(xercesc::IOException, xercesc::XMLExcepts::File_CouldNotOpenFile,
                        Printable(path).c_str(), xercesc::XMLPlatformUtils::fgMemoryManager);
  }
  // The standard library's own buffer would cost a lock and a few calls for each piece.
  std::setvbuf(file_.get(), nullptr, _IONBF, 0);
}

void FileTarget::NoteError(bool succeeded) {
  if (!succeeded && error_ == 0) error_ = errno;
}

void FileTarget::Write(const XMLByte* bytes, std::size_t count) {
  if (error_ == 0) NoteError(std::fwrite(bytes, 1, count, file_.get()) == count);
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
  NoteError(std::fclose(file_.release()) == 0);
  if (error_ != 0) throw Failure(std::generic_category().message(error_));
}

}  // namespace projectdb::xml
