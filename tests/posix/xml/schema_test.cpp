#include "xml/schema.h"

#include <filesystem>
#include <fstream>
#include <memory>

#include <pthread.h>
#include <xercesc/util/BinInputStream.hpp>

#include "testing/denied.h"
#include "testing/named_pipe.h"
#include "testing/project_loading.h"
#include "testing/test.h"
#include "testing/xml_platform.h"

namespace {

using namespace projectdb::xml;
using namespace test_support;

class SchemaFileOnPosix : public testing::Test {
 protected:
  XmlPlatform platform_;
  TemporaryDirectory directory_;
  projectdb::KelProjectDbErrorHandler errors_;
  SchemaSource source_{errors_};
};

TEST_F(SchemaFileOnPosix, Open_Pipe_GivesNullWithoutWaitingAndIsNotRefused) {
  const NamedPipe pipe(directory_ / "pipe");
  EXPECT_TRUE(pipe.RunWith("", [&] { EXPECT_EQ(source_.Open(directory_ / "pipe"), nullptr); }));
  EXPECT_FALSE(errors_.failed);
}

TEST_F(SchemaFileOnPosix, Open_UnreadableFile_GivesNullAndIsNotRefused) {
  const std::string path = directory_ / "s.xsd";
  WriteFile(path, DeviceOnlySchema());
  const Denied denied(path);
  if (!denied.effective()) GTEST_SKIP() << "cannot be denied";
  EXPECT_EQ(source_.Open(path), nullptr);
  EXPECT_FALSE(errors_.failed);
}

/// Names this thread for as long as it lives; its name is the content of a file of the system.
class ThreadName {
 public:
  explicit ThreadName(const char* name) : former_(ReadFile(kPath)) {
    former_.pop_back();  // The line's end.
    pthread_setname_np(pthread_self(), name);
  }
  ~ThreadName() { pthread_setname_np(pthread_self(), former_.c_str()); }
  ThreadName(const ThreadName&) = delete;
  ThreadName& operator=(const ThreadName&) = delete;

  static constexpr char kPath[] = "/proc/thread-self/comm";

 private:
  std::string former_;
};

TEST_F(SchemaFileOnPosix, Open_FileThatTellsTheSizeZero_GivesItsBytes) {
  if (!std::filesystem::exists(ThreadName::kPath)) GTEST_SKIP() << "no " << ThreadName::kPath;
  const ThreadName name("<a/>");
  ASSERT_EQ(std::filesystem::file_size(ThreadName::kPath), 0U);
  const auto input = source_.Open(ThreadName::kPath);
  ASSERT_NE(input, nullptr);
  const std::unique_ptr<xercesc::BinInputStream> stream(input->makeStream());
  XMLByte bytes[10];
  EXPECT_EQ(
      std::string(reinterpret_cast<const char*>(bytes), stream->readBytes(bytes, sizeof bytes)),
      "<a/>\n");
}

TEST_F(SchemaFileOnPosix, Open_FileThatCannotBeReadToItsEnd_GivesNullAndIsNotRefused) {
  const std::string path = "/proc/self/mem";
  if (!std::ifstream(path)) GTEST_SKIP() << "cannot be opened";
  EXPECT_EQ(source_.Open(path), nullptr);
  EXPECT_FALSE(errors_.failed);
}

}  // namespace
