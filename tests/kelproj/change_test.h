#pragma once

#include "tests/kelproj/kelproj_test.h"

namespace test_support {

using Command = std::vector<std::string>;

class Change : public KelprojTest, public testing::WithParamInterface<Command> {};

}  // namespace test_support
