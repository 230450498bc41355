#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>

#include <projectdb/check.h>

#include "testing/files.h"
#include "testing/shipped_files.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"

namespace {

using namespace test_support;

/// A piece of code in a document, between two lines of three backticks.
struct CodeBlock {
  std::string document;
  int line;
  std::string language;
  std::string text;
};

void PrintTo(const CodeBlock& block, std::ostream* stream) {
  *stream << block.document << ":" << block.line;
}

const std::string kFence = "```";

std::vector<std::string> Documents() {
  std::vector<std::string> documents = {"README.md", "CHANGELOG.md", "CONTRIBUTING.md",
                                        "SECURITY.md"};
  for (const auto& entry : std::filesystem::directory_iterator(SourcePath("docs"))) {
    if (entry.path().extension() == ".md") {
      documents.push_back("docs/" + entry.path().filename().string());
    }
  }
  std::sort(documents.begin(), documents.end());
  return documents;
}

std::vector<CodeBlock> BlocksOf(const std::string& document) {
  std::ifstream file(SourcePath(document));
  std::vector<CodeBlock> blocks;
  bool inside = false;
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    if (line.compare(0, kFence.size(), kFence) == 0) {
      inside = !inside;
      if (inside) blocks.push_back({document, number, line.substr(kFence.size()), ""});
    } else if (inside) {
      blocks.back().text += line + "\n";
    }
  }
  return blocks;
}

std::vector<CodeBlock> BlocksIn(const std::vector<std::string>& languages) {
  std::vector<CodeBlock> found;
  for (const std::string& document : Documents()) {
    for (const CodeBlock& block : BlocksOf(document)) {
      if (std::count(languages.begin(), languages.end(), block.language) != 0) {
        found.push_back(block);
      }
    }
  }
  return found;
}

/// The programs that are built with the tests, and what of them stands between two marks of the
/// form "// [name]".
std::vector<std::string> BuiltCode() {
  std::vector<std::string> code;
  for (const auto& entry : std::filesystem::directory_iterator(SourcePath("examples"))) {
    if (entry.path().extension() != ".cpp") continue;
    code.push_back(ReadFile(entry.path()));
    std::istringstream lines(code.back());
    bool inside = false;
    for (std::string line; std::getline(lines, line);) {
      if (line.find("// [") != std::string::npos) {
        inside = !inside;
        if (inside) code.emplace_back();
      } else if (inside) {
        code.back() += line + "\n";
      }
    }
  }
  return code;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    line = line.substr(0, line.find("  #"));
    line.erase(line.find_last_not_of(' ') + 1);
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

/// Those lines that do not stand in the file, as they are.
std::vector<std::string> LinesMissingIn(const std::string& file, const std::string& text) {
  const std::vector<std::string> known = Lines(ReadFile(SourcePath(file)));
  std::vector<std::string> missing;
  for (const std::string& line : Lines(text)) {
    if (std::count(known.begin(), known.end(), line) == 0) missing.push_back(line);
  }
  return missing;
}

std::vector<std::string> DocumentsWith(const std::string& language) {
  std::vector<std::string> documents;
  for (const CodeBlock& block : BlocksIn({language})) {
    if (documents.empty() || documents.back() != block.document)
      documents.push_back(block.document);
  }
  return documents;
}

/// A name to commit with and a configuration of git of its own, beside the built program.
const std::string kEnvironment =
    "PATH='" KELPROJ_DIRECTORY
    "':$PATH && "
    "export HOME=$PWD GIT_CONFIG_NOSYSTEM=1 GIT_AUTHOR_NAME=Zoe GIT_AUTHOR_EMAIL=zoe@kel.example "
    "GIT_COMMITTER_NAME=Zoe GIT_COMMITTER_EMAIL=zoe@kel.example";

/// Who types one command after the other stands where the next one is meant.
const std::string kStaysThere = "[ \"$PWD\" = \"$HOME\" ] || echo 'It leaves the directory.'";

/// All that a command prints, in order.
std::string OutputOf(const std::string& command, const std::filesystem::path& directory) {
  const std::string script = "cd '" + directory.string() + "' && " + kEnvironment + " && { " +
                             command + "\n} 2>&1\n" + kStaysThere;
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(script.c_str(), "r"), pclose);
  std::string output;
  for (int byte = 0; pipe && (byte = std::fgetc(pipe.get())) != EOF;) {
    output += static_cast<char>(byte);
  }
  return output;
}

/// The commands of a text, which begin with "$ ", each with what it prints.
std::string RunCommands(const std::string& text, const std::filesystem::path& directory) {
  std::string printed;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (line.compare(0, 2, "$ ") != 0) continue;
    printed += line + "\n" + OutputOf(line.substr(2), directory);
  }
  return printed;
}

/// What a document names between single backticks and by its form is a file or directory.
std::vector<std::string> NamedPaths(const std::string& document) {
  const std::string text = ReadFile(SourcePath(document));
  const std::regex path("`([a-z_./-]*(/|\\.(h|cpp|xsd|md))[a-z_./-]*)`");
  std::vector<std::string> names;
  for (std::sregex_iterator match(text.begin(), text.end(), path), end; match != end; ++match) {
    names.push_back((*match)[1]);
  }
  return names;
}

/// All files and directories that are no product of a build, directories with a slash at the end.
std::vector<std::string> SourceTree() {
  std::vector<std::string> paths;
  for (const char* const top : {"bench", "common", "docs", "fuzz", "projectdb", "schema", "scripts",
                                "testing", "tests", "tools"}) {
    paths.push_back(std::string("/") + top + "/");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SourcePath(top))) {
      paths.push_back(entry.path().string() + (entry.is_directory() ? "/" : ""));
    }
  }
  return paths;
}

TEST(Documents, EveryCodeBlock_IsTestedOrPlainText) {
  for (const std::string& document : Documents()) {
    for (const CodeBlock& block : BlocksOf(document)) {
      EXPECT_THAT(block.language, AnyOf("cpp", "xml", "cmake", "sh", "console", "text"))
          << document << ":" << block.line;
    }
  }
}

TEST(Documents, Architecture_EveryPathThatItNames_IsThere) {
  const std::vector<std::string> tree = SourceTree();
  for (const std::string& name : NamedPaths("docs/architecture.md")) {
    EXPECT_THAT(tree, Contains(EndsWith("/" + name)));
  }
}

TEST(Documents, Architecture_EveryRoomOfTheLibrary_IsInIt) {
  const std::vector<std::string> names = NamedPaths("docs/architecture.md");
  for (const auto& entry : std::filesystem::directory_iterator(SourcePath("projectdb/src"))) {
    const std::string name = entry.path().filename().string();
    EXPECT_THAT(names, Contains(entry.is_directory() ? name + "/" : name));
  }
}

class CppBlocks : public testing::TestWithParam<CodeBlock> {};

TEST_P(CppBlocks, IsBuiltWithTheTests) { EXPECT_THAT(BuiltCode(), Contains(GetParam().text)); }

INSTANTIATE_TEST_SUITE_P(Documents, CppBlocks, testing::ValuesIn(BlocksIn({"cpp"})));

class XmlBlocks : public testing::TestWithParam<CodeBlock> {};

TEST_P(XmlBlocks, IsAProjectFileWithoutProblems) {
  const TemporaryDirectory directory;
  const std::string path = directory.path() / "example.xml";
  WriteFile(path, GetParam().text);
  EXPECT_THAT(projectdb::CheckProjectFile(path, ShippedSchema()), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Documents, XmlBlocks, testing::ValuesIn(BlocksIn({"xml"})));

class ConsoleDocuments : public testing::TestWithParam<std::string> {};

// The commands of a document follow upon each other in one directory.
TEST_P(ConsoleDocuments, ShowsWhatTheCommandsPrint) {
  const TemporaryDirectory directory;
  std::string shown;
  std::string printed;
  for (const CodeBlock& block : BlocksOf(GetParam())) {
    if (block.language != "console") continue;
    shown += block.text;
    printed += RunCommands(block.text, directory.path());
  }
  EXPECT_EQ(printed, shown);
}

INSTANTIATE_TEST_SUITE_P(Documents, ConsoleDocuments, testing::ValuesIn(DocumentsWith("console")));

class ShellBlocks : public testing::TestWithParam<CodeBlock> {};

TEST_P(ShellBlocks, IsRunForEveryChange) {
  EXPECT_THAT(LinesMissingIn(".ci/run", GetParam().text), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Documents, ShellBlocks, testing::ValuesIn(BlocksIn({"sh"})));

}  // namespace
