#include <string>

#include <xercesc/util/PlatformUtils.hpp>

#include "testing/child_process.h"
#include "testing/test.h"
#include "tests/project_db/dom_writers.h"

namespace {

using namespace projectdb;
using namespace test_support;
using namespace test_support::dom_writers;
using xercesc::XMLPlatformUtils;

TEST(DomElementsWithoutPlatform, NullParent_EveryWriterReturnsFalse) {
  const auto append_to_null = [] {
    std::string accepting;
    for (const Writer& writer : kWriters) {
      if (writer.append(KelProjectDatabase(), {nullptr}, "x", "named")) accepting += writer.name;
    }
    return accepting;
  };
  EXPECT_EQ(InChildProcess([&] {
              while (XMLPlatformUtils::fgMemoryManager) XMLPlatformUtils::Terminate();
              const std::string before_initialisation = append_to_null();
              XMLPlatformUtils::Initialize();
              XMLPlatformUtils::Terminate();
              return before_initialisation + append_to_null();
            }),
            "");
}

}  // namespace
