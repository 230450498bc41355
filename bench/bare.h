#pragma once

#include <array>
#include <string>
#include <vector>

/// What the XML library alone needs for a project file: the limit for what this library needs.
namespace bench::bare {

/// UTF-8 text in the XML library's form.
std::u16string Wide(const std::string& text);

struct File {
  std::u16string name;
  std::u16string version;
  std::u16string library;
};

struct Ip {
  std::u16string instance_name;
  std::u16string path;
  std::vector<std::u16string> source_files;
};

struct Parameter {
  std::u16string name;
  std::u16string value;
  std::u16string type;
};

/// A project whose texts are in the XML library's form already.
struct Project {
  std::vector<File> design_files;
  std::vector<File> test_benches;
  std::vector<Ip> ips;
  std::array<std::vector<Parameter>, 4> parameters;  ///< By ProcType.
};

/// Makes the parser that the library makes, parses the file and releases the document.
/// @param schema path of the schema; "" for none
/// @exception std::runtime_error if the file has an error
void Parse(const std::string& path, const std::string& schema);

/// Builds the tree that an export of the project builds, and writes it.
void Export(const Project& project, const std::string& path);

}  // namespace bench::bare
