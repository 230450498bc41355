#include <filesystem>

#include <xercesc/util/IOException.hpp>

#include "testing/file_state.h"
#include "testing/files.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "testing/xml_tree.h"
#include "xml/file_target.h"

namespace {

using namespace projectdb;
using projectdb::xml::FileTarget;
using namespace test_support;

using namespace std::string_literals;

void Write(FileTarget& target, const std::string& bytes) {
  target.writeChars(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(), nullptr);
}

class FileTargets : public testing::Test {
 protected:
  const XmlPlatform platform_;
  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "file";
};

TEST_F(FileTargets, Construction_CreatesTheFileOrEmptiesIt) {
  { FileTarget(path_).Close(); }
  EXPECT_EQ(ReadFile(path_), "");
  WriteFile(path_, "former");
  const FileTarget target(path_);
  EXPECT_EQ(ReadFile(path_), "");
}

TEST_F(FileTargets, Close_ClosesTheFile) {
  FileTarget target(path_);
  EXPECT_TRUE(IsOpen(path_));
  target.Close();
  EXPECT_FALSE(IsOpen(path_));
}

TEST_F(FileTargets, Destruction_ClosesAFileThatIsStillOpen) {
  {
    const FileTarget target(path_);
    EXPECT_TRUE(IsOpen(path_));
  }
  EXPECT_FALSE(IsOpen(path_));
}

TEST_F(FileTargets, Close_FileHasAllPiecesInOrderWhateverIsFlushed) {
  FileTarget target(path_);
  target.flush();
  Write(target, "one ");
  Write(target, "");
  target.flush();
  Write(target, "two");
  target.flush();
  target.Close();
  EXPECT_EQ(ReadFile(path_), "one two");
}

TEST_F(FileTargets, Close_MoreThanAnyBufferHolds_IsWhole) {
  std::string bytes;
  FileTarget target(path_);
  for (int i = 0; i < 200000; ++i) {
    const std::string piece = std::to_string(i) + "\n";
    bytes += piece;
    Write(target, piece);
  }
  target.Close();
  EXPECT_TRUE(ReadFile(path_) == bytes);
}

TEST_F(FileTargets, Close_LargePieceBetweenSmallOnes_KeepsTheirOrder) {
  const std::string large(3000000, 'x');
  FileTarget target(path_);
  Write(target, "one ");
  Write(target, large);
  Write(target, " two");
  target.Close();
  EXPECT_TRUE(ReadFile(path_) == "one " + large + " two");
}

TEST_F(FileTargets, Destruction_WithoutClose_ClosesTheFile) {
  for (int i = 0; i < 5000; ++i) {  // More than a process may have open.
    FileTarget target(path_);
    Write(target, "x");
  }
  EXPECT_TRUE(std::filesystem::exists(path_));
}

TEST_F(FileTargets, Construction_CannotOpen_Throws) {
  EXPECT_THROW(FileTarget(directory_ / "missing/file"), xercesc::IOException);
  EXPECT_THROW(FileTarget(directory_.path().string()), xercesc::IOException);
  EXPECT_THROW(FileTarget(""), xercesc::IOException);
  EXPECT_THROW(FileTarget(path_ + "\0.xml"s), xercesc::IOException);
  EXPECT_FALSE(std::filesystem::exists(path_));
}

/// The message of the exception that opening a file ends in.
std::string OpenError(const std::string& path) {
  try {
    const FileTarget target(path);
  } catch (const xercesc::IOException& exception) {
    return Utf8(exception.getMessage());
  }
  return {};
}

TEST_F(FileTargets, Construction_CannotOpen_ExceptionTellsThePathWithEscapesIfItIsNoText) {
  const std::pair<const char*, const char*> cases[] = {
      {"gr\xC3\xBCn", "gr\xC3\xBCn"}, {"gr\xFCn", "gr\\xfcn"}, {"a\x01", "a\\x01"}};
  for (const auto& [name, shown] : cases) {
    EXPECT_THAT(OpenError(directory_ / "missing/" + name),
                HasSubstr(std::string("missing/") + shown));
  }
}

}  // namespace
