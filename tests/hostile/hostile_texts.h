#pragma once

#include <cstddef>
#include <ostream>
#include <string>

/// Project files that can be made of any size.
namespace hostile {

/// A kind of such files.
struct Text {
  std::string before;  ///< What stands behind the name of the root.
  std::string each;    ///< What is repeated, with "#" for its number.
  std::string after;
  std::string middle{};      ///< Behind all that is repeated, with "#" for the size.
  std::string each_after{};  ///< What is repeated behind that.

  void Write(std::ostream& file, std::size_t size) const {
    file << "<project xmlns=\"http://schema.kel.example/wdp_proj\"" << before;
    for (std::size_t i = 0; i < size; ++i) WriteNumbered(file, each, i);
    WriteNumbered(file, middle, size);
    for (std::size_t i = 0; i < size; ++i) file << each_after;
    file << after << "</project>\n";
  }

 private:
  static void WriteNumbered(std::ostream& file, const std::string& text, std::size_t number) {
    const std::size_t place = text.find('#');
    file << text.substr(0, place);
    if (place != std::string::npos) file << number << text.substr(place + 1);
  }
};

inline const Text kDesignFiles = {"><design_info>",
                                  R"(<design_file name="rtl/f#.v" version="v2k" library="work"/>)",
                                  "</design_info>"};
inline const Text kIps = {"><ip_info>", R"(<ip instance_name="u#" path="ip/u.ip"/>)", "</ip_info>"};
inline const Text kParameters = {
    "><synthesis>", R"(<param name="p#" value="v" value_type="e_string"/>)", "</synthesis>"};
inline const Text kUnknownSections = {">", "<unknown/>", ""};
inline const Text kNestedElements = {"><sim_info>", "<a>", "</sim_info>", "<sim_file name=\"#\"/>",
                                     "</a>"};
inline const Text kLongAttribute = {" name=\"", std::string(1000, 'x'), "\">"};
inline const Text kRootAttributes = {"", " a#=\"v\"", ">"};

}  // namespace hostile
