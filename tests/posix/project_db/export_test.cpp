#include <filesystem>

#include "testing/files.h"
#include "testing/project_loading.h"
#include "testing/test.h"
#include "testing/xml_tree.h"

namespace {

using namespace test_support;

/// With a new project.
class ExportOnPosix : public testing::Test {
 protected:
  ExportOnPosix() { database_.CreateNewProjectDatabase("soc"); }

  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "exported.xml";
  projectdb::KelProjectDatabase database_;
};

TEST_F(ExportOnPosix, ExportProjectData_NameThatIsNotUtf8_IsWritten) {
  const std::string path = directory_ / "pr\xFC.xml";
  database_.ExportProjectData(path);
  EXPECT_EQ(ReadXmlFile(path).name, "kel:project");
}

TEST_F(ExportOnPosix, ExportProjectData_SymbolicLink_ReplacesItsTarget) {
  const std::string target = directory_ / "target.xml";
  WriteFile(target, "former");
  std::filesystem::create_symlink(target, path_);
  database_.ExportProjectData(path_);
  EXPECT_EQ(ReadXmlFile(target).name, "kel:project");
}

}  // namespace
