#include "xml/writer.h"

#include <gtest/gtest.h>

#include "testing/dom_document.h"
#include "testing/files.h"
#include "testing/temporary_directory.h"
#include "tests/allocation/failing_allocation.h"
#include "tests/allocation/library_function.h"

namespace {

using namespace projectdb;
using namespace test_support;

TEST(OutOfMemoryInWriter, WriteDOMDocumentToFile_FailureBeforeTheWrite_LeavesTheFormerFile) {
  const LibraryFunction write(
      "_ZN11xercesc_3_219DOMLSSerializerImpl5writeEPKNS_7DOMNodeEPNS_11DOMLSOutputE");
  const TemporaryDirectory directory;
  const std::string path = directory / "p.xml";
  const DomDocument document;
  const auto run = [&](KelProjectDatabase&) { xml::WriteDOMDocumentToFile(path, document.get()); };
  KelProjectDatabase unused;
  bool is_writing = write.IsIn(CallStack());
  SetFailureObserver([&](bool) { is_writing = write.IsIn(CallStack()); });
  long before_the_write = 0;
  long number = 0;
  for (Outcome outcome = Outcome::kOutOfMemory; outcome != Outcome::kCompleted; ++number) {
    WriteFile(path, "former");
    is_writing = true;
    outcome = RunWithFailure(number, Shortage::kOneAllocation, run, unused);
    if (is_writing) continue;
    EXPECT_EQ(outcome, Outcome::kOutOfMemory) << number;
    EXPECT_EQ(ReadFile(path), "former") << number;
    ++before_the_write;
  }
  SetFailureObserver({});
  EXPECT_GT(before_the_write, 3);
  EXPECT_GT(number - 1, before_the_write);  // The last run completed.
}

}  // namespace
