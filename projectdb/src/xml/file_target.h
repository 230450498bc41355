#pragma once

#include <csignal>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <xercesc/framework/XMLFormatter.hpp>

#include "base/file_descriptor.h"

namespace projectdb::xml {

/// A file that a document is written to. Unlike the XML library's own, it does not lose a failure:
/// what could not be written or flushed makes Close throw. Made and destroyed by one thread.
class FileTarget : public xercesc::XMLFormatTarget {
 public:
  /// Creates or truncates the file.
  /// @param path native path
  /// @exception xercesc::IOException if the file cannot be opened
  explicit FileTarget(const std::string& path);

  void writeChars(const XMLByte* bytes, XMLSize_t count, xercesc::XMLFormatter*) override;
  void flush() override;

  /// Writes what is left, which nothing else does, and closes the file.
  /// @exception Failure with the system's reason if anything was not written
  void Close();

 private:
  /// Keeps a write beyond the process's file-size limit from ending the process: it fails instead.
  class SizeSignalBlock {
   public:
    SizeSignalBlock();
    ~SizeSignalBlock();
    SizeSignalBlock(const SizeSignalBlock&) = delete;
    SizeSignalBlock& operator=(const SizeSignalBlock&) = delete;

   private:
    sigset_t former_mask_;
  };

  void Write(const XMLByte* bytes, std::size_t count);
  void WriteBuffer();

  SizeSignalBlock size_signal_block_;  // First, so that it outlives the file.
  std::vector<XMLByte> buffer_;
  std::size_t used_ = 0;  // Of the buffer.
  std::optional<files::FileDescriptor> file_;
  int error_ = 0;  // The first failure's errno.
};

}  // namespace projectdb::xml
