#include <filesystem>
#include <functional>
#include <future>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/durable_export.h>
#include <projectdb/project_db.h>

#include "testing/before_lock.h"
#include "testing/files.h"
#include "testing/project_loading.h"
#include "testing/saving.h"
#include "testing/throwing_handler.h"

namespace {

using projectdb::KelProjectDatabase;
using test_support::BeforeLock;
using test_support::CompleteProjectXml;
using test_support::DeprecatedMessage;
using test_support::HandlerFailure;
using test_support::Loading;
using test_support::MalformedMessage;
using test_support::MessageRecorder;
using test_support::MissingMessage;
using test_support::NamesIn;
using test_support::ProjectXml;
using test_support::ReadFile;
using test_support::ReadingMessage;
using test_support::SaveError;
using test_support::SchemaMissingMessage;
using test_support::ThrowingHandler;
using test_support::UnexpectedMessage;
using testing::ElementsAre;

void InAnotherThread(const std::function<void()>& work) {
  std::async(std::launch::async, work).get();
}

// --- Between the stretches in which an operation holds the lock ---

/// What another thread does before an operation locks its object once more.
class Interruption : public testing::Test, protected Loading {
 protected:
  /// Does something in another thread before the operation takes the object's lock for that time.
  void Interrupt(int lock, const std::function<void()>& operation,
                 const std::function<void()>& work) {
    const BeforeLock before_lock(database, lock, [&work] { InAnotherThread(work); });
    operation();
    ASSERT_TRUE(before_lock.happened());
  }

  const std::function<void()> clean_ = [this] { database.CleanProjectDatabase(); };
  const std::function<void()> replace_ = [this] {
    database.CleanProjectDatabase();
    database.CreateNewProjectDatabase("other");
  };
};

class InterruptedLoad : public Interruption {
 protected:
  static constexpr int kBeforeReading = 1;
  static constexpr int kBeforeStoringTheDirectory = 2;

  InterruptedLoad() { Write("p.xml", CompleteProjectXml()); }

  void InterruptLoad(int lock, const std::function<void()>& work) {
    Interrupt(
        lock, [this] { result_ = LoadFile(path()); }, work);
  }

  bool result_ = false;
};

TEST_F(InterruptedLoad, LoadProjectData_CleanedBeforeTheDirectoryIsStored_ReturnsTrue) {
  InterruptLoad(kBeforeStoringTheDirectory, clean_);
  EXPECT_TRUE(result_);
}

TEST_F(InterruptedLoad, LoadProjectData_CleanedBeforeTheDirectoryIsStored_LeavesNoProject) {
  InterruptLoad(kBeforeStoringTheDirectory, clean_);
  EXPECT_FALSE(database.IsProjectDatabaseExist());
}

TEST_F(InterruptedLoad, LoadProjectData_ReplacedBeforeTheDirectoryIsStored_GivesItToTheNewProject) {
  InterruptLoad(kBeforeStoringTheDirectory, replace_);
  EXPECT_EQ(database.GetProjectName(), "other");
  EXPECT_EQ(database.GetDesignTopModuleName(), "");
  EXPECT_EQ(database.GetProjectCurrentPath(), directory.path());
}

TEST_F(InterruptedLoad, LoadProjectData_CleanedBeforeReading_LoadsAFreshProject) {
  database.CreateNewProjectDatabase("former");
  database.AddMiscellaneousFile("former.txt");
  InterruptLoad(kBeforeReading, clean_);
  EXPECT_TRUE(result_);
  std::vector<std::string> names;
  database.GetMiscellaneousFileList(names);
  EXPECT_THAT(names, ElementsAre(directory / "notes.txt"));
}

TEST_F(InterruptedLoad, LoadProjectData_LoadedByAnotherThreadBeforeReading_MergesTheTwo) {
  Write("other.xml", ProjectXml("<misc_info><misc_file name=\"/a.txt\"/></misc_info>"));
  InterruptLoad(kBeforeReading, [this] { database.LoadProjectData(directory / "other.xml", ""); });
  EXPECT_TRUE(result_);
  std::vector<std::string> names;
  database.GetMiscellaneousFileList(names);
  EXPECT_THAT(names, ElementsAre("/a.txt", directory / "notes.txt"));
}

class InterruptedExport : public Interruption {
 protected:
  static constexpr int kBeforeCopying = 2;

  InterruptedExport() { database.CreateNewProjectDatabase("former"); }

  void InterruptExport(const std::function<void()>& work) {
    Interrupt(
        kBeforeCopying, [this] { database.ExportProjectData(path()); }, work);
  }

  std::string NameInFile() const {
    KelProjectDatabase loaded;
    loaded.LoadProjectData(path(), "");
    return loaded.GetProjectName();
  }

  const MessageRecorder recorder_;
};

TEST_F(InterruptedExport, ExportProjectData_CleanedAfterTheTestForAProject_WritesNoFile) {
  InterruptExport(clean_);
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre());
}

TEST_F(InterruptedExport,
       ExportProjectData_CleanedAfterTheTestForAProject_LeavesTheFileThatWasThere) {
  Write("p.xml", "former");
  InterruptExport(clean_);
  EXPECT_EQ(ReadFile(path()), "former");
}

TEST_F(InterruptedExport, ExportProjectData_ReplacedAfterTheTestForAProject_WritesTheNewProject) {
  InterruptExport(replace_);
  EXPECT_EQ(NameInFile(), "other");
}

class InterruptedDurableExport : public InterruptedExport,
                                 public testing::WithParamInterface<int> {};

TEST_P(InterruptedDurableExport, ExportProjectDataDurably_Cleaned_LeavesTheFileThatWasThereAlone) {
  Write("p.xml", "former");
  Interrupt(
      GetParam(), [this] { projectdb::ExportProjectDataDurably(database, path()); }, clean_);
  EXPECT_EQ(ReadFile(path()), "former");
  EXPECT_THAT(NamesIn(directory.path()), ElementsAre("p.xml"));
}

INSTANTIATE_TEST_SUITE_P(Locks, InterruptedDurableExport, testing::Values(1, 2, 3));

/// What no load would read as it is.
void ChangeSoThatNoLoadReadsIt(KelProjectDatabase& database) {
  database.AddFlowProcessParameterMap(projectdb::e_debugger, "param")
      ->emplace("key", projectdb::Parameter("name", "v", projectdb::e_string));
}

TEST_F(InterruptedExport, ExportProjectDataDurably_ChangedBeforeAnyOfItsLocks_IsRefused) {
  int locks = 0;
  for (bool happened = true; happened; ++locks) {
    KelProjectDatabase changed;
    changed.CreateNewProjectDatabase("changed");
    const BeforeLock before_lock(
        changed, locks + 1, [&] { InAnotherThread([&] { ChangeSoThatNoLoadReadsIt(changed); }); });
    const std::string error = SaveError(changed, path());
    happened = before_lock.happened();
    EXPECT_EQ(error.empty(), !happened) << "before lock " << locks + 1;
  }
  EXPECT_GT(locks, 1);
}

class InterruptedCreation : public Interruption {
 protected:
  static constexpr int kBeforeCreating = 2;

  const MessageRecorder recorder_;
};

TEST_F(InterruptedCreation, CreateNewProjectDatabase_LoadedByAnotherThread_SetsTheDefaultsInIt) {
  Write("p.xml", CompleteProjectXml());
  Interrupt(
      kBeforeCreating, [this] { EXPECT_TRUE(database.CreateNewProjectDatabase("created")); },
      [this] { database.LoadProjectData(path(), ""); });
  EXPECT_EQ(database.GetProjectName(), "created");
  EXPECT_EQ(database.GetDesignTopModuleName(), "top");
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

TEST_F(Locks, AddTimingConstraintFile_NameOfThatKind_TakesItOnce) {
  const auto add = [this] { EXPECT_TRUE(database_.AddTimingConstraintFile("a.sdc")); };
  EXPECT_TRUE(IsTaken(1, add));
  EXPECT_FALSE(IsTaken(2, add));
}

TEST_F(Locks, AddTimingConstraintFile_List_TakesItOnce) {
  const auto add = [this] {
    EXPECT_TRUE(database_.AddTimingConstraintFile(std::vector<std::string>{"a.sdc", "", "b.sdc"}));
  };
  EXPECT_TRUE(IsTaken(1, add));
  EXPECT_FALSE(IsTaken(2, add));
}

TEST_F(Locks, SetInterfaceConstraint_NameOfAnotherKind_TakesNone) {
  EXPECT_FALSE(IsTaken(1, [this] { EXPECT_FALSE(database_.SetInterfaceConstraint("io.csv")); }));
}

// --- A message handler that throws ---

/// An operation that posts a message.
struct Posting {
  const char* name;
  std::string bytes;  ///< Of the file at the path.
  MessageRecorder::Message (*message)(const std::string& path);
  void (*operation)(KelProjectDatabase&, const std::string& path);
};

void PrintTo(const Posting& posting, std::ostream* out) { *out << posting.name; }

void LoadWithoutSchema(KelProjectDatabase& database, const std::string& path) {
  database.LoadProjectData(path, "");
}

std::vector<Posting> Postings() {
  const auto posts = [](const char* name, const std::string& sections, auto message) {
    return Posting{name, ProjectXml(sections), message, LoadWithoutSchema};
  };
  return {{"ProjectExists", "",
           [](const std::string&) -> MessageRecorder::Message {
             return {Diag::MessageType::kError,
                     "Project database has already existed. Fail to create new project"};
           },
           [](KelProjectDatabase& database, const std::string&) {
             database.CreateNewProjectDatabase("next");
           }},
          {"ProjectFileMissing", "",
           [](const std::string& path) { return MissingMessage(path + ".none"); },
           [](KelProjectDatabase& database, const std::string& path) {
             database.LoadProjectData(path + ".none", "");
           }},
          {"SchemaFileMissing", ProjectXml(""),
           [](const std::string& path) { return SchemaMissingMessage(path + ".xsd"); },
           [](KelProjectDatabase& database, const std::string& path) {
             database.LoadProjectData(path, path + ".xsd");
           }},
          {"ProjectFileMalformed", "<project>", MalformedMessage, LoadWithoutSchema},
          posts("ReadingProject", "", ReadingMessage),
          posts("UnexpectedTag", "<bogus/>",
                [](const std::string&) { return UnexpectedMessage("bogus"); }),
          posts("DeprecatedSection", "<package_info/>",
                [](const std::string&) { return DeprecatedMessage("package_info"); }),
          posts("DeprecatedChild", "<constraint_info><core_place_file/></constraint_info>",
                [](const std::string&) { return DeprecatedMessage("core_place_file"); })};
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

TEST_P(PostThatThrows, ObjectAnswersOtherThreads) {
  InAnotherThread([this] { EXPECT_TRUE(database.IsProjectDatabaseExist()); });
}

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
    EXPECT_THAT(recorder.messages(), testing::Contains(GetParam().message(path())));
  });
}

INSTANTIATE_TEST_SUITE_P(Messages, PostThatThrows, testing::ValuesIn(Postings()),
                         [](const auto& param_info) { return std::string(param_info.param.name); });

}  // namespace
