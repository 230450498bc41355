#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

class SetOnPosix : public KelprojTest {};

TEST_F(SetOnPosix, TextThatIsNotUtf8_IsRefused) {
  MakeProject();
  ExpectUnchangedBy({"set", "blinker.xml", "info.note", "caf\xE9"},
                    testing::Field(&Outcome::status, 2));
}

}  // namespace
