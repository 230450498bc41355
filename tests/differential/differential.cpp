// Tells what the library makes of many files, projects and trees; linked with two builds of it,
// whose answers must be the same:
//   differential SCHEMA CORPUS COUNT [CASE]
// Works in the current directory. One line for each of the corpus's files and for COUNT cases that
// chance makes, or the whole answer to one of them.

#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>
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

namespace differential {
namespace {

using namespace projectdb;
using test_support::WithoutTimeStamp;

/// How many cases came to what: a comparison of refusals alone would show nothing.
struct Counts {
  std::size_t loaded = 0;
  std::size_t exported = 0;
};

class Answers {
 public:
  explicit Answers(std::string schema) : schema_(std::move(schema)) {
    test_support::WriteFile("defaults.xsd", SchemaWithDefaults());
  }

  const Counts& counts() const { return counts_; }

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
      if (is_loaded) ++counts_.loaded;
      return std::string(is_loaded ? "loaded\n" : "not loaded\n");
    });
    for (const auto& message : recorder.messages()) answer += message.text + "\n";
    if (!database.IsProjectDatabaseExist()) return answer;
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
      ++counts_.exported;
      return WithoutTimeStamp(test_support::ReadFile("out.xml"));
    });
  }

  std::string schema_;
  Counts counts_;
};

std::string AnswerToChance(Answers& answers, unsigned seed) {
  RandomInput input(seed);
  switch (seed % 4) {
    case 0:
      return answers.ToContents(RandomContents(input));
    case 1:
      return DoMuchToTrees(input);
    case 2:
      return answers.ToFile(RandomFile(input));
    default:
      return answers.ToFile(Damaged(RandomFile(input), input));
  }
}

std::vector<std::string> FilesIn(const std::string& directory) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
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
  const std::vector<std::string> files = FilesIn(arguments[1]);
  const std::size_t count = files.size() + std::stoul(arguments[2]);
  const auto answer_to = [&](std::size_t number) {
    return number < files.size()
               ? answers.ToFile(test_support::ReadFile(files[number]))
               : AnswerToChance(answers, static_cast<unsigned>(number - files.size()));
  };
  if (arguments.size() == 4) {
    std::cout << answer_to(std::stoul(arguments[3]));
    return 0;
  }
  for (std::size_t number = 0; number < count; ++number) {
    std::cout << number << ' ' << Digest(answer_to(number)) << '\n';
  }
  std::cout << count << " cases, " << answers.counts().loaded << " loads of whole files, "
            << answers.counts().exported << " exports\n";
  return answers.counts().loaded > count / 10 && answers.counts().exported > count / 10 ? 0 : 1;
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
