#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include <rapidcheck.h>

namespace test_support {

/// A position in a list, or the one behind its end.
template <typename Entry>
typename std::vector<Entry>::iterator PickPlace(std::vector<Entry>& list) {
  const auto place = *rc::gen::inRange<std::size_t>(0, list.size() + 1);
  return list.begin() + static_cast<std::ptrdiff_t>(place);
}

/// Adds, removes, repeats, moves or changes one entry, as chance has it.
/// @param pick makes an entry
/// @param change changes one
template <typename Entry, typename Pick, typename Change>
void EditList(std::vector<Entry>& list, Pick pick, Change change) {
  enum Kind { kAdd, kRemove, kRepeat, kMove, kChange, kKinds };
  const auto kind = *rc::gen::inRange<int>(kAdd, kKinds);
  const auto entry = PickPlace(list);
  if (kind == kAdd || entry == list.end()) {
    list.insert(entry, pick());
  } else if (kind == kChange) {
    change(*entry);
  } else {
    const Entry copy = *entry;
    if (kind != kRepeat) list.erase(entry);
    if (kind != kRemove) list.insert(PickPlace(list), copy);
  }
}

}  // namespace test_support
