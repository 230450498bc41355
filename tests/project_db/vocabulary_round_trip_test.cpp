// Each value that the vocabulary names, saved and loaded, so that none can be added without a place
// in the file.

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <type_traits>

#include <projectdb/project_contents.h>
#include <projectdb/project_db.h>
#include <projectdb/vocabulary.h>

#include "testing/message_recorder.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"

namespace {

using namespace projectdb;
using namespace test_support;

/// Is given each text with its key and what the text has to end in.
using VisitText =
    std::function<void(const std::string& key, std::string& text, std::string_view ending)>;

/// Goes through the texts of a project that its user decides; each list has one entry at least
/// then.
class TextWalk {
 public:
  explicit TextWalk(VisitText visit) : visit_(std::move(visit)) {}

  void Through(ProjectContents& project) const {
    Terms(ProjectTerms(), "", project);
    for (FlowProcessContents& process : project.flow_processes) {
      Terms(FlowProcessTerms(), process.name + ".", process);
    }
  }

 private:
  template <typename Record, typename... Fields>
  void Terms(const Table<Term<Record, Fields...>>& terms, const std::string& before,
             Record& record) const {
    for (const Term<Record, Fields...>& term : terms) {
      if (term.kind != TermKind::kValue) continue;
      const std::string key = before + std::string(term.key);
      std::visit([&](const auto& access) { Field(key, access(record), term.file_ending); },
                 term.access);
    }
  }

  using Ending = std::optional<std::string_view>;

  void Field(const std::string& key, std::string& text, Ending ending) const {
    visit_(key, text, ending.value_or(""));
  }
  void Field(const std::string& key, std::vector<std::string>& names, Ending ending) const {
    Field(key, Only(names), ending);
  }
  void Field(const std::string& key, std::vector<DesignFile>& files, Ending /*ending*/) const {
    Terms(DesignFileTerms(), key + ".", Only(files));
  }
  void Field(const std::string& key, std::vector<IP>& instances, Ending /*ending*/) const {
    Terms(IPTerms(), key + ".", Only(instances));
  }
  void Field(const std::string& key, std::vector<IPSrcFile>& files, Ending ending) const {
    Field(key, Only(files).name, ending);
  }
  // Their names are the user's too.
  void Field(const std::string& /*key*/, InfoAttributes& /*info*/, Ending /*ending*/) const {}
  void Field(const std::string& /*key*/, ParameterMaps& /*maps*/, Ending /*ending*/) const {}
  void Field(const std::string& /*key*/, std::vector<Parameter>& /*plain*/,
             Ending /*ending*/) const {}

  template <typename Entry>
  static Entry& Only(std::vector<Entry>& list) {
    if constexpr (std::is_same_v<Entry, DesignFile>) {
      if (list.empty()) list.emplace_back("", "", "");
    } else {
      list.resize(std::max<std::size_t>(list.size(), 1));
    }
    return list.front();
  }

  VisitText visit_;
};

std::map<std::string, std::string> TextsOf(ProjectContents project) {
  std::map<std::string, std::string> texts;
  TextWalk([&](const std::string& key, const std::string& text, std::string_view /*ending*/) {
    texts[key] = text;
  }).Through(project);
  return texts;
}

ProjectContents ProjectWithEveryText() {
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("p");
  ProjectContents project = GetProjectContents(database);
  TextWalk([](const std::string& key, std::string& text, std::string_view ending) {
    text = "that of " + key + std::string(ending);
  }).Through(project);
  return project;
}

TEST(VocabularyRoundTrip, EveryText_IsInTheFileAndComesBack) {
  const ProjectContents project = ProjectWithEveryText();
  const MessageRecorder recorder;
  const TemporaryDirectory directory;
  KelProjectDatabase saved;
  SetProjectContents(saved, project);
  saved.ExportProjectData(directory / "p.xml");
  KelProjectDatabase loaded;
  EXPECT_TRUE(loaded.LoadProjectData(directory / "p.xml", ""));
  EXPECT_EQ(TextsOf(GetProjectContents(loaded)), TextsOf(project));
}

}  // namespace
