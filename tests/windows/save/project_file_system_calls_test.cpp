#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include <projectdb/project_file.h>

#include <windows.h>

#include "testing/filtered_calls.h"
#include "testing/saves.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"
#include "testing/windows/system_renaming.h"
#include "testing/xml_platform.h"
#include "tests/save/file_changes.h"

namespace {

using namespace projectdb;
using namespace test_support;
using namespace test_support::file_changes;

const std::string kNotOpened = "the temporary file could not be opened";

constexpr const char* kAbandonedName = ".kel_save_0123456789abcdef0123456789abcdef";

/// Changes of a file beside what an ended save has left behind, where the system knows the renaming
/// of open files and where it does not.
class ChangeOnWindows : public testing::TestWithParam<std::tuple<FileChange, bool>> {
 protected:
  static const FileChange& change() { return std::get<FileChange>(GetParam()); }
  static bool is_renaming_known() { return std::get<bool>(GetParam()); }

  void Prepare() {
    std::filesystem::remove(path_);
    if (change().has_former) WriteFile(path_, former_);
    WriteFile(directory_ / kAbandonedName, "<proj");
    if (change().is_expected) version_ = ReadProjectFile(path_, "").version;
  }

  /// @return the text of the error; "" if it ended well
  std::string ChangeError() const {
    try {
      change().run(path_, version_);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return {};
  }

  std::vector<std::string> ChangeCalls() const {
    std::vector<std::string> calls;
    const FilteredCalls filter([&](const files::SystemCall& call) {
      calls.emplace_back(call.name);
      return 0;
    });
    EXPECT_EQ(ChangeError(), "");
    return calls;
  }

  /// Lets the call of a number fail, the first being 0.
  std::string ErrorWithFailingCall(std::size_t number, DWORD error) const {
    std::size_t count = 0;
    const FilteredCalls filter(
        [&](const files::SystemCall&) { return count++ == number ? static_cast<int>(error) : 0; });
    return ChangeError();
  }

  std::string former_name() const { return change().has_former ? "former" : "nothing"; }

  /// What a change leaves is the file; what others have left goes at the latest with the next.
  void ExpectNothingElseThere(bool may_be_abandoned) const {
    std::vector<std::string> names = NamesIn(directory_.path());
    names.erase(std::remove(names.begin(), names.end(), "p.xml"), names.end());
    if (may_be_abandoned) {
      names.erase(std::remove(names.begin(), names.end(), kAbandonedName), names.end());
    }
    EXPECT_THAT(names, IsEmpty());
  }

  const XmlPlatform platform_;  // Starting it takes longer than a change.
  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "p.xml";
  const std::string former_ = FormatProjectFile(ProjectOfName("former"));
  ProjectFileVersion version_;
  const SystemRenaming renaming_{is_renaming_known()};
};

INSTANTIATE_TEST_SUITE_P(Changes, ChangeOnWindows,
                         testing::Combine(testing::ValuesIn(kFileChanges), testing::Bool()),
                         [](const auto& test_info) {
                           return std::string(std::get<0>(test_info.param).name) +
                                  (std::get<1>(test_info.param) ? "ByRenaming" : "ByMoving");
                         });

TEST_P(ChangeOnWindows, CallThatFails_LeavesTheFormerFileOrTheNextAndATellingError) {
  Prepare();
  const std::vector<std::string> calls = ChangeCalls();
  EXPECT_THAT(calls, testing::IsSupersetOf({"CreateFile", "CloseHandle", "GetFileType",
                                            "GetFileInformationByHandle", "FindFirstFile",
                                            "FindNextFile", "FindClose", "BCryptGenRandom",
                                            "WriteFile", "FlushFileBuffers", "RenameOpenFile"}));
  if (change().has_former) {
    EXPECT_THAT(calls, testing::IsSupersetOf({"GetNamedSecurityInfo", "SetKernelObjectSecurity"}));
  }
  const std::string naming_name = is_renaming_known() ? "RenameOpenFile" : "MoveFileEx";
  const auto naming = std::find(calls.begin(), calls.end(), naming_name);
  ASSERT_NE(naming, calls.end());
  int errors = 0;
  for (auto call = calls.begin(); call != calls.end(); ++call) {
    const auto number = static_cast<std::size_t>(call - calls.begin());
    SCOPED_TRACE(*call + ", call number " + std::to_string(number));
    Prepare();
    const std::string error = ErrorWithFailingCall(number, ERROR_DISK_FULL);
    const std::string found = NameFoundIn(path_);
    EXPECT_EQ(found, error.empty() ? "next" : former_name());
    EXPECT_TRUE(error.empty() || call <= naming);
    ExpectNothingElseThere(true);
    EXPECT_TRUE(found == "nothing" || IsFree(path_));
    if (error.empty()) continue;
    ++errors;
    EXPECT_THAT(error, HasSubstr(path_));
    // The XML library knows that it could not open a file to write it, but not why.
    EXPECT_THAT(error, AnyOf(HasSubstr(TextOfErrno(ENOSPC)),
                             HasSubstr(*call == "CreateFile" ? kNotOpened : TextOfErrno(ENOSPC))));
  }
  EXPECT_GE(errors, 8);
}

TEST_P(ChangeOnWindows, FailedChangeThatCannotRemoveItsFile_LeavesItToTheNextSave) {
  Prepare();
  {
    const FilteredCalls filter([](const files::SystemCall& call) -> int {
      const std::string name = call.name;
      const bool is_failing = name == "FlushFileBuffers" || name == "DeleteFile";
      return is_failing ? ERROR_DISK_FULL : 0;
    });
    EXPECT_THAT(ChangeError(), HasSubstr(TextOfErrno(ENOSPC)));
  }
  EXPECT_EQ(NameFoundIn(path_), former_name());
  EXPECT_THAT(NamesIn(directory_.path()), SizeIs(change().has_former ? 2 : 1));
  WriteProjectFile(path_, CompleteProject());
  ExpectNothingElseThere(false);
}

TEST_P(ChangeOnWindows, CallThatIsDeniedForAMoment_LeavesTheFormerFileOrTheNext) {
  // Whoever has a file open stands in the way of these alone.
  const std::set<std::string> deniable = {"CreateFile", "DeleteFile", "MoveFileEx",
                                          "RenameOpenFile"};
  Prepare();
  const std::vector<std::string> calls = ChangeCalls();
  for (std::size_t number = 0; number < calls.size(); ++number) {
    if (deniable.count(calls[number]) == 0) continue;
    SCOPED_TRACE(calls[number] + ", call number " + std::to_string(number));
    Prepare();
    const std::string error = ErrorWithFailingCall(number, ERROR_SHARING_VIOLATION);
    const std::string found = NameFoundIn(path_);
    EXPECT_EQ(found, error.empty() ? "next" : former_name());
    ExpectNothingElseThere(true);
    EXPECT_TRUE(found == "nothing" || IsFree(path_));
  }
}

}  // namespace
