#include "xml/input.h"

#include <memory>
#include <system_error>
#include <utility>

#include <xercesc/util/BinFileInputStream.hpp>
#include <xercesc/util/BinMemInputStream.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "xml/file_uri.h"
#include "xml/text.h"

namespace projectdb::xml {

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
