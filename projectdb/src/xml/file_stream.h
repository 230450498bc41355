#pragma once

#include <xercesc/util/BinInputStream.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>

#include "base/failure.h"

namespace projectdb::xml {

/// What the parser reads a file through.
/// @tparam File an InputFile or the like, or a reference to one; it has read the file's first block
///         by now, since what the parser makes for a file that fails in its first read, such as a
///         directory, it leaks
template <typename File>
class FileStream : public xercesc::BinInputStream {
 public:
  template <typename Argument>
  explicit FileStream(Argument& argument) : file_(argument) {}

  XMLFilePos curPos() const override { return position_; }

  XMLSize_t readBytes(XMLByte* target, XMLSize_t most) override {
    try {
      const XMLSize_t size = file_.Read(target, most);
      position_ += size;
      return size;
    } catch (const Failure&) {
      // The parser makes an error of the file of it.
      throw xercesc::XMLPlatformUtilsException(__FILE__, __LINE__,
                                               xercesc::XMLExcepts::File_CouldNotReadFromFile);
    }
  }

  const XMLCh* getContentType() const override { return nullptr; }

 private:
  File file_;
  XMLFilePos position_ = 0;
};

}  // namespace projectdb::xml
