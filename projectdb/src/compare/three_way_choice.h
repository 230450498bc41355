#pragma once

#include <type_traits>

namespace projectdb {

/// The same thing in each of the three projects of a merge; it may be a reference.
template <typename Value>
struct Three {
  Value base;
  Value ours;
  Value theirs;

  /// The function's value for each.
  template <typename Function>
  auto Each(const Function& function) const {
    return Three<std::invoke_result_t<Function, const Value&>>{function(base), function(ours),
                                                               function(theirs)};
  }
};

/// Which of two changed values stands for both.
enum class Choice {
  kOurs,      ///< Ours alone was changed, or theirs is equal to it.
  kTheirs,    ///< Theirs alone was changed.
  kConflict,  ///< Both were changed, not alike.
};

/// The one rule of all merges, for anything that can be compared. With none or null for what is not
/// there, an addition or a removal is a change as any other.
template <typename Value>
Choice Choose(const Three<Value>& values) {
  if (values.theirs == values.base || values.theirs == values.ours) return Choice::kOurs;
  return values.ours == values.base ? Choice::kTheirs : Choice::kConflict;
}

/// A conflict leaves ours.
template <typename Value>
const Value& Chosen(Choice choice, const Three<Value>& values) {
  return choice == Choice::kTheirs ? values.theirs : values.ours;
}

}  // namespace projectdb
