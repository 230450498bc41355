#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <projectdb/compare.h>
#include <projectdb/merge.h>
#include <projectdb/project_contents.h>

#include "benchmarks.h"
#include "generator.h"
#include "testing/xml_platform.h"

namespace bench {
namespace {

using benchmark::State;
using projectdb::DesignFile;
using projectdb::ProjectContents;

const std::vector<std::int64_t> kMergeSizes = {100, 100'000};

/// A project and two that were made of it.
struct ThreeProjects {
  ProjectContents base;
  ProjectContents ours;
  ProjectContents theirs;
};

ProjectContents MakeProject(std::size_t design_files) {
  const test_support::XmlPlatform platform;
  projectdb::KelProjectDatabase database;
  FillDatabase(database, design_files);
  return projectdb::GetProjectContents(database);
}

/// What people do to a project: a change, an addition, a removal and a move in every hundred files.
void Edit(std::vector<DesignFile>& files, std::size_t first, const std::string& name) {
  std::vector<DesignFile> edited;
  for (std::size_t i = 0; i < files.size(); ++i) {
    const std::size_t place = (i + first) % 100;
    if (place == 20) continue;
    if (place == 40) edited.emplace_back(name + std::to_string(i), "verilog_2001", "work");
    edited.push_back(files[i]);
    if (place == 60) edited.back().library = name;
    if (place == 80 && edited.size() > 10) std::swap(edited.back(), *(edited.end() - 10));
  }
  files = std::move(edited);
}

void Shuffle(std::vector<DesignFile>& files, unsigned seed) {
  std::mt19937 random(seed);
  std::shuffle(files.begin(), files.end(), random);
}

struct EditedProjects : ThreeProjects {
  explicit EditedProjects(std::size_t size) : ThreeProjects{MakeProject(size), {}, {}} {
    ours = theirs = base;
    Edit(ours.design_info.design_files, 0, "ours");
    Edit(theirs.design_info.design_files, 10, "theirs");
  }
};

/// Each side has all files in another order.
struct ShuffledProjects : ThreeProjects {
  explicit ShuffledProjects(std::size_t size) : ThreeProjects{MakeProject(size), {}, {}} {
    ours = theirs = base;
    Shuffle(ours.design_info.design_files, 1);
    Shuffle(theirs.design_info.design_files, 2);
  }
};

/// Few files that are repeated, in any order.
struct RepetitiveProjects : ThreeProjects {
  explicit RepetitiveProjects(std::size_t size) : ThreeProjects{MakeProject(size), {}, {}} {
    auto& files = base.design_info.design_files;
    for (std::size_t i = 0; i < files.size(); ++i) files[i] = DesignFileAt(i % 10);
    ours = theirs = base;
    Shuffle(ours.design_info.design_files, 1);
    Shuffle(theirs.design_info.design_files, 2);
  }
};

/// A merge against one comparison of two of its projects.
template <typename Projects>
void CompareMerging(State& state) {
  const ThreeProjects& projects = Cached<Projects>(SizeOf(state));
  Compare(
      state, SizeOf(state),
      [&](Stopwatch& watch) {
        watch.Start();
        const auto merged = projectdb::MergeProjects(projects.base, projects.ours, projects.theirs);
        benchmark::DoNotOptimize(merged.conflicts.data());
        watch.Stop();
      },
      [&](Stopwatch& watch) {
        watch.Start();
        const auto differences = projectdb::CompareProjects(projects.base, projects.theirs);
        benchmark::DoNotOptimize(differences.data());
        watch.Stop();
      });
}

}  // namespace

void RegisterMergeBenchmarks() {
  Register("merge", kMergeSizes, CompareMerging<EditedProjects>);
  Register("merge_shuffled", kMergeSizes, CompareMerging<ShuffledProjects>);
  Register("merge_repetitive", kMergeSizes, CompareMerging<RepetitiveProjects>);
}

}  // namespace bench
