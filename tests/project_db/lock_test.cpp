#include <functional>
#include <future>

#include "testing/before_lock.h"
#include "testing/project_loading.h"
#include "testing/saves.h"
#include "testing/test.h"
#include "testing/throwing_handler.h"

namespace {

using namespace test_support;
using namespace projectdb;

void InAnotherThread(const std::function<void()>& work) {
  std::async(std::launch::async, work).get();
}

// --- Between the stretches in which an operation holds the lock ---

/// An operation on an object, which another thread disturbs before each of the locks that the
/// operation takes: each time in a new directory and with a new object.
class Interruption : public testing::Test {
 protected:
  using Action = std::function<void(Loading&)>;

  /// @param expect is called after each operation
  /// @return how many locks the operation takes
  static int BeforeEachLock(const Action& prepare, const Action& operation, const Action& disturb,
                            const Action& expect) {
    const MessageRecorder recorder;
    int locks = 0;
    for (bool happened = true; happened; ++locks) {
      SCOPED_TRACE("before lock " + std::to_string(locks + 1));
      Loading loading;
      prepare(loading);
      const BeforeLock before_lock(loading.database, locks + 1,
                                   [&] { InAnotherThread([&] { disturb(loading); }); });
      operation(loading);
      happened = before_lock.happened();
      if (happened) expect(loading);
    }
    return locks - 1;
  }

  static void Clean(Loading& loading) { loading.database.CleanProjectDatabase(); }
  static void Replace(Loading& loading) {
    loading.database.CleanProjectDatabase();
    loading.database.CreateNewProjectDatabase("other");
  }
  static void Load(Loading& loading) { EXPECT_TRUE(loading.LoadFile(loading.path())); }

  static void PrepareLoad(Loading& loading) {
    loading.Write("p.xml", CompleteProjectXml());
    loading.database.CreateNewProjectDatabase("former");
    loading.database.AddMiscellaneousFile("former.txt");
  }
  static void PrepareExport(Loading& loading) {
    loading.Write("p.xml", "former");
    loading.database.CreateNewProjectDatabase("exported");
  }

  /// The name of the project in the file; "former" if the file is as it was.
  static std::string NameInFile(const Loading& loading) {
    if (ReadFile(loading.path()) == "former") return "former";
    KelProjectDatabase loaded;
    EXPECT_TRUE(loaded.LoadProjectData(loading.path(), ""));
    return loaded.GetProjectName();
  }
};

TEST_F(Interruption, LoadProjectData_Cleaned_LoadsAFreshProjectOrLeavesNone) {
  const int locks = BeforeEachLock(PrepareLoad, Load, Clean, [](Loading& loading) {
    if (!loading.database.IsProjectDatabaseExist()) return;
    EXPECT_THAT(AllDifferences(CompleteProject(loading.directory.path()), loading.database),
                ElementsAre());
  });
  EXPECT_GT(locks, 1);
}

TEST_F(Interruption, LoadProjectData_Replaced_LoadsIntoTheNewProjectOrGivesItTheDirectory) {
  BeforeEachLock(PrepareLoad, Load, Replace, [](Loading& loading) {
    const bool is_loaded = loading.database.GetDesignTopModuleName() == "top";
    EXPECT_EQ(loading.database.GetProjectName(), is_loaded ? "demo" : "other");
    EXPECT_EQ(loading.database.GetProjectCurrentPath(), loading.directory.path());
  });
}

TEST_F(Interruption, LoadProjectData_LoadedByAnotherThread_MergesTheTwo) {
  const auto load_other = [](Loading& loading) {
    const std::string other = loading.Write(
        "other.xml", ProjectXml("<misc_info><misc_file name=\"other.txt\"/></misc_info>"));
    loading.database.LoadProjectData(other, "");
  };
  BeforeEachLock(PrepareLoad, Load, load_other, [](Loading& loading) {
    std::vector<std::string> names;
    loading.database.GetMiscellaneousFileList(names);
    EXPECT_EQ(names.size(), 3U);
    EXPECT_EQ(loading.database.GetDesignTopModuleName(), "top");
  });
}

/// Both ways to save a project.
class InterruptedExport
    : public Interruption,
      public testing::WithParamInterface<void (*)(const KelProjectDatabase&, const std::string&)> {
 protected:
  static void Export(Loading& loading) { GetParam()(loading.database, loading.path()); }
};

TEST_P(InterruptedExport, Cleaned_LeavesTheFileThatWasThereAndNoOther) {
  const int locks = BeforeEachLock(PrepareExport, Export, Clean, [](Loading& loading) {
    EXPECT_EQ(NameInFile(loading), "former");
    EXPECT_THAT(NamesIn(loading.directory.path()), ElementsAre("p.xml"));
  });
  EXPECT_GT(locks, 1);
}

TEST_P(InterruptedExport, Replaced_WritesTheNewProject) {
  BeforeEachLock(PrepareExport, Export, Replace,
                 [](Loading& loading) { EXPECT_EQ(NameInFile(loading), "other"); });
}

INSTANTIATE_TEST_SUITE_P(
    Saves, InterruptedExport,
    testing::Values([](const KelProjectDatabase& database,
                       const std::string& path) { database.ExportProjectData(path); },
                    ExportProjectDataDurably));

TEST_F(Interruption, ExportProjectDataDurably_ChangedSoThatNoLoadReadsIt_IsRefused) {
  const auto change = [](Loading& loading) {
    loading.database.AddFlowProcessParameterMap(e_debugger, "param")
        ->emplace("key", Parameter("name", "v", e_string));
  };
  std::string error;
  BeforeEachLock(
      PrepareExport, [&](Loading& loading) { error = SaveError(loading.database, loading.path()); },
      change,
      [&](Loading& loading) {
        EXPECT_NE(error, "");
        EXPECT_EQ(NameInFile(loading), "former");
      });
}

TEST_F(Interruption, CreateNewProjectDatabase_LoadedByAnotherThread_IsRefusedOrSetsTheDefaults) {
  int created = 0;
  bool result = false;
  BeforeEachLock(
      [](Loading& loading) { loading.Write("p.xml", CompleteProjectXml()); },
      [&](Loading& loading) { result = loading.database.CreateNewProjectDatabase("created"); },
      Load,
      [&](Loading& loading) {
        EXPECT_EQ(loading.database.GetProjectName(), result ? "created" : "demo");
        EXPECT_EQ(loading.database.GetDesignTopModuleName(), "top");
        if (result) ++created;
      });
  EXPECT_GT(created, 0);
}

// --- How often an operation takes the lock ---

class Locks : public testing::Test {
 protected:
  Locks() { database_.CreateNewProjectDatabase("locked"); }

  /// Whether the operation takes the lock of the object so many times or more.
  bool IsTaken(int times, const std::function<void()>& operation) const {
    const BeforeLock before_lock(database_, times, [] {});
    operation();
    return before_lock.happened();
  }

  KelProjectDatabase database_;
};

TEST_F(Locks, AddTimingConstraintFile_NameOfAnotherKind_TakesNone) {
  for (const char* name : {"", "a.SDC", ".sdc", "/"}) {
    EXPECT_FALSE(IsTaken(1, [&] { EXPECT_FALSE(database_.AddTimingConstraintFile(name)); }))
        << name;
  }
}

TEST_F(Locks, AddTimingConstraintFile_NameOfThatKindOrList_TakesItOnce) {
  const std::vector<std::string> list = {"a.sdc", "", "b.sdc"};
  for (const int times : {1, 2}) {
    EXPECT_EQ(IsTaken(times, [&] { EXPECT_TRUE(database_.AddTimingConstraintFile("a.sdc")); }),
              times == 1);
    EXPECT_EQ(IsTaken(times, [&] { EXPECT_TRUE(database_.AddTimingConstraintFile(list)); }),
              times == 1);
  }
}

TEST_F(Locks, SetInterfaceConstraint_NameOfAnotherKind_TakesNone) {
  EXPECT_FALSE(IsTaken(1, [this] { EXPECT_FALSE(database_.SetInterfaceConstraint("io.csv")); }));
}

TEST_F(Locks, OperationOnTheContents_TakesIt) {
  KelProjectDatabase& d = database_;
  KelProjectDatabase other;
  other.CreateNewProjectDatabase("other");
  const Parameter parameter("a", "1", e_string);
  std::string value;
  std::vector<std::string> names = {"a.txt"};
  std::vector<DesignFile> files = {{"a.v", "", ""}};
  std::vector<IP> instances;
  std::vector<Parameter> parameters;
  const std::pair<const char*, std::function<void()>> operations[] = {
      {"get property", [&] { d.GetProjectName(); }},
      {"set property", [&] { d.SetProjectName("b"); }},
      {"add attribute", [&] { d.AddProjectInfoAttribute("a", "1"); }},
      {"get attribute", [&] { d.GetProjectInfoAttribute("a", value); }},
      {"get contents", [&] { GetProjectContents(d); }},
      {"set contents", [&] { SetProjectContents(d, GetProjectContents(other)); }},
      {"add design file", [&] { d.AddDesignRTLFile("a.v", "", ""); }},
      {"add design files", [&] { d.AddDesignRTLFile(files); }},
      {"add test bench", [&] { d.AddSimulationTestBenchFile("a.v", ""); }},
      {"add test benches", [&] { d.AddSimulationTestBenchFile(files); }},
      {"add other file", [&] { d.AddMiscellaneousFile("a.txt"); }},
      {"add other files", [&] { d.AddMiscellaneousFile(names); }},
      {"set interface", [&] { d.SetInterfaceConstraint("a.interface.csv"); }},
      {"get design files", [&] { d.GetDesignFileList(files); }},
      {"get test benches", [&] { d.GetSimulationTestBenchFileList(names); }},
      {"get other files", [&] { d.GetMiscellaneousFileList(names); }},
      {"get timing constraints", [&] { d.GetTimingConstraintFileList(names); }},
      {"get IP sources", [&] { d.GetIpSrcFileList(names); }},
      {"get IP instances", [&] { d.GetIpInstanceList(instances); }},
      {"set executable", [&] { d.SetFlowProcessExecutableName(e_debugger, "b"); }},
      {"get executable", [&] { d.GetFlowProcessExecutableName(e_debugger); }},
      {"add parameter", [&] { d.AddFlowProcessParameter(e_debugger, "m", parameter); }},
      {"add texts", [&] { d.AddFlowProcessParameter(e_debugger, "m", "b", "1", e_string); }},
      {"add parameters", [&] { d.AddFlowProcessParameterList(e_debugger, "m", {parameter}); }},
      {"get parameters", [&] { d.GetFlowProcessParameterList(e_debugger, "m", parameters); }},
      {"get parameter", [&] { d.GetFlowProcessParameter(e_debugger, "m", "a"); }},
      {"get value", [&] { d.GetFlowProcessParameterValue(e_debugger, "m", "a"); }},
      {"exists", [&] { d.IsProjectDatabaseExist(); }},
      {"clean", [&] { d.CleanProjectDatabase(); }}};
  for (const auto& [name, operation] : operations) EXPECT_TRUE(IsTaken(1, operation)) << name;
}

// --- A message handler that throws ---

/// An operation that posts a message.
struct Posting {
  const char* name;
  std::string bytes;  ///< Of the file at the path.
  MessageRecorder::Message (*message)(const std::string& path);
  void (*operation)(KelProjectDatabase&, const std::string& path) = [](auto& database, auto& path) {
    database.LoadProjectData(path, "");
  };
};

std::vector<Posting> Postings() {
  return {
      {"ProjectExists", "", [](auto&) { return ProjectExistsMessage(); },
       [](auto& database, auto&) { database.CreateNewProjectDatabase("next"); }},
      {"ProjectFileMissing", "", [](auto& path) { return MissingMessage(path + ".none"); },
       [](auto& database, auto& path) { database.LoadProjectData(path + ".none", ""); }},
      {"SchemaFileMissing", ProjectXml(""),
       [](auto& path) { return SchemaMissingMessage(path + ".xsd"); },
       [](auto& database, auto& path) { database.LoadProjectData(path, path + ".xsd"); }},
      {"ProjectFileMalformed", "<project>", MalformedMessage},
      {"ReadingProject", ProjectXml(""), ReadingMessage},
      {"UnexpectedTag", ProjectXml("<bogus/>"), [](auto&) { return UnexpectedMessage("bogus"); }},
      {"DeprecatedSection", ProjectXml("<package_info/>"),
       [](auto&) { return DeprecatedMessage("package_info"); }},
      {"DeprecatedChild", ProjectXml("<constraint_info><core_place_file/></constraint_info>"),
       [](auto&) { return DeprecatedMessage("core_place_file"); }}};
}

class PostThatThrows : public testing::TestWithParam<Posting>, protected Loading {
 protected:
  void SetUp() override {
    database.CreateNewProjectDatabase("former");
    Write("p.xml", GetParam().bytes);
    const std::string text = GetParam().message(path()).text;
    const ThrowingHandler handler(
        [=](const Diag::DiagStorage& message) { return message.text() == text; });
    ASSERT_THROW(GetParam().operation(database, path()), HandlerFailure);
  }
};

// A lock that is still held shows as a test that does not end.

TEST_P(PostThatThrows, OtherThreadsLoadAndExport) {
  Write("next.xml", CompleteProjectXml());
  InAnotherThread([this] {
    EXPECT_TRUE(LoadFile(directory / "next.xml"));
    EXPECT_NO_THROW(database.ExportProjectData(directory / "exported.xml"));
  });
}

TEST_P(PostThatThrows, OtherThreadsPostTheSameMessage) {
  InAnotherThread([this] {
    const MessageRecorder recorder;
    GetParam().operation(database, path());
    EXPECT_THAT(recorder.messages(), Contains(GetParam().message(path())));
  });
}

INSTANTIATE_TEST_SUITE_P(Messages, PostThatThrows, testing::ValuesIn(Postings()), ByName());

}  // namespace
