#pragma once

#include <string>
#include <vector>

#include <projectdb/records.h>

#include "fuzz_input.h"

namespace fuzz {

/// Reads the records of a project as well.
class RecordInput : public Input {
 public:
  using Input::Input;

  projectdb::ProcType Process() { return static_cast<projectdb::ProcType>(Number()); }
  projectdb::ParameterType Type() { return static_cast<projectdb::ParameterType>(Number()); }

  projectdb::Parameter OneParameter() {
    std::string name = Text();
    std::string value = Text();
    return projectdb::Parameter(name, value, Type());
  }

  projectdb::DesignFile OneFile() {
    std::string name = Text();
    std::string version = Text();
    return projectdb::DesignFile(name, version, Text());
  }

  projectdb::IP OneIp() {
    projectdb::IP ip{Text(), Text(), {}};
    for (const std::string& name : Texts()) ip.src_files.push_back({name});
    return ip;
  }

  std::vector<projectdb::Parameter> Parameters() {
    return Several<projectdb::Parameter>([this] { return OneParameter(); });
  }

  std::vector<projectdb::DesignFile> DesignFiles() {
    return Several<projectdb::DesignFile>([this] { return OneFile(); });
  }

 private:
  /// At most nine.
  template <typename Record, typename Make>
  std::vector<Record> Several(Make make) {
    std::vector<Record> records;
    for (unsigned count = Byte() % 10U; count > 0; --count) records.push_back(make());
    return records;
  }
};

}  // namespace fuzz
