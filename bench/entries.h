#pragma once

#include <string>
#include <vector>

#include <projectdb/records.h>

#include "generator.h"

namespace bench {

/// So many entries of every kind.
struct Entries {
  explicit Entries(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      files.push_back(DesignFileAt(i));
      names.push_back("constraints/part_" + std::to_string(i) + ".sdc");
      parameters.push_back(ParameterAt(i));
    }
  }

  std::vector<projectdb::DesignFile> files;
  std::vector<std::string> names;
  std::vector<projectdb::Parameter> parameters;
};

}  // namespace bench
