#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include <xercesc/sax/InputSource.hpp>

/// Where the parser reads from. Files are opened by their native path, never through the locale.
namespace projectdb::xml {

/// The bytes of a file, at most so many of its first: a size that the system tells need not be
/// true. Regular files only: a device or a pipe may keep the reader waiting.
/// @return nothing if it cannot be read
std::optional<std::string> ReadBytes(const std::filesystem::path& path, std::size_t most);

/// A file that is read as it is parsed. One that cannot be opened is a fatal parse error.
class FileInput : public xercesc::InputSource {
 public:
  explicit FileInput(const std::string& path);
  xercesc::BinInputStream* makeStream() const override;

 private:
  std::string path_;
};

/// The bytes of a file that was read before.
class BytesInput : public xercesc::InputSource {
 public:
  /// @param uri of the file, the base of references in it
  BytesInput(std::string bytes, const std::string& uri);
  xercesc::BinInputStream* makeStream() const override;

 private:
  std::string bytes_;
};

/// A file that cannot be had; the parser goes on without it.
class NoInput : public xercesc::InputSource {
 public:
  NoInput();
  xercesc::BinInputStream* makeStream() const override;
};

}  // namespace projectdb::xml
