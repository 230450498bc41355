#include <filesystem>
#include <string>

#include "testing/denied.h"
#include "testing/named_pipe.h"
#include "testing/test.h"
#include "tests/project_db/load_security.h"

namespace {

using namespace test_support;

TEST_F(LoadSecurity, LoadProjectData_HintOrIncludeOfAPipe_LoadsWithoutWaiting) {
  const NamedPipe pipe(directory / "part.xsd");
  const std::string schema = Write("s.xsd", DeviceOnlySchema(References("part.xsd").front()));
  bool result = false;
  EXPECT_TRUE(pipe.RunWith("", [&] { result = LoadBytes(XmlWithHint(kForbidden, "part.xsd")); }));
  ExpectLoaded(result);
  EXPECT_TRUE(pipe.RunWith("", [&] { result = LoadBytes(ProjectXml(""), schema); }));
  ExpectLoaded(result);
}

TEST_F(LoadSecurity, LoadProjectData_SchemaIncludedThroughALinkToo_IsReadOnce) {
  std::filesystem::create_directory(directory / "sub");
  std::filesystem::create_directory_symlink(directory / "sub", directory / "link");
  Write("sub/rules.xsd", DeviceOnlySchema());
  ExpectReadOnce({"sub/rules.xsd", "link/rules.xsd"});
}

TEST_F(LoadSecurity, LoadProjectData_HintToAnUnreadableFile_LoadsAsWithoutSchema) {
  const std::string project = Write("p.xml", XmlWithHint(kForbidden, "s.xsd"));
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
  const Denied denied(schema);
  if (!denied.effective() || !std::filesystem::exists(project)) GTEST_SKIP() << "cannot be denied";
  ExpectLoaded(LoadFile(project));
}

TEST_F(LoadSecurity, LoadProjectData_SchemaThatCannotBeReadToItsEnd_IsUsedOnlyIfGiven) {
  const std::string unreadable = "/proc/self/mem";
  if (!std::filesystem::exists(unreadable)) GTEST_SKIP() << "no " << unreadable;
  ExpectRefused(LoadBytes(ProjectXml(""), unreadable));
  ExpectLoaded(LoadBytes(XmlWithHint(kForbidden, unreadable)));
}

}  // namespace
