#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/system_calls.h"

namespace test_support {

/// Stands before the system calls of this process's reads and saves for as long as it lives, but
/// not before those that come while the filter is at work.
class FilteredCalls {
 public:
  explicit FilteredCalls(projectdb::files::SystemCallFilter filter) : filter_(std::move(filter)) {
    projectdb::files::FilterOfSystemCalls() = [this](const projectdb::files::SystemCall& call) {
      if (is_inside_.exchange(true)) return 0;
      const int error = filter_(call);
      is_inside_ = false;
      return error;
    };
  }
  ~FilteredCalls() { projectdb::files::FilterOfSystemCalls() = nullptr; }
  FilteredCalls(const FilteredCalls&) = delete;
  FilteredCalls& operator=(const FilteredCalls&) = delete;

 private:
  const projectdb::files::SystemCallFilter filter_;
  mutable std::atomic<bool> is_inside_{false};  ///< Atomic as other threads come by meanwhile.
};

/// Lets one call fail, the first of that name being number 1.
inline projectdb::files::SystemCallFilter FailCall(const std::string& name, int number, int error) {
  return [=, count = std::make_shared<int>(0)](const projectdb::files::SystemCall& call) {
    return call.name == name && ++*count == number ? error : 0;
  };
}

/// Acts before the first call of a name that comes behind one of another name, if that is not "".
/// @param act gives the error with which the call fails, or 0
inline projectdb::files::SystemCallFilter AtCallBehind(const std::string& former,
                                                       const std::string& name,
                                                       std::function<int()> act) {
  struct State {
    bool is_behind;
    bool has_acted;
  };
  const auto state = std::make_shared<State>(State{former.empty(), false});
  return [=](const projectdb::files::SystemCall& call) {
    const bool is_meant = state->is_behind && !state->has_acted && call.name == name;
    state->is_behind = state->is_behind || call.name == former;
    state->has_acted = state->has_acted || is_meant;
    return is_meant ? act() : 0;
  };
}

}  // namespace test_support
