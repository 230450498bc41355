#include "xml/input.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <system_error>
#include <utility>

#include <xercesc/util/BinFileInputStream.hpp>
#include <xercesc/util/BinMemInputStream.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>

#include "base/paths.h"
#include "xml/file_uri.h"
#include "xml/text.h"

namespace projectdb::xml {
namespace {

/// A file whose first block is read at once, as much as the parser asks for first: what the parser
/// makes for a file that fails in that first read, such as a directory, it leaks.
class StartedFile : public xercesc::BinFileInputStream {
 public:
  explicit StartedFile(const std::string& path) : BinFileInputStream(path.c_str()) {
    if (getIsOpen()) size_ = BinFileInputStream::readBytes(first_block_, sizeof(first_block_));
  }

  XMLSize_t readBytes(XMLByte* target, XMLSize_t most) override {
    if (taken_ == size_) return BinFileInputStream::readBytes(target, most);
    const XMLSize_t size = std::min(most, size_ - taken_);
    std::copy_n(first_block_ + taken_, size, target);
    taken_ += size;
    return size;
  }

 private:
  XMLByte first_block_[48 * 1024UL];
  XMLSize_t size_ = 0;
  XMLSize_t taken_ = 0;
};

}  // namespace

std::optional<std::string> ReadBytes(const std::filesystem::path& path, std::size_t most) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::string bytes;
  char block[4096];
  while (file && bytes.size() < most) {
    const std::size_t wanted = std::min(sizeof(block), most - bytes.size());
    file.read(block, static_cast<std::streamsize>(wanted));
    bytes.append(block, static_cast<std::size_t>(file.gcount()));
  }
  if (file.bad()) return std::nullopt;
  return bytes;
}

FileInput::FileInput(const std::string& path)
    : InputSource(Transcoder().ToXml(FileUri(paths::FromBytes(path))).c_str()), path_(path) {}

xercesc::BinInputStream* FileInput::makeStream() const {
  try {
    auto file = std::make_unique<StartedFile>(path_);
    return file->getIsOpen() ? file.release() : nullptr;
  } catch (const xercesc::XMLException&) {
    return nullptr;
  }
}

BytesInput::BytesInput(std::string bytes, const std::string& uri)
    : InputSource(Transcoder().ToXml(uri).c_str()), bytes_(std::move(bytes)) {}

xercesc::BinInputStream* BytesInput::makeStream() const {
  return new xercesc::BinMemInputStream(reinterpret_cast<const XMLByte*>(bytes_.data()),
                                        bytes_.size(),
                                        xercesc::BinMemInputStream::BufOpt_Reference);
}

NoInput::NoInput() { setIssueFatalErrorIfNotFound(false); }

xercesc::BinInputStream* NoInput::makeStream() const { return nullptr; }

}  // namespace projectdb::xml
