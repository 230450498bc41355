// Tells what the library makes of many files, projects and trees; linked with two builds of it,
// whose answers must be the same:
//   differential SCHEMA CORPUS COUNT [CASE]
// Works in the current directory. One line for each of the corpus's files, for files that are large
// in one respect and for COUNT cases that chance makes, or the whole answer to one of them.

#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <projectdb/compare.h>
#include <projectdb/project_contents.h>
#include <projectdb/project_db.h>
#include <projectdb/project_file.h>

#include "random_files.h"
#include "random_trees.h"
#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/xml_platform.h"
#include "testing/xml_tree.h"
#include "tests/hostile/hostile_texts.h"

namespace differential {
namespace {

using namespace projectdb;
using test_support::WithoutTimeStamp;

/// What a case came to.
struct Outcome {
  bool parsed = false;  ///< Without a schema.
  bool loaded = false;  ///< The whole of it, without a schema.
  bool exported = false;
};

/// What chance makes.
enum class Kind { kProject, kTrees, kSoundFile, kDamagedFile, kCount };

/// How many cases of one kind came to what.
struct Counts {
  std::size_t cases = 0;
  std::size_t parsed = 0;
  std::size_t loaded = 0;
  std::size_t exported = 0;

  void Add(const Outcome& outcome) {
    ++cases;
    if (outcome.parsed) ++parsed;
    if (outcome.loaded) ++loaded;
    if (outcome.exported) ++exported;
  }
};

std::ostream& operator<<(std::ostream& out, const Counts& counts) {
  return out << counts.cases << " cases, " << counts.parsed << " parsed, " << counts.loaded
             << " loaded whole, " << counts.exported << " exported";
}

// A comparison of refusals alone would show little.
bool ShowMuch(const Counts& projects, const Counts& sound_files) {
  return 2 * projects.exported >= projects.cases && 2 * sound_files.parsed >= sound_files.cases &&
         5 * sound_files.loaded >= sound_files.cases;
}

class Answers {
 public:
  explicit Answers(std::string schema) : schema_(std::move(schema)) {
    test_support::WriteFile("defaults.xsd", SchemaWithDefaults());
  }

  /// Of the answers since the last call.
  Outcome TakeOutcome() { return std::exchange(outcome_, {}); }

  std::string ToFile(const std::string& bytes) {
    test_support::WriteFile("p.xml", bytes);
    std::string answer;
    for (const std::string& schema : {std::string(), schema_, std::string("defaults.xsd")}) {
      answer += "schema " + schema + "\n" + ToLoad(schema) + ToRead(schema);
    }
    return answer;
  }

  std::string ToContents(const ProjectContents& contents) {
    KelProjectDatabase database;
    return Guarded([&] {
      SetProjectContents(database, contents);
      return ToExport(database) + Guarded([&] { return FormatProjectFile(contents, {true}); });
    });
  }

 private:
  static std::string Guarded(const std::function<std::string()>& action) {
    try {
      return action();
    } catch (const std::exception& exception) {
      return std::string("exception ") + exception.what() + "\n";
    }
  }

  static std::string Show(const ProjectContents& contents) {
    std::string text;
    for (const ProjectDifference& value : CompareProjects(ProjectContents(), contents)) {
      text += value.what + " " + value.where + ": " + value.after.value_or("") + "\n";
    }
    return text;
  }

  std::string ToLoad(const std::string& schema) {
    const test_support::MessageRecorder recorder;
    KelProjectDatabase database;
    std::string answer = Guarded([&] {
      const bool is_loaded = database.LoadProjectData("p.xml", schema);
      if (is_loaded && schema.empty()) outcome_.loaded = true;
      return std::string(is_loaded ? "loaded\n" : "not loaded\n");
    });
    for (const auto& message : recorder.messages()) answer += message.text + "\n";
    if (!database.IsProjectDatabaseExist()) return answer;
    if (schema.empty()) outcome_.parsed = true;
    const ProjectContents contents = GetProjectContents(database);
    return answer + Show(contents) + ToExport(database) +
           Guarded([&] { return FormatProjectFile(contents, {true}); });
  }

  static std::string ToRead(const std::string& schema) {
    return Guarded([&] {
      const ProjectFile file = ReadProjectFile("p.xml", schema);
      std::string answer;
      for (const FileProblem& problem : file.problems) {
        answer += std::to_string(problem.line) + ":" + std::to_string(problem.column) + " " +
                  problem.message + "\n";
      }
      return answer + (file.contents ? Show(*file.contents) : "no contents\n");
    });
  }

  std::string ToExport(const KelProjectDatabase& database) {
    return Guarded([&] {
      std::filesystem::remove("out.xml");
      database.ExportProjectData("out.xml");
      outcome_.exported = true;
      return WithoutTimeStamp(test_support::ReadFile("out.xml"));
    });
  }

  std::string schema_;
  Outcome outcome_;
};

Kind KindOf(std::size_t seed) {
  return static_cast<Kind>(seed % static_cast<std::size_t>(Kind::kCount));
}

std::string AnswerToChance(Answers& answers, unsigned seed) {
  RandomInput input(seed);
  switch (KindOf(seed)) {
    case Kind::kProject:
      return answers.ToContents(RandomContents(input));
    case Kind::kTrees:
      return DoMuchToTrees(input);
    case Kind::kSoundFile:
      return answers.ToFile(RandomFile(input));
    default:
      return answers.ToFile(Damaged(RandomFile(input), input));
  }
}

std::vector<std::string> FilesIn(const std::string& directory) {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    paths.push_back(entry.path().string());
  }
  std::sort(paths.begin(), paths.end());
  std::vector<std::string> files;
  files.reserve(paths.size());
  for (const std::string& path : paths) files.push_back(test_support::ReadFile(path));
  return files;
}

std::vector<std::string> LargeFiles() {
  constexpr std::size_t kSize = 300;
  std::vector<std::string> files;
  for (const hostile::Text& text :
       {hostile::kDesignFiles, hostile::kIps, hostile::kParameters, hostile::kUnknownSections,
        hostile::kNestedElements, hostile::kLongAttribute, hostile::kRootAttributes}) {
    std::ostringstream file;
    text.Write(file, kSize);
    files.push_back(file.str());
  }
  return files;
}

// Of a text whose whole would fill the disk.
std::uint64_t Digest(const std::string& text) {
  std::uint64_t digest = 0xcbf29ce484222325U;
  for (const char c : text) digest = (digest ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
  return digest;
}

int Run(const std::vector<std::string>& arguments) {
  if (arguments.size() != 3 && arguments.size() != 4) {
    std::cerr << "usage: differential SCHEMA CORPUS COUNT [CASE]\n";
    return 2;
  }
  // A start of the XML library would take longer than most cases.
  const test_support::XmlPlatform platform;
  Answers answers(arguments[0]);
  std::vector<std::string> files = FilesIn(arguments[1]);
  for (std::string& file : LargeFiles()) files.push_back(std::move(file));
  const std::size_t count = files.size() + std::stoul(arguments[2]);
  const auto answer_to = [&](std::size_t number) {
    return number < files.size()
               ? answers.ToFile(files[number])
               : AnswerToChance(answers, static_cast<unsigned>(number - files.size()));
  };
  if (arguments.size() == 4) {
    std::cout << answer_to(std::stoul(arguments[3]));
    return 0;
  }
  std::map<Kind, Counts> counts;
  for (std::size_t number = 0; number < count; ++number) {
    std::cout << number << ' ' << Digest(answer_to(number)) << '\n';
    const Outcome outcome = answers.TakeOutcome();
    if (number >= files.size()) counts[KindOf(number - files.size())].Add(outcome);
  }
  const Counts& projects = counts[Kind::kProject];
  const Counts& sound_files = counts[Kind::kSoundFile];
  const bool is_enough = ShowMuch(projects, sound_files);
  (is_enough ? std::cout : std::cerr)
      << count << " cases; projects: " << projects << "; sound files: " << sound_files
      << "; damaged files: " << counts[Kind::kDamagedFile] << '\n';
  if (!is_enough) std::cerr << "too few of the cases come to something\n";
  return is_enough ? 0 : 1;
}

}  // namespace
}  // namespace differential

int main(int argument_count, char** arguments) {
  try {
    return differential::Run({arguments + 1, arguments + argument_count});
  } catch (const std::exception& exception) {
    std::cerr << exception.what() << '\n';
    return 1;
  }
}
