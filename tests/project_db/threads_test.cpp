#include <algorithm>
#include <atomic>
#include <functional>
#include <map>

#include "testing/project_loading.h"
#include "testing/test.h"
#include "testing/threads.h"

namespace {

using namespace projectdb;
using namespace test_support;

constexpr int kThreads = 8;
constexpr int kRounds = 200;

void InAllThreads(const std::function<void(int thread)>& work) { InThreads(kThreads, work); }

std::string NameOf(int thread, int round) {
  return InRoot(std::to_string(thread) + "_" + std::to_string(round));
}

std::vector<std::string> NamesOfThread(int thread) {
  std::vector<std::string> names;
  for (int round = 0; round < kRounds; ++round) names.push_back(NameOf(thread, round));
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
  ASSERT_EQ(names.size(), std::size_t{kThreads} * kRounds);
  std::map<char, std::vector<std::string>> names_of_threads;
  for (const std::string& name : names) names_of_threads[name[InRoot("").size()]].push_back(name);
  for (int thread = 0; thread < kThreads; ++thread) {
    EXPECT_EQ(names_of_threads[static_cast<char>('0' + thread)], NamesOfThread(thread));
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
  const ProjectContents project = GetProjectContents(database_);
  EXPECT_EQ(project.design_info.design_files.size(), kAdded);
  EXPECT_EQ(project.sim_files.size(), 2 * kAdded);
  EXPECT_EQ(project.design_constraint.sdc_files.size(), kAdded);
  EXPECT_EQ(project.info_attributes.size(), kAdded);
  for (const FlowProcessContents& process : project.flow_processes) {
    EXPECT_EQ(process.parameter_maps.size(), 3U);
    for (const auto& [name, map] : process.parameter_maps) {
      EXPECT_EQ(map.size(), name == "param" ? kAdded / 4 : std::size_t{kRounds}) << name;
    }
  }
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
  EXPECT_THAT(messages, Each(ProjectExistsMessage()));
}

}  // namespace
