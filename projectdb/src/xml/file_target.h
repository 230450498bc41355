#pragma once

#include <string>
#include <vector>

#include <xercesc/framework/XMLFormatter.hpp>

#include "platform/output_file.h"

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
  void WriteBuffer();

  std::vector<XMLByte> buffer_;
  std::size_t used_ = 0;  // Of the buffer.
  files::OutputFile file_;
};

}  // namespace projectdb::xml
