#include "xml/input.h"

#include <algorithm>
#include <array>
#include <utility>

#include <xercesc/util/BinMemInputStream.hpp>

#include "base/failure.h"
#include "platform/file_status.h"
#include "platform/input_file.h"
#include "platform/paths.h"
#include "xml/file_stream.h"
#include "xml/file_uri.h"
#include "xml/text.h"

namespace projectdb::xml {

std::optional<std::string> ReadBytes(const std::filesystem::path& path, std::size_t most) {
  const std::string name = paths::ToBytes(path);
  try {
    if (!files::IsRegularFile(name)) return std::nullopt;
    files::InputFile file(name);
    std::string bytes;
    std::array<unsigned char, 4096> block;
    while (bytes.size() < most) {
      const std::size_t size = file.Read(block.data(), std::min(block.size(), most - bytes.size()));
      if (size == 0) break;
      bytes.append(reinterpret_cast<const char*>(block.data()), size);
    }
    return bytes;
  } catch (const Failure&) {
    return std::nullopt;
  }
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
