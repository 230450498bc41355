#include <cerrno>
#include <filesystem>
#include <memory>

#include "base/failure.h"
#include "testing/files.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "xml/file_target.h"

namespace {

using namespace projectdb;
using projectdb::xml::FileTarget;
using namespace test_support;

class FullFileTarget : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::filesystem::is_character_file("/dev/full")) GTEST_SKIP() << "no /dev/full";
    target_ = std::make_unique<FileTarget>("/dev/full");
  }

  void Write(const std::string& bytes) {
    target_->writeChars(reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(), nullptr);
  }

  std::string CloseError() {
    return ErrorOf<Failure>([&] { target_->Close(); });
  }

  const XmlPlatform platform_;
  std::unique_ptr<FileTarget> target_;
};

TEST_F(FullFileTarget, Close_FailedAtTheEnd_ThrowsTheReason) {
  Write("x");
  EXPECT_EQ(CloseError(), TextOfErrno(ENOSPC));
}

TEST_F(FullFileTarget, Close_FailedWhileWriting_ThrowsTheReasonNotBefore) {
  EXPECT_NO_THROW(Write(std::string(1000000, 'x')));
  EXPECT_NO_THROW(Write("more"));
  EXPECT_EQ(CloseError(), TextOfErrno(ENOSPC));
}

TEST_F(FullFileTarget, Destruction_WithoutClose_DoesNotThrow) {
  Write(std::string(1000000, 'x'));
  EXPECT_NO_THROW(target_.reset());
}

}  // namespace
