#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <projectdb/project_file.h>
#include <xercesc/util/IOException.hpp>

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

#include "platform/windows/windows_system.h"
#include "testing/filtered_calls.h"
#include "testing/native_path.h"
#include "testing/saves.h"
#include "testing/shipped_files.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"
#include "testing/windows/answered_openings.h"
#include "testing/windows/system_renaming.h"

namespace {

using namespace projectdb;
using namespace test_support;

class SaveOnWindows : public testing::Test {
 protected:
  SaveOnWindows() {
    database_.CreateNewProjectDatabase("former");
    database_.ExportProjectData(path_);
    former_ = ReadFile(path_);
    database_.SetProjectName("next");
  }

  std::string Save() const { return SaveError(database_, path_); }

  bool IsSaved() const { return ReadFile(path_).find("\"next\"") != std::string::npos; }

  void ExpectUntouched() const {
    EXPECT_EQ(ReadFile(path_), former_);
    EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  }

  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "p.xml";
  KelProjectDatabase database_;
  std::string former_;
};

/// The calls of a save, in their order.
std::vector<std::string> CallsOf(const std::function<void()>& save) {
  std::vector<std::string> calls;
  const FilteredCalls filtered([&](const files::SystemCall& call) {
    calls.emplace_back(call.name);
    return 0;
  });
  save();
  return calls;
}

/// Who may do what with a file, as the system writes it.
std::wstring AccessListOf(const std::string& path) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  const DWORD error =
      GetNamedSecurityInfoW(NativePath(path).c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                            nullptr, nullptr, nullptr, nullptr, &descriptor);
  if (error != ERROR_SUCCESS) throw std::runtime_error("a file has no access list");
  const std::unique_ptr<void, files::FreeLocal> owned(descriptor);
  wchar_t* text = nullptr;
  if (ConvertSecurityDescriptorToStringSecurityDescriptorW(
          descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr) == 0) {
    throw std::runtime_error("an access list has no text");
  }
  const std::unique_ptr<wchar_t, files::FreeLocal> owned_text(text);
  return text;
}

/// Lets its owner alone do anything with a file.
void GiveToItsOwnerAlone(const std::string& path) {
  const std::wstring name = NativePath(path).wstring();
  PSID owner = nullptr;
  PSECURITY_DESCRIPTOR former = nullptr;
  GetNamedSecurityInfoW(name.c_str(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr,
                        nullptr, nullptr, &former);
  const std::unique_ptr<void, files::FreeLocal> owned_former(former);
  wchar_t* owner_text = nullptr;
  ConvertSidToStringSidW(owner, &owner_text);
  const std::unique_ptr<wchar_t, files::FreeLocal> owned_text(owner_text);
  PSECURITY_DESCRIPTOR narrow = nullptr;
  ConvertStringSecurityDescriptorToSecurityDescriptorW(
      (L"D:(A;;FA;;;" + std::wstring(owner_text) + L")").c_str(), SDDL_REVISION_1, &narrow,
      nullptr);
  const std::unique_ptr<void, files::FreeLocal> owned_narrow(narrow);
  if (SetFileSecurityW(name.c_str(), DACL_SECURITY_INFORMATION, narrow) == 0) {
    throw std::runtime_error("an access list cannot be set");
  }
}

TEST_F(SaveOnWindows, AccessList_IsThatOfTheFormerFile) {
  const std::wstring usual = AccessListOf(path_);
  EXPECT_EQ(Save(), "");
  EXPECT_EQ(AccessListOf(path_), usual);
  GiveToItsOwnerAlone(path_);
  const std::wstring narrow = AccessListOf(path_);
  ASSERT_NE(narrow, usual);
  EXPECT_EQ(Save(), "");
  EXPECT_EQ(AccessListOf(path_), narrow);
}

/// Saves, and gives the list that the new file has when its content is written.
class ListWhileWritten : public SaveOnWindows {
 protected:
  std::wstring SaveAndGetList() {
    std::wstring list;
    const FilteredCalls filter([&](const files::SystemCall& call) {
      if (std::string(call.name) != "WriteFile") return 0;
      for (const std::string& name : NamesIn(directory_.path())) {
        if (name.rfind(".kel_save_", 0) == 0) list = AccessListOf(directory_ / name);
      }
      return 0;
    });
    EXPECT_EQ(Save(), "");
    return list;
  }
};

TEST_F(ListWhileWritten, LetsNobodyReadWhoMayNotReadTheFormerFile) {
  const std::wstring usual = AccessListOf(path_);
  GiveToItsOwnerAlone(path_);
  const std::wstring list = SaveAndGetList();
  EXPECT_NE(list, L"");
  EXPECT_NE(list, usual);
}

/// The system makes files without the lists that they are to have.
HANDLE OpenWithoutList(AskedOpening asked) {
  asked.opening.security = nullptr;
  return asked.Open();
}

TEST_F(ListWhileWritten, WhereListsOfNewFilesAreForgotten_IsThatOfTheFormerFile) {
  GiveToItsOwnerAlone(path_);
  const AnsweredOpenings forgotten(OpenWithoutList);
  EXPECT_EQ(SaveAndGetList(), AccessListOf(path_));
}

/// A share whose users may change files, but not the lists of who may do so.
DWORD RefuseToChangeLists(const AskedOpening& asked) {
  return (asked.opening.access & WRITE_DAC) != 0 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

TEST_F(SaveOnWindows, ListsThatNobodyMayChange_FileWithThatOfItsDirectoryIsSaved) {
  const std::wstring list = AccessListOf(path_);
  const AnsweredOpenings share(Refusing(RefuseToChangeLists));
  EXPECT_EQ(Save(), "");
  EXPECT_TRUE(IsSaved());
  EXPECT_EQ(AccessListOf(path_), list);
}

TEST_F(SaveOnWindows, ListsThatNobodyMayChange_FileWithAnotherIsLeftAsItWas) {
  GiveToItsOwnerAlone(path_);
  const AnsweredOpenings share(Refusing(RefuseToChangeLists));
  bool is_written = false;
  const FilteredCalls filter([&is_written](const files::SystemCall& call) {
    is_written = is_written || std::string(call.name) == "WriteFile";
    return 0;
  });
  EXPECT_EQ(Save(), WritingError(path_, EACCES));
  EXPECT_FALSE(is_written) << "others might have read it";
  ExpectUntouched();
}

TEST_F(SaveOnWindows, ListsThatNobodyMayChange_NewFileIsMade) {
  const AnsweredOpenings share(Refusing(RefuseToChangeLists));
  const std::string path = directory_ / "new.xml";
  EXPECT_EQ(SaveError(database_, path), "");
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(SaveOnWindows, NameThatTheSystemForbids_IsCalledSo) {
  const std::string path = directory_ / "a?b.xml";
  EXPECT_EQ(SaveError(database_, path), WritingError(path, "no file can have that name"));
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

TEST_F(SaveOnWindows, DirectoryWhoseNameEndsInADot_IsNotTakenForTheOneWithout) {
  const std::string parent =
      R"(\\?\)" + std::filesystem::absolute(directory_.path()).make_preferred().string();
  const std::string dotted = parent + R"(\parts.)";
  std::filesystem::create_directory(directory_ / "parts");
  WriteFile(directory_ / "parts/p.xml", "another project");
  ASSERT_NE(CreateDirectoryW(NativePath(dotted).c_str(), nullptr), 0);
  EXPECT_EQ(SaveError(database_, dotted + R"(\p.xml)"), "");
  EXPECT_EQ(SaveError(database_, dotted + R"(\p.xml)"), "");
  EXPECT_EQ(ReadFile(directory_ / "parts/p.xml"), "another project");
  EXPECT_NE(DeleteFileW(NativePath(dotted + R"(\p.xml)").c_str()), 0);
  EXPECT_NE(RemoveDirectoryW(NativePath(dotted).c_str()), 0);
}

TEST_F(SaveOnWindows, RenamingIsUnknown_MovesTheFileOverTheFormer) {
  for (const int error : {ERROR_INVALID_PARAMETER, ERROR_INVALID_LEVEL, ERROR_NOT_SUPPORTED,
                          ERROR_INVALID_FUNCTION, ERROR_CALL_NOT_IMPLEMENTED}) {
    SCOPED_TRACE(error);
    WriteFile(path_, former_);
    const FilteredCalls filtered(FailCall("RenameOpenFile", 1, error));
    EXPECT_EQ(Save(), "");
    EXPECT_TRUE(IsSaved());
    EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
  }
}

/// Saves where the system knows the renaming of open files.
class RenamingSave : public SaveOnWindows {
 protected:
  /// The calls that name the new file, in their order.
  static std::vector<std::string> NamingCallsOf(const std::function<void()>& save) {
    std::vector<std::string> calls = CallsOf(save);
    const auto is_other = [](const std::string& call) {
      return call != "RenameOpenFile" && call != "MoveFileEx";
    };
    calls.erase(std::remove_if(calls.begin(), calls.end(), is_other), calls.end());
    return calls;
  }

  const SystemRenaming renaming_{true};
};

TEST_F(RenamingSave, FormerFile_IsReplacedByTheRenamingAlone) {
  EXPECT_THAT(NamingCallsOf([&] { EXPECT_EQ(Save(), ""); }), ElementsAre("RenameOpenFile"));
  EXPECT_TRUE(IsSaved());
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

TEST_F(RenamingSave, NoFormerFile_IsMadeByTheRenamingAlone) {
  std::filesystem::remove(NativePath(path_));
  EXPECT_THAT(NamingCallsOf([&] { EXPECT_EQ(Save(), ""); }), ElementsAre("RenameOpenFile"));
  EXPECT_TRUE(IsSaved());
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre("p.xml"));
}

TEST_F(RenamingSave, FileThatIsNotExpectedThere_IsNotReplaced) {
  const ProjectContents contents = *ReadProjectFile(path_, "").contents;
  std::filesystem::remove(NativePath(path_));
  WriteOptions options;
  options.expected = ProjectFileVersion();
  const FilteredCalls filtered([&](const files::SystemCall& call) {
    if (call.name == std::string("RenameOpenFile")) WriteFile(path_, former_);
    return 0;
  });
  EXPECT_THROW(WriteProjectFile(path_, contents, options), ProjectFileChanged);
  ExpectUntouched();
}

TEST_F(RenamingSave, RenamingFails_LeavesTheFormerFile) {
  const FilteredCalls filtered(FailCall("RenameOpenFile", 1, ERROR_DISK_FULL));
  EXPECT_EQ(Save(), WritingError(path_, ENOSPC));
  ExpectUntouched();
}

TEST_F(SaveOnWindows, RenamingIsUnknownAndMovingFails_LeavesTheFormerFile) {
  const FilteredCalls filtered([](const files::SystemCall& call) {
    if (call.name == std::string("RenameOpenFile")) return ERROR_INVALID_PARAMETER;
    return call.name == std::string("MoveFileEx") ? ERROR_DISK_FULL : 0L;
  });
  EXPECT_EQ(Save(), WritingError(path_, ENOSPC));
  ExpectUntouched();
}

TEST_F(SaveOnWindows, FileIsOpenToOthersForAMoment_IsSaved) {
  const FilteredCalls filtered(
      [count = std::make_shared<int>(0)](const files::SystemCall& call) -> int {
        const bool is_denied = call.name == std::string("RenameOpenFile") && ++*count < 4;
        return is_denied ? ERROR_SHARING_VIOLATION : 0;
      });
  EXPECT_EQ(Save(), "");
  EXPECT_TRUE(IsSaved());
}

TEST_F(SaveOnWindows, FileIsOpenToOthersWhoDoNotLetItGo_IsLeftAsItWas) {
  const SystemRenaming renaming(false);
  const std::wstring name = NativePath(path_).native();
  const HANDLE open =
      CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(open, INVALID_HANDLE_VALUE);
  EXPECT_EQ(Save(), WritingError(path_, EACCES));
  CloseHandle(open);
  ExpectUntouched();
  EXPECT_EQ(Save(), "");
  EXPECT_TRUE(IsSaved());
}

/// Has a file alone, as a virus scanner may, until it has been asked for so many times.
class Hoarder {
 public:
  Hoarder(const std::string& path, int times)
      : file_(CreateFileW(NativePath(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0,
                          nullptr)),
        times_(times) {
    if (file_ == INVALID_HANDLE_VALUE) throw std::runtime_error("cannot have a file alone");
  }
  ~Hoarder() {
    if (times_ > 0) CloseHandle(file_);
  }
  Hoarder(const Hoarder&) = delete;
  Hoarder& operator=(const Hoarder&) = delete;

 private:
  HANDLE Open(const AskedOpening& asked) {
    const HANDLE file = asked.Open();
    if (file != INVALID_HANDLE_VALUE || GetLastError() != ERROR_SHARING_VIOLATION) return file;
    if (--times_ == 0) CloseHandle(file_);
    SetLastError(ERROR_SHARING_VIOLATION);
    return INVALID_HANDLE_VALUE;
  }

  HANDLE file_;
  int times_;
  const AnsweredOpenings openings_{[this](const AskedOpening& asked) { return Open(asked); }};
};

constexpr const char* kHoarded = "others have it open and do not share it";

TEST_F(SaveOnWindows, FileThatOthersHaveAloneForAMoment_IsUpdated) {
  Hoarder hoarder(path_, 3);
  EXPECT_TRUE(
      UpdateProjectFile(path_, [](ProjectContents& contents) { contents.project_name = "next"; }));
  EXPECT_TRUE(IsSaved());
}

TEST_F(SaveOnWindows, FileThatOthersHaveAloneForAMoment_IsRead) {
  Hoarder hoarder(path_, 3);
  EXPECT_THAT(ReadProjectFile(path_, "").problems, IsEmpty());
}

TEST_F(SaveOnWindows, FileThatOthersHaveAloneForAMoment_IsLoaded) {
  Hoarder hoarder(path_, 3);
  KelProjectDatabase loaded;
  EXPECT_TRUE(loaded.LoadProjectData(path_, ""));
}

TEST_F(SaveOnWindows, FileThatOthersHaveAloneForAMoment_IsExported) {
  Hoarder hoarder(path_, 3);
  database_.ExportProjectData(path_);
  EXPECT_TRUE(IsSaved());
}

TEST_F(SaveOnWindows, FileThatOthersHaveAlone_IsRefusedForThatReason) {
  Hoarder hoarder(path_, 1000);
  EXPECT_EQ(ErrorOf([&] { const ProjectFileLock lock(path_); }),
            "Failed locking XML file " + path_ + ": " + kHoarded + "\n");
  const std::vector<FileProblem> problems = ReadProjectFile(path_, "").problems;
  ASSERT_THAT(problems, SizeIs(1));
  EXPECT_EQ(problems[0].message, std::string("the file cannot be read: ") + kHoarded);
}

TEST_F(SaveOnWindows, SaveOverAFileThatOthersHaveAlone_IsRefusedForThatReason) {
  {
    Hoarder hoarder(path_, 1000);
    EXPECT_EQ(Save(), WritingError(path_, kHoarded));
  }
  ExpectUntouched();
}

TEST_F(SaveOnWindows, ReadOnlyFile_IsRefused) {
  const std::wstring name = NativePath(path_).native();
  ASSERT_TRUE(SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(Save(), WritingError(path_, EACCES));
  ExpectUntouched();
  SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(SaveOnWindows, HiddenFile_StaysHidden) {
  const std::wstring name = NativePath(path_).native();
  ASSERT_TRUE(SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_HIDDEN));
  EXPECT_EQ(Save(), "");
  EXPECT_NE(GetFileAttributesW(name.c_str()) & FILE_ATTRIBUTE_HIDDEN, 0U);
}

/// No file that is hidden, or the system's, can be made anew as one that is not, as Windows has it.
DWORD RefuseToShowHiddenFiles(const AskedOpening& asked) {
  constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  const DWORD attributes = GetFileAttributesW(asked.name);
  const bool is_there = attributes != INVALID_FILE_ATTRIBUTES;
  const DWORD disposition = asked.opening.disposition;
  const bool is_overwritten = disposition == CREATE_ALWAYS || disposition == TRUNCATE_EXISTING;
  const DWORD missing = attributes & kKept & ~asked.opening.flags;
  const bool is_shown = is_there && is_overwritten && missing != 0;
  return is_shown ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

TEST_F(SaveOnWindows, HiddenFile_IsExportedOverAndStaysHidden) {
  const AnsweredOpenings kept(Refusing(RefuseToShowHiddenFiles));
  const std::wstring name = NativePath(path_).native();
  for (const int attribute : {FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_SYSTEM}) {
    WriteFile(path_, former_ + std::string(100000, ' '));
    const auto expected = static_cast<DWORD>(attribute);
    ASSERT_TRUE(SetFileAttributesW(name.c_str(), expected));
    database_.ExportProjectData(path_);
    EXPECT_TRUE(IsSaved());
    EXPECT_LT(std::filesystem::file_size(NativePath(path_)), 100000U);
    EXPECT_EQ(GetFileAttributesW(name.c_str()) & expected, expected);
    SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_NORMAL);
  }
}

TEST_F(SaveOnWindows, FileThatCannotBeTruncated_IsAnErrorOfTheExport) {
  const FilteredCalls filtered(FailCall("SetEndOfFile", 1, ERROR_DISK_FULL));
  EXPECT_EQ(ErrorOf([&] { database_.ExportProjectData(path_); }), WritingError(path_, ENOSPC));
}

TEST_F(SaveOnWindows, AbandonedTemporaryFile_IsRemovedAndOneThatIsOpenIsNot) {
  const std::string abandoned = ".kel_save_" + Repeated("0", 32);
  const std::string used = ".kel_save_" + Repeated("1", 32);
  WriteFile(directory_ / abandoned, "");
  WriteFile(directory_ / used, "");
  const std::ifstream open(NativePath(directory_ / used));
  EXPECT_EQ(Save(), "");
  EXPECT_THAT(NamesIn(directory_.path()), ElementsAre(used, "p.xml"));
}

TEST_F(SaveOnWindows, NameOutsideAscii_IsSavedReadAndUpdated) {
  for (const std::string name : {"ä.xml", "漢字.xml", "¥ 100%.xml", "🐟.xml"}) {
    const std::string path = directory_ / name;
    database_.ExportProjectData(path);
    ASSERT_EQ(SaveError(database_, path), "");
    EXPECT_TRUE(UpdateProjectFile(
        path, [](ProjectContents& contents) { contents.project_name = "größe 漢"; }));
    const ProjectFile file = ReadProjectFile(path, ShippedSchema());
    ASSERT_TRUE(file.contents);
    EXPECT_EQ(file.contents->project_name, "größe 漢");
    EXPECT_THAT(NamesIn(directory_.path()), Contains(name));
  }
}

TEST_F(SaveOnWindows, NameThatIsNotUtf8_IsRefusedAndNoFileOfAnotherNameIsMade) {
  const std::string path = directory_.path().string() + "\\pr\xFC.xml";
  EXPECT_EQ(SaveError(database_, path), WritingError(path, "the name is not UTF-8 text"));
  EXPECT_THROW(WriteProjectFile(path, *ReadProjectFile(path_, "").contents), std::runtime_error);
  ExpectUntouched();
}

TEST_F(SaveOnWindows, ExportUnderANameThatIsNotUtf8_IsRefusedAndNoFileOfAnotherNameIsMade) {
  const std::string path = directory_.path().string() + "\\pr\xFC.xml";
  EXPECT_THROW(database_.ExportProjectData(path), xercesc::IOException);
  ExpectUntouched();
}

TEST_F(SaveOnWindows, FileOfTheOtherPlatforms_IsTheSameByteForByte) {
  const ProjectFile sample = ReadProjectFile(SampleProject(), "");
  ASSERT_TRUE(sample.contents);
  WriteOptions options;
  options.keep_stamps = true;
  WriteProjectFile(path_, *sample.contents, options);
  EXPECT_EQ(ReadFile(path_), ReadFile(SourcePath("tests/save/canonical_soc_demo.xml")));
}

/// A directory whose name is longer than the system takes without more ado.
class LongPath : public testing::Test {
 protected:
  LongPath() {
    std::string path = directory_.path().string();
    while (path.size() < 400) {
      path += "\\" + std::string(60, 'd');
      made_.push_back(files::SystemName(path));
      CreateDirectoryW(made_.back().c_str(), nullptr);
    }
    path_ = path + "\\p.xml";
  }
  ~LongPath() override {
    DeleteFileW(files::SystemName(path_).c_str());
    for (auto made = made_.rbegin(); made != made_.rend(); ++made) RemoveDirectoryW(made->c_str());
  }

  const TemporaryDirectory directory_;
  std::vector<std::filesystem::path> made_;
  std::string path_;
};

TEST_F(LongPath, Project_IsExportedSavedLoadedAndUpdated) {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("deep");
  database.ExportProjectData(path_);
  EXPECT_EQ(SaveError(database, path_), "");
  KelProjectDatabase loaded;
  EXPECT_TRUE(loaded.LoadProjectData(path_, ShippedSchema()));
  EXPECT_EQ(loaded.GetProjectName(), "deep");
  EXPECT_TRUE(UpdateProjectFile(
      path_, [](ProjectContents& contents) { contents.project_name = "deeper"; }));
  EXPECT_EQ(ReadProjectFile(path_, "").contents->project_name, "deeper");
}

}  // namespace
