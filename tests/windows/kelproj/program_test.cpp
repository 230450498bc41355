#include <string>

#include <windows.h>

#include "platform/other_program.h"
#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;

// What the system is told of a program; "" if that is nothing.
std::string ManifestOf(const std::string& program) {
  const HMODULE module =
      LoadLibraryExW(NativePath(program).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(24));
  std::string manifest;
  if (resource != nullptr) {
    const void* const bytes = LockResource(LoadResource(module, resource));
    manifest.assign(static_cast<const char*>(bytes), SizeofResource(module, resource));
  }
  FreeLibrary(module);
  return manifest;
}

TEST(Program, Manifest_AsksForLongNames) {
  const std::string manifest = ManifestOf(KelprojProgram());
  EXPECT_THAT(manifest, HasSubstr(">true</longPathAware>"));
  EXPECT_THAT(manifest, Not(HasSubstr("activeCodePage")));
}

TEST(Program, Console_HasItsCodePageAgainAtTheEnd) {
  // Started so, the program has a console of its own.
  const auto answer = kelproj::RunOtherProgram({CODE_PAGE_PROGRAM, KelprojProgram()},
                                               kelproj::ProgramMessages::kDropped);
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 437);
}

}  // namespace
