#include "tests/allocation/failing_allocation.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include <link.h>
#include <xercesc/util/PlatformUtils.hpp>

#include "testing/test.h"

namespace {

using namespace test_support;

/// Allocations of this thread that still succeed before one fails; negative: none fails.
thread_local long allocations_before_failure = -1;
thread_local bool every_later_one_fails = false;
thread_local bool has_failed = false;

test_support::FailureObserver& Observer() {
  static test_support::FailureObserver observer;
  return observer;
}

bool ThisAllocationFails() {
  if (allocations_before_failure < 0) return has_failed && every_later_one_fails;
  if (allocations_before_failure-- > 0) return false;
  has_failed = true;
  return true;
}

/// The code of a shared library in memory.
struct CodeRange {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
  bool Contains(std::uintptr_t address) const { return address >= begin && address < end; }
};

CodeRange RangeOf(const dl_phdr_info& library, const ElfW(Phdr) & segment) {
  const std::uintptr_t begin = library.dlpi_addr + segment.p_vaddr;
  return {begin, begin + segment.p_memsz};
}

// The code segment with the address that the range begins with.
int FindRange(dl_phdr_info* library, std::size_t, void* range) {
  CodeRange& wanted = *static_cast<CodeRange*>(range);
  for (int i = 0; i < library->dlpi_phnum; ++i) {
    const CodeRange found = RangeOf(*library, library->dlpi_phdr[i]);
    const bool is_code = (library->dlpi_phdr[i].p_flags & PF_X) != 0;
    if (!is_code || !found.Contains(wanted.begin)) continue;
    wanted = found;
    return 1;
  }
  return 0;
}

CodeRange XmlLibrary() {
  CodeRange range{reinterpret_cast<std::uintptr_t>(&xercesc::XMLPlatformUtils::Terminate), 0};
  dl_iterate_phdr(FindRange, &range);
  return range;
}

bool IsInXmlLibrary(const void* address) {
  static const CodeRange library = XmlLibrary();
  return library.Contains(reinterpret_cast<std::uintptr_t>(address));
}

/// Stands before each block.
struct alignas(std::max_align_t) BlockHeader {
  std::atomic<long>* count;
};

std::atomic<long> blocks_of_xml_library{0};
std::atomic<long> blocks_of_others{0};

}  // namespace

// The XML library loses memory when a parse of its own runs out of it. The tests count its blocks
// and ours apart, so that the leak sanitizer need not look at what it allocates here.
extern "C" const char* LeakSuppressions() asm("__lsan_default_suppressions");
const char* LeakSuppressions() { return "leak:xercesc_3_2::MemoryManagerImpl::allocate"; }

// The array forms come down to these. The non-throwing one would too, but sanitizers have their
// own.
void* operator new(std::size_t size) {
  const bool for_xml_library = IsInXmlLibrary(__builtin_return_address(0));
  const bool fails = ThisAllocationFails();
  if (fails && Observer()) Observer()(for_xml_library);
  void* const memory = fails ? nullptr : std::malloc(sizeof(BlockHeader) + size);
  if (memory == nullptr) throw std::bad_alloc();
  auto* const header = static_cast<BlockHeader*>(memory);
  header->count = for_xml_library ? &blocks_of_xml_library : &blocks_of_others;
  ++*header->count;
  return header + 1;
}
void* operator new(std::size_t size, const std::nothrow_t& /*unused*/) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* memory) noexcept {
  if (memory == nullptr) return;
  BlockHeader* const header = static_cast<BlockHeader*>(memory) - 1;
  --*header->count;
  std::free(header);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace test_support {
namespace {

using namespace projectdb;

Outcome Run(const Operation& operation, KelProjectDatabase& database) {
  try {
    operation(database);
  } catch (const std::bad_alloc&) {
    return Outcome::kOutOfMemory;
  } catch (const std::runtime_error&) {
    return Outcome::kRuntimeError;
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
                     const std::function<void(KelProjectDatabase&, Outcome)>& check, long stride) {
  long failures = 0;
  for (const Shortage shortage : {Shortage::kOneAllocation, Shortage::kEveryFromThereOn}) {
    for (long number = 0;; number += stride) {
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

void SetFailureObserver(FailureObserver observer) { Observer() = std::move(observer); }

LiveBlocks CountLiveBlocks() { return {blocks_of_xml_library, blocks_of_others}; }

}  // namespace test_support
