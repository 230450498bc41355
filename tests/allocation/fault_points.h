#pragma once

#include <functional>
#include <iosfwd>
#include <string>

#include "tests/allocation/failing_allocation.h"

/// Failing each allocation of an operation of the XML library's users, in processes of their own:
/// a crash then shows as what it is and ends nothing else.
namespace test_support {

/// What is known of one run in which memory runs short, and of all runs so far.
struct FaultPoints {
  // Of the present run.
  Shortage shortage;
  long number;             ///< Of the first allocation that fails.
  bool is_running;         ///< Its end has not been reached.
  bool completed;          ///< Nothing failed: there are no more such allocations.
  bool in_parser;          ///< The first one failed within the parser.
  bool in_xml_library;     ///< The XML library asked for one that failed.
  bool broke_xml_library;  ///< One failed in a function of the XML library that breaks by it.

  // Of all runs.
  long tried;
  long out_of_memory;
  long runtime_errors;
  long not_survived;  ///< The XML library broke and ended the process.
  long leaks_of_xml_library;
  long last_in_parser;     ///< Number of a run; negative if there is none.
  long first_with_effect;  ///< The first that had changed something; negative if there is none.
};

std::ostream& operator<<(std::ostream& out, const FaultPoints& points);

/// What a run must not have come to; empty if all is well.
class Complaints {
 public:
  void Unless(bool condition, const std::string& text) {
    if (!condition) text_ += text + "; ";
  }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

/// How often a new process is begun.
enum class Processes {
  kOnlyAfterDamage,  ///< When the former one cannot be relied on.
  kOneForEachRun
};

/// Which failures are tried, and how.
struct Walk {
  Shortage shortage;
  long stride = 1;  ///< From one to the next.
  Processes processes = Processes::kOnlyAfterDamage;
};

/// Does runs with a later and later failure until one completes. A run with complaints fails the
/// present test, and so does one that ends its process unless the XML library is what broke.
/// @param run does the run that the points tell, in a process other than this
FaultPoints WalkFaultPoints(const Walk& walk, const std::function<Complaints(FaultPoints&)>& run);

/// Runs an operation and notes where the failing allocation lies and what came out.
/// @param at_failure called when an allocation fails; it must not allocate
Outcome RunAtFaultPoint(
    FaultPoints& points, const Operation& operation, projectdb::KelProjectDatabase& database,
    const std::function<void()>& at_failure = [] {});

}  // namespace test_support
