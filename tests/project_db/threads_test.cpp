#include <algorithm>
#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/message_recorder.h"
#include "testing/project_loading.h"
#include "testing/threads.h"

namespace {

using namespace projectdb;
using test_support::MessageRecorder;
using testing::Each;

constexpr int kThreads = 8;
constexpr int kRounds = 200;

void InAllThreads(const std::function<void(int thread)>& work) {
  test_support::InThreads(kThreads, work);
}

std::string NameOf(int thread, int round) {
  return "/" + std::to_string(thread) + "_" + std::to_string(round);
}

/// All names, or those of one thread that a list holds, in the order of the list.
std::vector<std::string> NamesOfThread(int thread) {
  std::vector<std::string> names;
  names.reserve(kRounds);
  for (int round = 0; round < kRounds; ++round) names.push_back(NameOf(thread, round));
  return names;
}
std::vector<std::string> NamesOfThread(const std::vector<std::string>& list, int thread) {
  std::vector<std::string> names;
  const std::string prefix = "/" + std::to_string(thread) + "_";
  for (const std::string& name : list) {
    if (name.rfind(prefix, 0) == 0) names.push_back(name);
  }
  return names;
}

class Threads : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker")); }

  KelProjectDatabase database_;
};

TEST_F(Threads, AddMiscellaneousFile_EightThreads_KeepsEveryNameInTheOrderOfItsThread) {
  InAllThreads([this](int thread) {
    for (int round = 0; round < kRounds; ++round) {
      database_.AddMiscellaneousFile(NameOf(thread, round));
    }
  });
  std::vector<std::string> names;
  database_.GetMiscellaneousFileList(names);
  EXPECT_EQ(names.size(), std::size_t{kThreads} * kRounds);
  for (int thread = 0; thread < kThreads; ++thread) {
    EXPECT_EQ(NamesOfThread(names, thread), NamesOfThread(thread));
  }
}

TEST_F(Threads, MixedOperations_EightThreads_CountsAddUp) {
  InAllThreads([this](int thread) {
    const auto process = static_cast<ProcType>(thread % 4);
    for (int round = 0; round < kRounds; ++round) {
      const std::string name = NameOf(thread, round);
      database_.AddDesignRTLFile(name, "v2001", "work");
      std::vector<DesignFile> benches(2, DesignFile(name, "v2001", "sim"));
      database_.AddSimulationTestBenchFile(benches);
      database_.AddTimingConstraintFile(std::vector<std::string>{name + ".sdc", name});
      database_.AddFlowProcessParameter(process, "param", name, "1", e_string);
      database_.AddFlowProcessParameterList(process, "own" + std::to_string(thread),
                                            {{name, "1", e_string}});
      database_.AddProjectInfoAttribute(name, name);
      database_.SetDeviceModel(name);
      database_.SetSynthesisExecutableName(name);

      std::vector<DesignFile> files;
      database_.GetDesignFileList(files);
      std::vector<Parameter> parameters;
      database_.GetFlowProcessParameterList(process, "param", parameters);
      std::string value;
      database_.GetProjectInfoAttribute(name, value);
    }
  });

  constexpr std::size_t kAdded = std::size_t{kThreads} * kRounds;
  std::vector<DesignFile> files;
  database_.GetDesignFileList(files);
  EXPECT_EQ(files.size(), kAdded);
  std::vector<std::string> benches;
  database_.GetSimulationTestBenchFileList(benches);
  EXPECT_EQ(benches.size(), 2 * kAdded);
  std::vector<std::string> constraints;
  database_.GetTimingConstraintFileList(constraints);
  EXPECT_EQ(constraints.size(), kAdded);

  std::size_t common = 0;
  std::size_t own = 0;
  std::size_t attributes = 0;
  for (int thread = 0; thread < kThreads; ++thread) {
    const auto process = static_cast<ProcType>(thread % 4);
    const auto param = *database_.FindFlowProcessParameterMap(process, "param");
    for (int round = 0; round < kRounds; ++round) {
      std::string value;
      common += param.count(NameOf(thread, round));
      if (database_.GetProjectInfoAttribute(NameOf(thread, round), value)) ++attributes;
    }
    own += database_.FindFlowProcessParameterMap(process, "own" + std::to_string(thread))->size();
  }
  EXPECT_EQ(common, kAdded);
  EXPECT_EQ(own, kAdded);
  EXPECT_EQ(attributes, kAdded);
}

TEST_F(Threads, Setters_TextsOfDifferentLength_GettersNeverSeeAMixture) {
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < kThreads; ++i) {
    texts.emplace_back(1 + i * 100, static_cast<char>('0' + i));
  }
  database_.SetProjectName(texts[0]);
  std::atomic<int> mixtures{0};
  InAllThreads([&](int thread) {
    for (int round = 0; round < kRounds; ++round) {
      database_.SetProjectName(texts[static_cast<std::size_t>(thread)]);
      const std::string name = database_.GetProjectName();
      if (std::find(texts.begin(), texts.end(), name) == texts.end()) ++mixtures;
    }
  });
  EXPECT_EQ(mixtures, 0);
}

TEST_F(Threads, AddFlowProcessParameter_SameParameterWithTwoTypes_NeverChangesItsType) {
  std::atomic<int> accepted_strings{0};
  std::atomic<int> accepted_options{0};
  InAllThreads([&](int thread) {
    auto& accepted = thread % 2 == 0 ? accepted_strings : accepted_options;
    const ParameterType type = thread % 2 == 0 ? e_string : e_option;
    for (int round = 0; round < kRounds; ++round) {
      if (database_.AddSynthesisParameter("effort", "high", type)) ++accepted;
    }
  });
  EXPECT_EQ(std::min(accepted_strings.load(), accepted_options.load()), 0);
  EXPECT_EQ(std::max(accepted_strings.load(), accepted_options.load()), kThreads / 2 * kRounds);
}

TEST(ThreadsWithoutProject, CreateNewProjectDatabase_EightThreads_EachRefusalPostsOneError) {
  const MessageRecorder recorder;
  KelProjectDatabase database;
  std::atomic<int> created{0};
  InAllThreads([&](int) {
    for (int round = 0; round < kRounds; ++round) {
      if (database.CreateNewProjectDatabase("blinker")) ++created;
    }
  });
  const auto messages = recorder.messages();
  EXPECT_GE(created, 1);
  EXPECT_EQ(messages.size() + static_cast<std::size_t>(created.load()),
            std::size_t{kThreads} * kRounds);
  EXPECT_THAT(messages, Each(test_support::ProjectExistsMessage()));
}

TEST(ThreadsWithoutProject, SeveralObjects_OnePerThread_DoNotMeet) {
  std::vector<KelProjectDatabase> databases(kThreads);
  InAllThreads([&](int thread) {
    KelProjectDatabase& database = databases[static_cast<std::size_t>(thread)];
    database.CreateNewProjectDatabase("project " + std::to_string(thread));
    for (int round = 0; round < kRounds; ++round) {
      database.AddMiscellaneousFile(NameOf(thread, round));
    }
  });
  for (int thread = 0; thread < kThreads; ++thread) {
    const KelProjectDatabase& database = databases[static_cast<std::size_t>(thread)];
    EXPECT_EQ(database.GetProjectName(), "project " + std::to_string(thread));
    std::vector<std::string> names;
    database.GetMiscellaneousFileList(names);
    EXPECT_EQ(names, NamesOfThread(thread));
  }
}

}  // namespace
