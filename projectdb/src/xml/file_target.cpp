#include "xml/file_target.h"

#include <cstring>

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

// The path as message text; one that is no text is shown with escapes.
std::u16string Printable(const std::string& path) {
  Transcoder transcoder;
  try {
    return transcoder.ToXml(path);
  } catch (const Failure&) {
    return transcoder.ToXml(fmt::format("{:?}", path));
  }
}

}  // namespace

FileTarget::FileTarget(const std::string& path) : buffer_(kBufferSize), file_(path) {
  if (!file_.is_open()) {
    ThrowXMLwithMemMgr1(xercesc::IOException, xercesc::XMLExcepts::File_CouldNotOpenFile,
                        Printable(path).c_str(), xercesc::XMLPlatformUtils::fgMemoryManager);
  }
}

void FileTarget::WriteBuffer() {
  file_.Write(buffer_.data(), used_);
  used_ = 0;
}

void FileTarget::writeChars(const XMLByte* bytes, XMLSize_t count, xercesc::XMLFormatter*) {
  if (count > buffer_.size() - used_) WriteBuffer();
  if (count > buffer_.size()) {
    file_.Write(bytes, count);
  } else {
    std::memcpy(buffer_.data() + used_, bytes, count);
    used_ += count;
  }
}

void FileTarget::flush() {}

void FileTarget::Close() {
  WriteBuffer();
  file_.Close();
}

}  // namespace projectdb::xml
