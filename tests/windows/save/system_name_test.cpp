#include <filesystem>
#include <string>

#include <windows.h>

#include "platform/windows/windows_system.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"

namespace {

using namespace projectdb;
using namespace test_support;

/// Too long for the system without more ado.
const std::wstring kLongName = std::wstring(200, L'd') + L"\\" + std::wstring(200, L'n');

std::wstring NameOf(const std::wstring& path) { return files::SystemName(path); }

TEST(SystemName, LongNameOnADrive_GetsAPrefix) {
  EXPECT_EQ(NameOf(L"C:\\" + kLongName), L"\\\\?\\C:\\" + kLongName);
  EXPECT_EQ(NameOf(L"C:/x/../" + kLongName), L"\\\\?\\C:\\" + kLongName);
}

TEST(SystemName, LongNameOnAShare_GetsThePrefixOfShares) {
  EXPECT_EQ(NameOf(L"\\\\host\\share\\" + kLongName), L"\\\\?\\UNC\\host\\share\\" + kLongName);
  EXPECT_EQ(NameOf(L"//host/share/" + kLongName), L"\\\\?\\UNC\\host\\share\\" + kLongName);
}

TEST(SystemName, LongRelativeName_IsThatBelowTheWorkingDirectory) {
  const TemporaryDirectory directory;
  const WorkingDirectory working_directory(directory.path());
  const std::wstring here = std::filesystem::current_path().native();
  EXPECT_EQ(NameOf(kLongName), L"\\\\?\\" + here + L"\\" + kLongName);
}

TEST(SystemName, NameWithAPrefix_StaysAsItIs) {
  for (const std::wstring prefix :
       {L"\\\\?\\C:\\", L"\\\\?\\UNC\\host\\share\\", L"\\\\.\\pipe\\"}) {
    EXPECT_EQ(NameOf(prefix + L"x"), prefix + L"x");
    EXPECT_EQ(NameOf(prefix + kLongName), prefix + kLongName);
  }
}

TEST(SystemName, LongNameWithAPrefixInSlashes_HasThatPrefixAlone) {
  EXPECT_EQ(NameOf(L"//?/C:/" + kLongName), L"\\\\?\\C:\\" + kLongName);
  EXPECT_EQ(NameOf(L"//?/UNC/host/share/" + kLongName), L"\\\\?\\UNC\\host\\share\\" + kLongName);
  EXPECT_EQ(NameOf(L"//./C:/" + kLongName), L"\\\\.\\C:\\" + kLongName);
}

TEST(SystemName, ShortName_StaysAsItIs) {
  for (const std::wstring name : {L"p.xml", L"C:/x/../p.xml", L"//host/share/p.xml", L""}) {
    EXPECT_EQ(NameOf(name), name);
  }
}

TEST(SystemName, NameOf247Characters_IsTheLongestWithoutAPrefix) {
  const std::wstring longest = L"C:\\" + std::wstring(244, L'n');
  EXPECT_EQ(NameOf(longest), longest);
  EXPECT_EQ(NameOf(longest + L"n"), L"\\\\?\\" + longest + L"n");
}

}  // namespace
