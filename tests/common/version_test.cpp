#include <kel/version.h>

#include <gtest/gtest.h>

namespace {

TEST(Version, KelVersionNo_Value_IsTheBuiltProjectsVersion) {
  EXPECT_EQ(KEL_VERSION_NO, PROJECTDB_VERSION);
}

}  // namespace
