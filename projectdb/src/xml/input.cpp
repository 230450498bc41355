#include "xml/input.h"

#include <fstream>
#include <memory>
#include <system_error>
#include <utility>

#include <xercesc/util/BinFileInputStream.hpp>
#include <xercesc/util/BinMemInputStream.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "xml/file_uri.h"
#include "xml/text.h"

namespace projectdb::xml {

std::optional<std::string> ReadBytes(const std::filesystem::path& path, std::size_t most) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::string bytes;
  for (char byte = 0; bytes.size() < most && file.get(byte);) bytes += byte;
  if (file.bad()) return std::nullopt;
  return bytes;
}

FileInput::FileInput(const std::string& path)
    : InputSource(Transcoder().ToXml(FileUri(std::filesystem::u8path(path))).c_str()),
      path_(path) {}

xercesc::BinInputStream* FileInput::makeStream() const {
  // A directory can be opened but not read, and the parser leaks what it began to read from.
  std::error_code error;
  if (std::filesystem::is_directory(std::filesystem::u8path(path_), error)) return nullptr;
  auto stream = std::make_unique<xercesc::BinFileInputStream>(path_.c_str());
  return stream->getIsOpen() ? stream.release() : nullptr;
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
