#include <kel/version.h>

#include "testing/test.h"

namespace {

TEST(Version, KelVersionNo_Value_IsTheBuiltProjectsVersion) {
  EXPECT_EQ(KEL_VERSION_NO, PROJECTDB_VERSION);
}

}  // namespace
