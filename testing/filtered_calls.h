#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/system_calls.h"

namespace test_support {

/// Stands before the system calls of this process's reads and saves for as long as it lives, but
/// not before those that the filter itself comes to.
class FilteredCalls {
 public:
  explicit FilteredCalls(projectdb::files::SystemCallFilter filter) {
    projectdb::files::FilterOfSystemCalls() =
        [filter = std::move(filter),
         is_inside = false](const projectdb::files::SystemCall& call) mutable {
          if (is_inside) return 0;
          is_inside = true;
          const int error = filter(call);
          is_inside = false;
          return error;
        };
  }
  ~FilteredCalls() { projectdb::files::FilterOfSystemCalls() = nullptr; }
  FilteredCalls(const FilteredCalls&) = delete;
  FilteredCalls& operator=(const FilteredCalls&) = delete;
};

/// Lets one call fail, the first of that name being number 1.
inline projectdb::files::SystemCallFilter FailCall(const std::string& name, int number, int error) {
  return [=, count = std::make_shared<int>(0)](const projectdb::files::SystemCall& call) {
    return call.name == name && ++*count == number ? error : 0;
  };
}

}  // namespace test_support
