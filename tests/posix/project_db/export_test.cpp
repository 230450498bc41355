#include <chrono>
#include <filesystem>
#include <future>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

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

/// Gives what is written to a named pipe, which lets a test act while an export is under way.
class SlowReader {
 public:
  explicit SlowReader(const std::string& path) {
    mkfifo(path.c_str(), 0600);
    // Without blocking: there is no writer yet.
    file_ = open(path.c_str(), O_RDONLY | O_NONBLOCK);
  }
  ~SlowReader() { close(file_); }
  SlowReader(const SlowReader&) = delete;
  SlowReader& operator=(const SlowReader&) = delete;

  bool WaitForWriter() const {
    pollfd request{file_, POLLIN, 0};
    return poll(&request, 1, 60000) == 1;
  }

  std::string ReadAll() const {
    fcntl(file_, F_SETFL, 0);
    std::string text;
    char block[65536];
    for (ssize_t size = 0; (size = read(file_, block, sizeof(block))) > 0;) {
      text.append(block, static_cast<std::size_t>(size));
    }
    return text;
  }

 private:
  int file_ = -1;
};

TEST_F(ExportOnPosix, ExportProjectData_WhileTheFileIsWritten_TheProjectCanBeUsed) {
  // More than any buffer holds, so that the export cannot end before it is read.
  for (int i = 0; i < 20000; ++i) database_.AddMiscellaneousFile("notes_" + std::to_string(i));
  const SlowReader reader(path_);
  auto exported = std::async(std::launch::async, [&] { database_.ExportProjectData(path_); });
  const bool writing = reader.WaitForWriter();
  database_.SetProjectName("later");
  database_.CleanProjectDatabase();
  const bool still_writing =
      exported.wait_for(std::chrono::seconds(0)) == std::future_status::timeout;
  WriteFile(directory_ / "read.xml", reader.ReadAll());
  exported.get();
  ASSERT_TRUE(writing && still_writing);
  const XmlElement root = ReadXmlFile(directory_ / "read.xml");
  EXPECT_EQ(root.attributes.at("name"), "soc");
  EXPECT_EQ(root.Child("misc_info").children.size(), 20000U);
}

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
