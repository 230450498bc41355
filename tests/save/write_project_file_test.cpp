#include <projectdb/project_file.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <projectdb/vocabulary.h>

#include "testing/call_names.h"
#include "testing/file_state.h"
#include "testing/filtered_calls.h"
#include "testing/saves.h"
#include "testing/shipped_files.h"
#include "testing/test.h"
#include "tests/save/writing_file.h"

namespace {

using namespace projectdb;
using namespace test_support;

constexpr FormatOptions kKeepStamps{true};

/// The texts of some attribute, in the order of the bytes.
Lines TextsOf(const std::string& bytes, const std::string& attribute) {
  Lines texts;
  const std::string before = " " + attribute + "=\"";
  for (std::size_t at = 0; (at = bytes.find(before, at)) != std::string::npos;) {
    at += before.size();
    texts.push_back(bytes.substr(at, bytes.find('"', at) - at));
  }
  return texts;
}

std::string FormatError(const ProjectContents& contents) {
  try {
    FormatProjectFile(contents);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

void Put(FlowProcessContents& process, const std::string& map, const std::string& key,
         const Parameter& parameter) {
  process.parameter_maps[map].insert_or_assign(key, parameter);
}

// --- Canonical form ---

TEST(FormattingFile, SameContents_AreTheSameBytesWhateverTheOrderInWhichTheyWereMade) {
  KelProjectDatabase there;
  KelProjectDatabase back;
  const std::vector<std::string> names = {"effort", "seed", "freq", "retime", "margin", "corner"};
  there.CreateNewProjectDatabase("kiln");
  back.CreateNewProjectDatabase("kiln");
  for (const std::string& name : names) {
    there.AddProjectInfoAttribute(name, "1");
    there.AddFlowProcessParameter(e_synthesis, "param", {name, "1", e_string});
  }
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    back.AddProjectInfoAttribute(*name, "1");
    back.AddFlowProcessParameter(e_synthesis, "param", {*name, "1", e_string});
  }
  EXPECT_EQ(FormatProjectFile(GetProjectContents(there), {true}),
            FormatProjectFile(GetProjectContents(back), {true}));
}

TEST(FormattingFile, ParametersAndInfoAttributes_StandByMapAndName) {
  ProjectContents contents = CompleteProject();
  contents.info_attributes = {{"zone", "1"}, {"area", "2"}};
  auto& maps = contents.flow_processes[e_synthesis].parameter_maps;
  maps.clear();
  for (const char* map : {kMacroMap, kDefineMap, kParameterMap}) {
    for (const std::string name : {"q", "b"}) {
      const std::string key = std::string(map) + "_" + name;
      maps[map].emplace(key, Parameter(key, "1", e_string));
    }
  }
  const std::string bytes = FormatProjectFile(contents);
  EXPECT_LT(bytes.find(" area="), bytes.find(" zone="));
  const std::string synthesis = bytes.substr(bytes.find(":synthesis"));
  EXPECT_THAT(
      TextsOf(synthesis.substr(0, synthesis.find("/kel:synthesis")), "name"),
      ElementsAre("param_b", "param_q", "dynparam_b", "dynparam_q", "defmacro_b", "defmacro_q"));
}

TEST(FormattingFile, CanonicalForm_IsReadAsTheSameContentsWithoutAProblemOfTheSchema) {
  const ProjectContents contents = CompleteProject("");
  const ProjectFile file =
      ParseProjectFile(FormatProjectFile(contents, kKeepStamps), ShippedSchema());
  EXPECT_THAT(file.problems, IsEmpty());
  ASSERT_TRUE(file.contents);
  EXPECT_THAT(AllDifferences(contents, *file.contents), IsEmpty());
}

TEST(FormattingFile, SampleProject_HasTheBytesThatAreKeptBesideThisTest) {
  const ProjectFile file = ReadProjectFile(SampleProject(), "");
  EXPECT_EQ(FormatProjectFile(file.contents.value(), kKeepStamps),
            ReadFile(SourcePath("tests/save/canonical_soc_demo.xml")));
}

TEST(FormattingFile, KeptStamps_AreThoseOfTheContents) {
  ProjectContents contents = CompleteProject();
  contents.software_version = "0.9";
  contents.last_modify_time = "yesterday";
  const std::string bytes = FormatProjectFile(contents, kKeepStamps);
  EXPECT_THAT(TextsOf(bytes, kSoftwareVersionKey), ElementsAre("0.9"));
  EXPECT_THAT(TextsOf(bytes, kLastModifyTimeKey), ElementsAre("yesterday"));
}

TEST(FormattingFile, KeptStampsWithoutText_AreLeftOut) {
  ProjectContents contents = CompleteProject();
  contents.software_version.clear();
  contents.last_modify_time.clear();
  const std::string bytes = FormatProjectFile(contents, kKeepStamps);
  EXPECT_THAT(TextsOf(bytes, kSoftwareVersionKey), IsEmpty());
  EXPECT_THAT(TextsOf(bytes, kLastModifyTimeKey), IsEmpty());
}

TEST(FormattingFile, NewStamps_AreThoseOfThisLibrary) {
  ProjectContents contents = CompleteProject();
  contents.software_version = "0.9";
  EXPECT_THAT(TextsOf(FormatProjectFile(contents), kSoftwareVersionKey),
              ElementsAre(PROJECTDB_VERSION));
}

/// Contents that no file can hold, and what the error says of them.
struct Unwritable {
  const char* reason;
  std::function<void(ProjectContents&)> spoil;
};

TEST(FormattingFile, ContentsThatNoLoadGivesBack_AreRefusedWithTheirKey) {
  const std::vector<Unwritable> all = {
      {"flow_processes: a project has 4, not 0", [](auto& p) { p.flow_processes.clear(); }},
      {"info.name: ", [](auto& p) { p.info_attributes["name"] = "x"; }},
      {"debugger.name: ", [](auto& p) { p.flow_processes[e_debugger].name = "synthesis"; }},
      {"debugger.dynparam: ",
       [](auto& p) {
         Put(p.flow_processes[e_debugger], "dynparam", "a", {"a", "1", e_string});
       }},
      {"debugger.param.a: ",
       [](auto& p) {
         Put(p.flow_processes[e_debugger], "param", "a", {"b", "1", e_string});
       }},
      {"debugger.param.a: ",
       [](auto& p) {
         Put(p.flow_processes[e_debugger], "param", "a", {"a", "", e_string});
       }},
      {"constraint.sdc[1]: ", [](auto& p) { p.design_constraint.sdc_files.emplace_back(); }},
      {"isf.files[0]: ", [](auto& p) { p.design_isf.isf_files = {""}; }},
      {"", [](auto& p) { p.project_name = "\x01"; }},
      {"", [](auto& p) { p.project_name = "\xFF"; }},
      {"", [](auto& p) { p.info_attributes["no name"] = "1"; }},
  };
  for (const Unwritable& unwritable : all) {
    SCOPED_TRACE(unwritable.reason);
    ProjectContents contents = CompleteProject();
    unwritable.spoil(contents);
    EXPECT_THAT(FormatError(contents),
                testing::StartsWith(std::string("Failed writing XML file: ") + unwritable.reason));
  }
}

TEST(FormattingFile, EmptyMapOfAnotherNameAndProcessWithoutName_AreNothingThatAFileKeeps) {
  ProjectContents contents = CompleteProject();
  const std::string bytes = FormatProjectFile(contents, kKeepStamps);
  contents.flow_processes[e_debugger].parameter_maps["notes"];
  contents.flow_processes[e_debugger].name.clear();
  EXPECT_EQ(FormatProjectFile(contents, kKeepStamps), bytes);
}

// --- Files ---

TEST_F(WritingFile, NewPath_HoldsTheCanonicalForm) {
  WriteOptions options;
  options.keep_stamps = true;
  EXPECT_TRUE(WriteProjectFile(path(), contents_, options));
  EXPECT_EQ(ReadFile(path()), FormatProjectFile(contents_, kKeepStamps));
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
}

TEST_F(WritingFile, OtherContents_TakeThePlaceOfTheFormer) {
  Write("p.xml", ProjectXml("", "name=\"former\""));
  EXPECT_TRUE(WriteProjectFile(path(), contents_));
  EXPECT_THAT(DifferencesButStamps(contents_, Contents()), IsEmpty());
}

TEST_F(WritingFile, FileThatSaysTheSame_IsNotTouched) {
  Write("p.xml", CompleteProjectXml());
  const FileState before(path());
  ProjectContents contents = contents_;
  contents.software_version = "another";
  contents.last_modify_time = "another";
  contents.current_path = "/another";
  EXPECT_FALSE(WriteProjectFile(path(), contents));
  EXPECT_EQ(FileState(path()), before);
}

TEST_F(WritingFile, AnyOtherValue_IsWritten) {
  const std::vector<std::function<void(ProjectContents&)>> changes = {
      [](auto& p) { p.project_name += "x"; },
      [](auto& p) { p.info_attributes["owner"] = "x"; },
      [](auto& p) { p.device_info.family += "x"; },
      [](auto& p) { p.design_info.design_files.emplace_back("x.v", "", "default"); },
      [](auto& p) {
        std::swap(p.design_info.design_files.at(0), p.design_info.design_files.at(1));
      },
      [](auto& p) { p.design_info.design_files.at(0).name += "x"; },
      [](auto& p) { p.design_info.design_files.at(0).version += "x"; },
      [](auto& p) { p.design_info.design_files.at(0).library += "x"; },
      [](auto& p) { p.design_constraint.sdc_files.clear(); },
      [](auto& p) { p.ip_info.ips.at(0).path += "x"; },
      [](auto& p) { p.ip_info.ips.at(0).src_files.clear(); },
      [](auto& p) { p.ip_info.ips.at(0).src_files.at(0).name += "x"; },
      [](auto& p) { p.flow_processes[e_debugger].tool_name += "x"; },
      [](auto& p) {
        Put(p.flow_processes[e_synthesis], kParameterMap, "mode", {"mode", "slow", e_option});
      },
      [](auto& p) {
        Put(p.flow_processes[e_synthesis], kParameterMap, "mode", {"mode", "fast", e_string});
      },
      [](auto& p) {
        p.flow_processes[e_synthesis].parameter_maps[kParameterMap].erase("mode");
        Put(p.flow_processes[e_synthesis], kParameterMap, "x", {"x", "fast", e_option});
      },
      [](auto& p) { p.flow_processes[e_synthesis].parameter_maps.erase(kMacroMap); },
      [](auto& p) {
        Put(p.flow_processes[e_synthesis], kParameterMap, "x", {"x", "1", e_string});
      },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE(i);
    Write("p.xml", CompleteProjectXml());
    ProjectContents contents = contents_;
    changes[i](contents);
    EXPECT_TRUE(WriteProjectFile(path(), contents));
    EXPECT_THAT(DifferencesButStamps(contents, Contents()), IsEmpty());
  }
}

TEST_F(WritingFile, FileThatDoesNotLoad_IsReplaced) {
  Write("p.xml", "<project");
  EXPECT_TRUE(WriteProjectFile(path(), contents_));
  EXPECT_THAT(DifferencesButStamps(contents_, Contents()), IsEmpty());
}

TEST_F(WritingFile, FileThatDoesNotLoadInTheExpectedVersion_IsReplaced) {
  Write("p.xml", "<project");
  const WriteOptions options = ExpectingTheFile();
  EXPECT_TRUE(WriteProjectFile(path(), contents_, options));
}

TEST_F(WritingFile, FileThatSaysTheSameBesideAnError_IsReplaced) {
  std::string bytes = CompleteProjectXml();
  Write("p.xml", bytes.insert(bytes.find("</project>"), "<nonsense/>"));
  EXPECT_TRUE(WriteProjectFile(path(), contents_));
  EXPECT_THAT(ReadProjectFile(path(), "").problems, IsEmpty());
}

TEST_F(WritingFile, NameThatIsNoProjectFiles_IsWrittenOnce) {
  EXPECT_TRUE(WriteProjectFile(directory / "plain", contents_));
  EXPECT_FALSE(WriteProjectFile(directory / "plain", contents_));
}

TEST_F(WritingFile, WrittenAgain_IsNotTouched) {
  WriteProjectFile(path(), contents_);
  EXPECT_FALSE(WriteProjectFile(path(), contents_));
}

TEST_F(WritingFile, CanonicalWanted_ReplacesOtherBytesOfTheSameContentsOnce) {
  Write("p.xml", CompleteProjectXml());
  WriteOptions options;
  options.canonical = true;
  EXPECT_TRUE(WriteProjectFile(path(), contents_, options));
  EXPECT_FALSE(WriteProjectFile(path(), contents_, options));
}

TEST_F(WritingFile, FileThatSaysTheSameButThatTheSchemaBesideItRefuses_IsNotTouched) {
  Write("wdp_proj.xsd", DeviceOnlySchema());
  WriteOptions options;
  for (const bool canonical : {false, true}) {
    options.canonical = canonical;
    std::filesystem::remove(path());
    EXPECT_TRUE(WriteProjectFile(path(), contents_, options));
    ASSERT_FALSE(ReadProjectFile(path(), "").contents);
    const FileState before(path());
    EXPECT_FALSE(WriteProjectFile(path(), contents_, options));
    EXPECT_EQ(FileState(path()), before);
  }
}

TEST_F(WritingFile, OtherContentsThanOfAFileThatTheSchemaBesideItRefuses_AreWritten) {
  Write("wdp_proj.xsd", DeviceOnlySchema());
  WriteProjectFile(path(), contents_);
  ProjectContents contents = contents_;
  contents.project_name = "next";
  EXPECT_TRUE(WriteProjectFile(path(), contents));
}

TEST_F(WritingFileOfASchema, ContentsWithItsDefaultValues_AreNotWritten) {
  WriteSchema("wdp_proj.xsd");
  ProjectContents contents = Contents();
  ASSERT_EQ(DebuggerOf(contents), "own");
  EXPECT_FALSE(WriteProjectFile(path(), contents));
}

TEST_F(WritingFileOfASchema, ContentsWithOtherValues_AreWritten) {
  WriteSchema("wdp_proj.xsd");
  ProjectContents contents = Contents();
  DebuggerOf(contents) = "other";
  EXPECT_TRUE(WriteProjectFile(path(), contents));
  ProjectContents written = Contents();
  EXPECT_EQ(DebuggerOf(written), "other");
}

TEST_F(WritingFileOfASchema, ContentsThatWereReadWithAGivenOne_AreNotWrittenIfItIsGivenAgain) {
  WriteOptions options;
  options.schema_file = WriteSchema("given.xsd");
  ProjectContents contents = ReadProjectFile(path(), options.schema_file).contents.value();
  ASSERT_EQ(DebuggerOf(contents), "own");
  EXPECT_FALSE(WriteProjectFile(path(), contents, options));
}

TEST_F(WritingFileOfASchema, UpdateThatTakesADefaultValueAway_IsWritten) {
  WriteProject("");
  WriteSchema("wdp_proj.xsd");
  const auto clear = [](ProjectContents& contents) { LibraryOf(contents).clear(); };
  ProjectContents contents = Contents();
  ASSERT_EQ(LibraryOf(contents), "own_library");
  EXPECT_TRUE(UpdateProjectFile(path(), clear));
  contents = Contents();
  EXPECT_EQ(LibraryOf(contents), "");
  EXPECT_FALSE(UpdateProjectFile(path(), clear));
}

TEST_F(WritingFile, ParameterOfATypeThatNoFormatKnows_IsWrittenOnce) {
  ProjectContents contents = contents_;
  Put(contents.flow_processes[e_debugger], kParameterMap, "x",
      {"x", "1", static_cast<ParameterType>(7)});
  WriteOptions options;
  options.canonical = true;
  EXPECT_TRUE(WriteProjectFile(path(), contents, options));
  EXPECT_FALSE(WriteProjectFile(path(), contents, options));
}

TEST_F(WritingFile, ExpectedVersion_IsWritten) {
  Write("p.xml", CompleteProjectXml());
  const WriteOptions options = ExpectingTheFile();
  ProjectContents contents = contents_;
  contents.project_name = "next";
  EXPECT_TRUE(WriteProjectFile(path(), contents, options));
}

TEST_F(WritingFile, ExpectedVersionThatWasReadWithASchemaWhichRefusesIt_IsWritten) {
  Write("p.xml", CompleteProjectXml());
  WriteOptions options;
  const ProjectFile refused = ReadProjectFile(path(), Write("device.xsd", DeviceOnlySchema()));
  ASSERT_FALSE(refused.contents);
  options.expected = refused.version;
  ProjectContents contents = contents_;
  contents.project_name = "next";
  EXPECT_TRUE(WriteProjectFile(path(), contents, options));
}

TEST_F(WritingFile, ExpectedVersionThatLoadsWithAGivenSchemaAlone_IsWritten) {
  Write("wdp_proj.xsd", DeviceOnlySchema());
  Write("p.xml", ProjectXml("<design_info/>",
                            "xsi:schemaLocation=\"http://schema.kel.example/wdp_proj "
                            "wdp_proj.xsd\""));
  ASSERT_FALSE(ReadProjectFile(path(), "").contents);
  WriteOptions options;
  const ProjectFile read = ReadProjectFile(path(), ShippedSchema());
  ASSERT_TRUE(read.contents);
  options.expected = read.version;
  EXPECT_TRUE(WriteProjectFile(path(), contents_, options));
}

TEST_F(WritingFile, ExpectedVersionThatIsGone_IsAChangeWhateverElseIsLocked) {
  WriteOptions options;
  options.expected = ReadProjectFile(Write("p.xml", CompleteProjectXml()), "").version;
  const ProjectFileLock lock(Write("other.xml", ProjectXml("")));
  std::filesystem::remove(path());
  const auto names = NamesIn(directory.path());  // Of the lock too, where that is a file.
  EXPECT_THROW(WriteProjectFile(path(), contents_, options), ProjectFileChanged);
  EXPECT_EQ(NamesIn(directory.path()), names);
}

TEST_F(WritingFile, ExpectedVersionWhileOtherFilesAreLocked_IsWrittenUnderItsOwnLock) {
  WriteOptions options;
  options.expected = ReadProjectFile(Write("p.xml", ProjectXml("")), "").version;
  const ProjectFileLock lock(Write("other.xml", ProjectXml("")));
  EXPECT_TRUE(WriteProjectFile(path(), contents_, options));
  EXPECT_NO_THROW(ProjectFileLock(path(), std::chrono::milliseconds::zero()));
}

TEST_F(WritingFile, FileOfAnotherVersion_IsNotTouched) {
  Write("p.xml", CompleteProjectXml());
  const WriteOptions options = ExpectingTheFile();
  Write("p.xml", ProjectXml("", "name=\"of somebody else\""));
  const FileState before(path());
  EXPECT_THROW(WriteProjectFile(path(), contents_, options), ProjectFileChanged);
  EXPECT_EQ(FileState(path()), before);
}

TEST_F(WritingFile, FileThatDoesNotLoadOfAnotherVersionInTheSameClockTick_IsNotTouched) {
  WriteOptions options;
  options.expected = ReadProjectFile(Write("p.xml", "<project><<1"), "").version;
  const FileTimes times(path());
  WriteFile(path(), "<project><<2");
  times.Restore();
  EXPECT_THROW(WriteProjectFile(path(), contents_, options), ProjectFileChanged);
  EXPECT_EQ(ReadFile(path()), "<project><<2");
}

TEST_F(WritingFile, FileThatChangesWhileTheNewOneIsMade_IsNotTouched) {
  Write("p.xml", CompleteProjectXml());
  const WriteOptions options = ExpectingTheFile();
  ProjectContents contents = contents_;
  contents.project_name = "next";
  const FilteredCalls calls([&](const files::SystemCall& call) {
    if (std::string(call.name) == NameOfFlush()) WriteFile(path(), ProjectXml(""));
    return 0;
  });
  EXPECT_THROW(WriteProjectFile(path(), contents, options), ProjectFileChanged);
  EXPECT_EQ(ReadFile(path()), ProjectXml(""));
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
}

TEST_F(WritingFile, FileThatIsExpectedToBeMissing_IsMadeOnce) {
  WriteOptions options;
  options.expected = ProjectFileVersion();
  EXPECT_TRUE(WriteProjectFile(path(), contents_, options));
  EXPECT_EQ(WriteError(contents_, options),
            WritingError(path(), "it is not the file that was expected"));
}

TEST_F(WritingFile, ExpectedVersionUnderTheCallersOwnLock_DoesNotWait) {
  Write("p.xml", ProjectXml(""));
  const ProjectFileLock lock(path());
  const WriteOptions options = ExpectingTheFile();
  EXPECT_TRUE(WriteProjectFile(path(), contents_, options));
  EXPECT_THROW(ProjectFileLock(path(), std::chrono::milliseconds::zero()), std::runtime_error);
}

TEST_F(WritingFile, ContentsThatNoFileCanHold_LeaveTheFormerFile) {
  Write("p.xml", CompleteProjectXml());
  const FileState before(path());
  ProjectContents contents = contents_;
  contents.project_name = "\x01";
  EXPECT_THAT(WriteError(contents), HasSubstr("Failed writing XML file " + path() + ": "));
  EXPECT_EQ(FileState(path()), before);
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
}

TEST_F(WritingFile, PathThatCanHoldNoFile_IsRefusedWithItsReason) {
  std::filesystem::create_directory(path());
  EXPECT_EQ(WriteError(contents_), WritingError(path(), EISDIR));
}

TEST_F(WritingFile, EmptyPath_IsRefused) {
  EXPECT_THROW(WriteProjectFile("", contents_), std::runtime_error);
}

// --- What killed saves left behind ---

TEST_F(WritingFile, TemporaryFileThatAKilledSaveLeft_IsRemoved) {
  const std::string name = ".kel_save_0123456789abcdef0123456789abcdef";
  Write(name, "<proj");
  WriteProjectFile(path(), contents_);
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
}

TEST_F(WritingFile, FilesOfOtherNames_Stay) {
  const Lines names = {".kel_save_", ".kel_save_0123456789ABCDEF0123456789abcdef",
                       ".kel_save_0123456789abcdef0123456789abcdef0",
                       "kel_save_00123456789abcdef0123456789abcdef"};
  for (const std::string& name : names) Write(name, "mine");
  WriteProjectFile(path(), contents_);
  EXPECT_EQ(NamesIn(directory.path()).size(), names.size() + 1);
}

}  // namespace
