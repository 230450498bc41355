#pragma once

#include <array>
#include <string>
#include <vector>

/// What the XML library alone needs for a project file: the limit for what this library needs.
namespace bench::bare {

/// UTF-8 text in the XML library's form.
std::u16string Wide(const std::string& text);

/// A project whose texts are in the XML library's form already, or in UTF-8 as in the library.
/// @tparam Text std::u16string or std::string
template <typename Text>
struct Project {
  struct File {
    Text name;
    Text version;
    Text library;
  };

  struct Ip {
    Text instance_name;
    Text path;
    std::vector<Text> source_files;
  };

  struct Parameter {
    Text name;
    Text value;
    Text type;
  };

  std::vector<File> design_files;
  std::vector<File> test_benches;
  std::vector<Ip> ips;
  std::array<std::vector<Parameter>, 4> parameters;  ///< By ProcType.
};

using WideProject = Project<std::u16string>;
using Utf8Project = Project<std::string>;

/// What becomes of the text between the tags, which is blank in a project file.
enum class TextBetweenTags { kKept, kLeftOut };

/// Makes a parser with the library's settings, parses the file and releases the document.
/// @param schema path of the schema; "" for none
/// @exception std::runtime_error if the file has an error
void Parse(const std::string& path, const std::string& schema,
           TextBetweenTags text = TextBetweenTags::kKept);

/// Builds the tree that an export of the project builds, and writes it.
void Export(const WideProject& project, const std::string& path);
void Export(const Utf8Project& project, const std::string& path);

}  // namespace bench::bare
