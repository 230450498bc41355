#include "allocation/failing_allocation.h"

#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

namespace {

/// Allocations of this thread that still succeed before one fails; negative: none fails.
thread_local long allocations_before_failure = -1;
thread_local bool every_later_one_fails = false;
thread_local bool has_failed = false;

bool ThisAllocationFails() {
  if (allocations_before_failure < 0) return has_failed && every_later_one_fails;
  if (allocations_before_failure-- > 0) return false;
  has_failed = true;
  return true;
}

}  // namespace

// The array and the non-throwing forms come down to these.
void* operator new(std::size_t size) {
  void* const memory = ThisAllocationFails() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace test_support {
namespace {

using projectdb::KelProjectDatabase;

Outcome Run(const Operation& operation, KelProjectDatabase& database) {
  try {
    operation(database);
  } catch (const std::bad_alloc&) {
    return Outcome::kOutOfMemory;
  } catch (...) {
    return Outcome::kOtherException;
  }
  return Outcome::kFailureSwallowed;
}

}  // namespace

Outcome RunWithFailure(long failing_allocation, Shortage shortage, const Operation& operation,
                       KelProjectDatabase& database) {
  allocations_before_failure = failing_allocation;
  every_later_one_fails = shortage == Shortage::kEveryFromThereOn;
  has_failed = false;
  const Outcome outcome = Run(operation, database);
  const bool failed = has_failed;
  allocations_before_failure = -1;
  has_failed = false;
  return failed ? outcome : Outcome::kCompleted;
}

long WalkAllocations(const Operation& prepare, const Operation& operation,
                     const std::function<void(KelProjectDatabase&, Outcome)>& check) {
  long failures = 0;
  for (const Shortage shortage : {Shortage::kOneAllocation, Shortage::kEveryFromThereOn}) {
    for (long number = 0;; ++number) {
      SCOPED_TRACE(testing::Message()
                   << "allocation " << number << " fails"
                   << (shortage == Shortage::kEveryFromThereOn ? " and all that follow" : ""));
      KelProjectDatabase database;
      prepare(database);
      const Outcome outcome = RunWithFailure(number, shortage, operation, database);
      EXPECT_TRUE(outcome == Outcome::kOutOfMemory || outcome == Outcome::kCompleted)
          << "the operation hid the failure";
      check(database, outcome);
      if (outcome == Outcome::kCompleted) {
        EXPECT_GT(number, 0) << "the operation needs no memory: nothing was tested";
        break;
      }
      ++failures;
    }
  }
  return failures;
}

}  // namespace test_support
