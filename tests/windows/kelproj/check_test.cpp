#include "tests/kelproj/check_test.h"

#include <system_error>

namespace {

using namespace test_support;

/// A file below directories that are made for it, for as long as it lives.
class PlantedFile {
 public:
  PlantedFile(const std::filesystem::path& path, const std::string& bytes) {
    std::filesystem::path made = path.parent_path();
    while (!std::filesystem::exists(made.parent_path())) made = made.parent_path();
    first_made_ = std::filesystem::exists(path.parent_path()) ? path : made;
    std::filesystem::create_directories(path.parent_path());
    WriteFile(PathText(path), bytes);
  }
  ~PlantedFile() {
    std::error_code ignored;
    std::filesystem::remove_all(first_made_, ignored);
  }
  PlantedFile(const PlantedFile&) = delete;
  PlantedFile& operator=(const PlantedFile&) = delete;

 private:
  std::filesystem::path first_made_;
};

TEST_F(MovedInstallation, SchemaThatAnybodyPutsOnTheCurrentDrive_IsNotTaken) {
  const std::filesystem::path anybodys = NativePath(Root()) / KELPROJ_INSTALLED_SCHEMA;
  if (std::filesystem::exists(anybodys)) GTEST_SKIP() << "there is one";
  const PlantedFile planted(anybodys, kAnySchema);
  EXPECT_EQ(RunProcess({Program(), "check", PathOf("mixer.xml")}, {Directory()}),
            Failed("the installed schema is not at " + Schema() + ": --schema names another"));
}

}  // namespace
