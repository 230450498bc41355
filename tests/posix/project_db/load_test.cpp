#include <filesystem>

#include "testing/denied.h"
#include "testing/project_loading.h"
#include "testing/test.h"

namespace {

using namespace test_support;

class LoadOnPosix : public testing::Test, public Loading {};

TEST_F(LoadOnPosix, LoadProjectData_UnreadableSchema_IsRefusedAsMalformed) {
  const std::string project = Write("p.xml", ProjectXml(""));
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
  const Denied denied(schema);
  if (!denied.effective() || !std::filesystem::exists(schema)) GTEST_SKIP() << "cannot be denied";
  EXPECT_FALSE(LoadFile(project, schema));
  EXPECT_EQ(messages, RefusedMessages(project));
}

}  // namespace
