#pragma once

#include <functional>

#include <projectdb/project_db.h>

#include "testing/sanitizers.h"

/// Programs that link failing_allocation.cpp have global allocation functions that fail on demand.
namespace test_support {

/// What an operation that ran short of memory came to.
enum class Outcome {
  kCompleted,        ///< It needed fewer allocations; none failed.
  kOutOfMemory,      ///< std::bad_alloc came out.
  kRuntimeError,     ///< std::runtime_error came out.
  kOtherException,   ///< Another exception came out.
  kFailureSwallowed  ///< It returned all the same.
};

enum class Shortage {
  kOneAllocation,     ///< One allocation fails.
  kEveryFromThereOn,  ///< That allocation and all that follow fail.
};

using Operation = std::function<void(projectdb::KelProjectDatabase&)>;

/// Runs an operation in which the allocation of that number fails, the first being 0.
Outcome RunWithFailure(long failing_allocation, Shortage shortage, const Operation& operation,
                       projectdb::KelProjectDatabase& database);

/// From one failing allocation to the next where each run takes milliseconds: a sanitizer
/// multiplies them.
constexpr long kStrideOfSlowRuns = kSanitized ? 7 : 1;

/// Runs an operation again and again, each time on a new object and with a later allocation
/// failing, until it completes. The check sees each object afterwards.
/// @param stride from one failing allocation to the next
/// @return how many allocations were made to fail
long WalkAllocations(const Operation& prepare, const Operation& operation,
                     const std::function<void(projectdb::KelProjectDatabase&, Outcome)>& check,
                     long stride = 1);

/// Is told of each allocation that is made to fail, before it fails, and whether the XML library
/// asked for it. It must not allocate.
using FailureObserver = std::function<void(bool asked_by_xml_library)>;

/// @param observer empty: none
void SetFailureObserver(FailureObserver observer);

/// How many blocks are allocated, by who asked for them.
struct LiveBlocks {
  long of_xml_library;
  long of_others;
};

LiveBlocks CountLiveBlocks();

}  // namespace test_support
