#include "xml/input.h"

#include <fstream>
#include <system_error>
#include <utility>

#include <xercesc/util/BinMemInputStream.hpp>

#include "base/failure.h"
#include "base/input_file.h"
#include "base/paths.h"
#include "xml/file_stream.h"
#include "xml/file_uri.h"
#include "xml/text.h"

namespace projectdb::xml {
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
    return new FileStream<files::InputFile>(path_);
  } catch (const Failure&) {
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
