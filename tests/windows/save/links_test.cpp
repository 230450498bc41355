#include "platform/windows/links.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <windows.h>

#include "platform/windows/windows_system.h"
#include "testing/filtered_calls.h"
#include "testing/saves.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"
#include "tests/save/file_changes.h"

namespace {

using namespace projectdb;
using namespace test_support;

constexpr std::uint32_t kSymbolicLink = 0xA000000C;
constexpr std::uint32_t kMountPoint = 0xA0000003;

/// What the system tells of a link with a name for programs and one that it shows.
std::vector<std::byte> LinkData(const std::wstring& name, const std::wstring& shown_name = L"shown",
                                std::uint32_t tag = kSymbolicLink) {
  const auto size_of = [](const std::wstring& text) {
    return static_cast<std::uint16_t>(text.size() * sizeof(wchar_t));
  };
  const std::uint16_t head[] = {static_cast<std::uint16_t>(tag),
                                static_cast<std::uint16_t>(tag >> 16U),
                                static_cast<std::uint16_t>(12 + size_of(name + shown_name)),
                                0,
                                size_of(shown_name),
                                size_of(name),
                                0,
                                size_of(shown_name),
                                0,
                                0};
  const std::wstring names = shown_name + name;
  std::vector<std::byte> data(sizeof(head) + size_of(names));
  std::memcpy(data.data(), &head[0], sizeof(head));
  std::memcpy(data.data() + sizeof(head), names.data(), size_of(names));
  return data;
}

TEST(Links, SymbolicLink_LeadsToItsName) {
  const std::pair<std::wstring, std::wstring> cases[] = {
      {L"..\\target\\p.xml", L"..\\target\\p.xml"},
      {L"\\target\\p.xml", L"\\target\\p.xml"},
      {L"\\??\\C:\\target\\p.xml", L"C:\\target\\p.xml"},
      {L"\\??\\UNC\\host\\share\\p.xml", L"\\\\host\\share\\p.xml"},
      {L"\\??\\Volume{0}\\p.xml", L"\\\\?\\Volume{0}\\p.xml"}};
  for (const auto& [name, target] : cases) {
    EXPECT_EQ(files::TargetIn(LinkData(name)), std::filesystem::path(target));
  }
}

TEST(Links, OtherReparsePoint_LeadsNowhere) {
  EXPECT_EQ(files::TargetIn(LinkData(L"\\??\\C:\\x", L"", kMountPoint)), std::nullopt);
}

TEST(Links, DataThatEndsBeforeTheName_LeadsNowhere) {
  const std::vector<std::byte> whole = LinkData(L"p.xml");
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const std::vector<std::byte> part(whole.data(), whole.data() + size);
    EXPECT_EQ(files::TargetIn(part), std::nullopt) << size;
  }
}

/// Saves to a link that leads to no file. A file stands in for it, of which the system says that it
/// leads to the next of some targets.
class SaveThroughDanglingLink : public testing::Test {
 protected:
  SaveThroughDanglingLink() {
    targets_.clear();
    files::FunctionsOfSystem().control_device = Control;
    std::filesystem::create_directory(directory_ / "links");
    std::filesystem::create_directory(directory_ / "target");
    WriteFile(link_, "the link");
    database_.CreateNewProjectDatabase("next");
  }
  ~SaveThroughDanglingLink() override {
    files::FunctionsOfSystem().control_device = DeviceIoControl;
  }

  std::string Save() const {
    const FilteredCalls filter(FailCall("CreateFile", 1, ERROR_FILE_NOT_FOUND));
    return SaveError(database_, link_);
  }

  const TemporaryDirectory directory_;
  const std::string link_ = directory_ / "links/l.xml";
  const std::string target_ = directory_ / "target/p.xml";
  static inline std::deque<std::wstring> targets_;

  KelProjectDatabase database_;

 private:
  static BOOL WINAPI Control(HANDLE, DWORD code, LPVOID, DWORD, LPVOID data, DWORD most,
                             LPDWORD size, LPOVERLAPPED) {
    constexpr DWORD kGetReparsePoint = 0x900A8;
    if (code != kGetReparsePoint || targets_.empty()) {
      SetLastError(ERROR_NOT_A_REPARSE_POINT);
      return FALSE;
    }
    const std::vector<std::byte> link = LinkData(targets_.front());
    targets_.pop_front();
    if (link.size() > most) return FALSE;
    std::memcpy(data, link.data(), link.size());
    *size = static_cast<DWORD>(link.size());
    return TRUE;
  }
};

TEST_F(SaveThroughDanglingLink, RelativeTarget_IsMadeAndTheLinkStays) {
  targets_ = {L"..\\target\\p.xml"};
  EXPECT_EQ(Save(), "");
  EXPECT_EQ(file_changes::NameFoundIn(target_), "next");
  EXPECT_EQ(ReadFile(link_), "the link");
  EXPECT_THAT(NamesIn(directory_ / "links"), ElementsAre("l.xml"));
}

TEST_F(SaveThroughDanglingLink, AbsoluteTarget_IsMadeAndTheLinkStays) {
  targets_ = {L"\\??\\" + std::filesystem::path(target_).make_preferred().native()};
  EXPECT_EQ(Save(), "");
  EXPECT_EQ(file_changes::NameFoundIn(target_), "next");
  EXPECT_EQ(ReadFile(link_), "the link");
}

/// The name on the share of its drive, without the separators before the host.
std::wstring NameOnShare(const std::string& path) {
  const std::wstring name = std::filesystem::absolute(path).make_preferred().native();
  return L"localhost\\" + name.substr(0, 1) + L"$" + name.substr(2);
}

TEST_F(SaveThroughDanglingLink, TargetOnAShare_IsMadeAndTheLinkStays) {
  targets_ = {L"\\??\\UNC\\" + NameOnShare(target_)};
  EXPECT_EQ(Save(), "");
  EXPECT_EQ(file_changes::NameFoundIn(target_), "next");
  EXPECT_EQ(ReadFile(link_), "the link");
}

TEST_F(SaveThroughDanglingLink, TargetWithARootAloneOfALinkOnAShare_IsMadeOnThatShare) {
  targets_ = {std::filesystem::absolute(target_).make_preferred().native().substr(2)};
  const FilteredCalls filter(FailCall("CreateFile", 1, ERROR_FILE_NOT_FOUND));
  const std::filesystem::path link = L"\\\\" + NameOnShare(link_);
  EXPECT_EQ(SaveError(database_, link.string()), "");
  EXPECT_EQ(file_changes::NameFoundIn(target_), "next");
  EXPECT_EQ(ReadFile(link_), "the link");
}

TEST_F(SaveThroughDanglingLink, TargetInAMissingDirectory_IsAnErrorAndTheLinkStays) {
  targets_ = {L"..\\missing\\p.xml"};
  EXPECT_EQ(Save(), WritingError(link_, ENOENT));
  EXPECT_EQ(ReadFile(link_), "the link");
}

TEST_F(SaveThroughDanglingLink, Loop_IsAnErrorAndTheLinkStays) {
  targets_ = std::deque<std::wstring>(100, L"l.xml");
  EXPECT_EQ(Save(), WritingError(link_, "Too many levels of symbolic links"));
  EXPECT_EQ(ReadFile(link_), "the link");
}

TEST_F(SaveThroughDanglingLink, LinkThatCannotBeRead_IsAnErrorAndStays) {
  targets_ = {L"..\\target\\p.xml"};
  const FilteredCalls filter([count = 0](const files::SystemCall& call) mutable -> int {
    const std::string name = call.name;
    if (name == "CreateFile" && ++count == 1) return ERROR_FILE_NOT_FOUND;
    return name == "DeviceIoControl" ? ERROR_IO_DEVICE : 0;
  });
  EXPECT_NE(SaveError(database_, link_), "");
  EXPECT_EQ(ReadFile(link_), "the link");
}

}  // namespace
