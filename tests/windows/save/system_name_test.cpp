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

std::wstring SystemTextOf(const std::wstring& path) { return files::SystemName(path); }

TEST(SystemName, LongNameOnADrive_GetsAPrefix) {
  EXPECT_EQ(SystemTextOf(L"C:\\" + kLongName), L"\\\\?\\C:\\" + kLongName);
  EXPECT_EQ(SystemTextOf(L"C:/x/../" + kLongName), L"\\\\?\\C:\\" + kLongName);
}

TEST(SystemName, LongNameOnAShare_GetsThePrefixOfShares) {
  EXPECT_EQ(SystemTextOf(L"\\\\host\\share\\" + kLongName),
            L"\\\\?\\UNC\\host\\share\\" + kLongName);
  EXPECT_EQ(SystemTextOf(L"//host/share/" + kLongName), L"\\\\?\\UNC\\host\\share\\" + kLongName);
}

TEST(SystemName, LongRelativeName_IsThatBelowTheWorkingDirectory) {
  const TemporaryDirectory directory;
  const WorkingDirectory working_directory(directory.path());
  const std::wstring here = std::filesystem::current_path().native();
  EXPECT_EQ(SystemTextOf(kLongName), L"\\\\?\\" + here + L"\\" + kLongName);
}

TEST(SystemName, NameWithAPrefix_StaysAsItIs) {
  for (const std::wstring prefix :
       {L"\\\\?\\C:\\", L"\\\\?\\UNC\\host\\share\\", L"\\\\.\\pipe\\"}) {
    EXPECT_EQ(SystemTextOf(prefix + L"x"), prefix + L"x");
    EXPECT_EQ(SystemTextOf(prefix + kLongName), prefix + kLongName);
  }
}

TEST(SystemName, LongNameWithAPrefixInSlashes_HasThatPrefixAlone) {
  EXPECT_EQ(SystemTextOf(L"//?/C:/" + kLongName), L"\\\\?\\C:\\" + kLongName);
  EXPECT_EQ(SystemTextOf(L"//?/UNC/host/share/" + kLongName),
            L"\\\\?\\UNC\\host\\share\\" + kLongName);
  EXPECT_EQ(SystemTextOf(L"//./C:/" + kLongName), L"\\\\.\\C:\\" + kLongName);
}

TEST(SystemName, ShortName_StaysAsItIs) {
  for (const std::wstring name : {L"p.xml", L"C:/x/../p.xml", L"//host/share/p.xml", L""}) {
    EXPECT_EQ(SystemTextOf(name), name);
  }
}

TEST(SystemName, NameOf247Characters_IsTheLongestWithoutAPrefix) {
  const std::wstring longest = L"C:\\" + std::wstring(244, L'n');
  EXPECT_EQ(SystemTextOf(longest), longest);
  EXPECT_EQ(SystemTextOf(longest + L"n"), L"\\\\?\\" + longest + L"n");
}

}  // namespace
