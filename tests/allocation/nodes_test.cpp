#include "xml/nodes.h"

#include <string>

#include <gtest/gtest.h>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMImplementation.hpp>

#include "testing/xml_platform.h"
#include "testing/xml_tree.h"
#include "tests/allocation/failing_allocation.h"
#include "tests/allocation/long_text.h"
#include "xml/dom.h"
#include "xml/errors.h"
#include "xml/writer.h"

namespace {

using namespace projectdb;
using namespace test_support;
using xercesc::DOMElement;

/// A document with an element.
class TestDocument {
 public:
  TestDocument() { Append(); }

  /// Appends an element; from the second on, with attributes as texts.
  void Append() {
    writer_.AppendElement(root(), u"file", [&](DOMElement* element) {
      writer_.SetDOMElementAttribute(element, "name", name_);
      writer_.SetDOMElementAttribute(element, "version", "1");
    });
  }

  /// Takes memory from the block that the document has. At its end it allocates another one.
  void UseMemory(std::size_t bytes) {
    auto& memory = static_cast<xercesc::DOMDocumentImpl&>(*document_);
    for (; bytes > 0; bytes -= kUnit) memory.allocate(kUnit);
  }

  DOMElement* root() const { return document_->getDocumentElement(); }
  std::string Bytes() const { return xml::WriteDOMDocumentToBytes(*document_); }

  static constexpr std::size_t kUnit = 16;

 private:
  const XmlPlatform platform_;
  xml::Owned<xercesc::DOMDocument> document_ = xml::CreateDocument(
      *xercesc::DOMImplementation::getImplementation(), u"urn:test", u"project");
  xml::ElementWriter writer_{u"urn:test", nullptr};
  const std::string name_ = Long("name");
};

/// What the runs of an operation came to.
struct Runs {
  long completed = 0;
  long failed_at_blocks = 0;  ///< Of the document's memory, which the XML library asks for.
  long failed_elsewhere = 0;
};

/// Runs an operation on documents that come to the end of their memory at each of its steps.
/// @param check sees each document afterwards, and whether the operation failed
template <typename Prepare, typename Operation, typename Check>
Runs FailAtEachStep(Prepare prepare, Operation operation, Check check) {
  constexpr std::size_t kMoreThanABlock = std::size_t{1} << 14U;
  KelProjectDatabase unused;
  Runs runs;
  for (std::size_t used = 0; used < kMoreThanABlock; used += TestDocument::kUnit) {
    TestDocument document;
    prepare(document);
    document.UseMemory(used);
    const auto run = [&](KelProjectDatabase&) { xml::WithBadAlloc([&] { operation(document); }); };
    bool is_at_block = false;
    SetFailureObserver([&](bool asked_by_xml_library) { is_at_block = asked_by_xml_library; });
    const Outcome outcome = RunWithFailure(0, Shortage::kOneAllocation, run, unused);
    SetFailureObserver({});
    EXPECT_TRUE(outcome == Outcome::kOutOfMemory || outcome == Outcome::kCompleted);
    const bool failed = outcome == Outcome::kOutOfMemory;
    ++(!failed ? runs.completed : is_at_block ? runs.failed_at_blocks : runs.failed_elsewhere);
    check(document, failed);
  }
  return runs;
}

/// An allocation of something else in each run would keep all of them from the document's blocks.
void ExpectFailuresAtBlocksAlone(const Runs& runs) {
  EXPECT_GT(runs.failed_at_blocks, 20);
  EXPECT_EQ(runs.failed_elsewhere, 0);
  EXPECT_GT(runs.completed, runs.failed_at_blocks);
}

TEST(OutOfMemoryInNodes, AppendElement_AnyAllocationFails_LeavesNoElementAndCanBeRepeated) {
  TestDocument expected;
  expected.Append();
  const Runs runs =
      FailAtEachStep([](TestDocument&) {}, [](TestDocument& document) { document.Append(); },
                     [&](TestDocument& document, bool failed) {
                       EXPECT_EQ(document.root()->getChildElementCount(), failed ? 1U : 2U);
                       if (failed) document.Append();
                       EXPECT_EQ(document.Bytes(), expected.Bytes());
                     });
  ExpectFailuresAtBlocksAlone(runs);
}

TEST(OutOfMemoryInNodes, GetAttributes_AnyAllocationFails_KeepsTheTextsAndCanBeRepeated) {
  if (!xml::MakesElements()) GTEST_SKIP() << "the XML library makes the nodes at once";
  const auto count = [](TestDocument& document) {
    return document.root()->getLastElementChild()->getAttributes()->getLength();
  };
  const Runs runs =
      FailAtEachStep([](TestDocument& document) { document.Append(); }, count,
                     [&](TestDocument& document, bool) { EXPECT_EQ(count(document), 2U); });
  ExpectFailuresAtBlocksAlone(runs);
}

TEST(OutOfMemoryInNodes, WriteDOMDocumentToBytes_AnyAllocationFails_GivesAllBytesOrThrows) {
  TestDocument document;
  for (int i = 0; i < 10; ++i) document.Append();
  const std::string expected = document.Bytes();
  KelProjectDatabase unused;
  Outcome outcome = Outcome::kOutOfMemory;
  long failures = 0;
  for (; outcome != Outcome::kCompleted; ++failures) {
    std::string bytes;
    outcome = RunWithFailure(
        failures, Shortage::kOneAllocation, [&](KelProjectDatabase&) { bytes = document.Bytes(); },
        unused);
    if (outcome != Outcome::kOutOfMemory) {
      EXPECT_EQ(bytes, expected);
    }
  }
  EXPECT_GT(failures, 20);
}

}  // namespace
