#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace projectdb::files {

/// A file that is written from its beginning to its end. No failure is lost: what could not be
/// written or flushed makes Close throw. Made and destroyed by one thread.
class OutputFile {
 public:
  /// Creates or truncates the file.
  explicit OutputFile(const std::string& path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  bool is_open() const;

  /// Writes nothing if anything was not written before.
  void Write(const unsigned char* bytes, std::size_t count);

  /// @exception Failure with the system's reason if anything was not written
  void Close();

 private:
  /// What the system has of it.
  struct State;

  std::unique_ptr<State> state_;
};

}  // namespace projectdb::files
