#include "tests/allocation/fault_points.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <new>
#include <ostream>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include "testing/child_process.h"
#include "testing/test.h"
#include "tests/allocation/library_function.h"

namespace test_support {
namespace {

constexpr int kMostFailures = 5;

/// Memory that the processes begun later share with this one.
template <typename Content>
class Shared {
 public:
  explicit Shared(const Content& content)
      : memory_(::mmap(nullptr, sizeof(Content), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS,
                       -1, 0)) {
    if (memory_ == MAP_FAILED) throw std::bad_alloc();
    new (memory_) Content(content);
  }
  ~Shared() { ::munmap(memory_, sizeof(Content)); }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;

  Content& operator*() const { return *static_cast<Content*>(memory_); }
  Content* operator->() const { return static_cast<Content*>(memory_); }

 private:
  void* memory_;
};

using LibraryFunctions = std::vector<LibraryFunction>;

bool IsInOneOf(const LibraryFunctions& functions, const CallStack& calls) {
  return std::any_of(functions.begin(), functions.end(),
                     [&](const LibraryFunction& function) { return function.IsIn(calls); });
}

bool IsInParser(const CallStack& calls) {
  static const LibraryFunctions functions = {
      LibraryFunction("_ZN11xercesc_3_215DOMLSParserImpl5parseEPKNS_10DOMLSInputE"),
      LibraryFunction("_ZN11xercesc_3_215DOMLSParserImpl11loadGrammarEPKNS_10DOMLSInputENS_7Grammar"
                      "11GrammarTypeEb")};
  return IsInOneOf(functions, calls);
}

// Functions of the XML library after whose failure the process cannot go on:
// - buildDFA leaves tables half filled, which the destructor of its object then frees.
// - deleteChildNode is called by a destructor, which no exception may leave.
bool BreaksXmlLibrary(const CallStack& calls) {
  static const LibraryFunctions functions = {
      LibraryFunction("_ZN11xercesc_3_215DFAContentModel8buildDFAEPNS_15ContentSpecNodeE"),
      LibraryFunction("_ZN11xercesc_3_215ContentSpecNode15deleteChildNodeEPS0_")};
  return IsInOneOf(functions, calls);
}

// Finding functions takes long, and memory: before there are other processes, and while there is
// some.
void FindFunctions() {
  const CallStack calls;
  IsInParser(calls);
  BreaksXmlLibrary(calls);
}

// From then on what the process has to say is of no interest.
void SilenceThisProcess() {
  const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  ::dup2(nowhere, STDERR_FILENO);
  ::close(nowhere);
}

// Lets a crash end the process at once.
void CrashPlainly() {
  for (const int signal : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV}) std::signal(signal, SIG_DFL);
  std::set_terminate(std::abort);
  const rlimit no_core{0, 0};
  ::setrlimit(RLIMIT_CORE, &no_core);
}

std::string RunInThisProcess(FaultPoints& points, const Walk& walk,
                             const std::function<Complaints(FaultPoints&)>& run) {
  do {
    points.is_running = true;
    points.broke_xml_library = false;
    std::string complaint = run(points).text();
    points.is_running = false;
    if (points.completed || !complaint.empty()) return complaint;
    points.number += walk.stride;
  } while (walk.processes == Processes::kOnlyAfterDamage && !points.broke_xml_library);
  return {};
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const FaultPoints& points) {
  return out << points.tried << " fault points: " << points.out_of_memory << " out of memory, "
             << points.runtime_errors << " runtime errors, " << points.not_survived
             << " not survived by the XML library; " << points.leaks_of_xml_library
             << " leaks of the XML library";
}

FaultPoints WalkFaultPoints(const Walk& walk, const std::function<Complaints(FaultPoints&)>& run) {
  FaultPoints none{};
  none.shortage = walk.shortage;
  none.last_in_parser = none.first_with_effect = -1;
  const Shared<FaultPoints> points(none);
  FindFunctions();
  for (int failures = 0; !points->completed && failures < kMostFailures;) {
    points->is_running = false;
    const std::string complaint = InChildProcess([&] {
      CrashPlainly();
      return RunInThisProcess(*points, walk, run);
    });
    if (complaint.empty()) continue;
    if (points->is_running && points->broke_xml_library) {
      ++points->not_survived;
    } else {
      ++failures;
      ADD_FAILURE() << "allocation " << points->number << " fails"
                    << (walk.shortage == Shortage::kEveryFromThereOn ? " and all that follow" : "")
                    << ": " << complaint;
    }
    points->number += walk.stride;
  }
  points->tried = points->number / walk.stride;
  return *points;
}

Outcome RunAtFaultPoint(FaultPoints& points, const Operation& operation,
                        projectdb::KelProjectDatabase& database,
                        const std::function<void()>& at_failure) {
  bool is_first = true;
  points.in_parser = points.in_xml_library = false;
  SetFailureObserver([&](bool asked_by_xml_library) {
    const CallStack calls;
    at_failure();
    if (is_first) points.in_parser = IsInParser(calls);
    is_first = false;
    points.in_xml_library = points.in_xml_library || asked_by_xml_library;
    if (points.broke_xml_library || !BreaksXmlLibrary(calls)) return;
    points.broke_xml_library = true;
    SilenceThisProcess();
  });
  const Outcome outcome = RunWithFailure(points.number, points.shortage, operation, database);
  SetFailureObserver({});
  points.completed = outcome == Outcome::kCompleted;
  if (points.completed) return outcome;
  if (outcome == Outcome::kOutOfMemory) ++points.out_of_memory;
  if (outcome == Outcome::kRuntimeError) ++points.runtime_errors;
  if (points.in_parser) points.last_in_parser = points.number;
  return outcome;
}

}  // namespace test_support
