#include "command_files.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string_view>

#include <projectdb/vocabulary.h>

#include "console.h"
#include "places.h"
#include "verilog_numbers.h"

namespace kelproj {
namespace {

using projectdb::Parameter;
using projectdb::ProjectContents;
using projectdb::SortedParameters;

constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kLineBreaks = "\n\r";

bool HasOneOf(std::string_view text, std::string_view characters) {
  return text.find_first_of(characters) != std::string_view::npos;
}

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

void Require(bool can_be_written, const std::string& what, const char* format) {
  if (!can_be_written) throw Trouble(what + " cannot be written for " + format);
}

std::string InQuotes(const std::string& name) { return "\"" + name + "\""; }

// A name that does not begin as an option or a comment does.
std::string AsFile(const std::string& name) {
  return HasOneOf(name.substr(0, 1), "-+#~ \t") ? "./" + name : name;
}

const SortedParameters& SynthesisMap(const ProjectContents& project, const char* map) {
  static const SortedParameters none;
  const auto& maps = project.flow_processes.at(projectdb::e_synthesis).parameter_maps;
  const auto found = maps.find(map);
  return found == maps.end() ? none : found->second;
}

// "NAME=VALUE", or the name of one without value.
std::string Assignment(const Parameter& parameter) {
  return parameter.value.empty() ? parameter.name : parameter.name + "=" + parameter.value;
}

std::string What(const char* map, const Parameter& parameter) {
  const char* const process = projectdb::kFlowProcesses[projectdb::e_synthesis].name;
  return MemberPlace(MemberPlace(process, map), parameter.name) + ": " +
         InQuotes(Assignment(parameter));
}

bool IsAssignableName(const std::string& name) {
  return !name.empty() && !HasOneOf(name, "=+ \t\n\r");
}

bool IsTextInQuotes(const std::string& value) {
  return value.size() > 1 && value.front() == '"' && value.back() == '"';
}

bool IsLiteral(const std::string& value) { return IsVerilogNumber(value) || IsTextInQuotes(value); }

// A text that is given by its type stands without its quotes. Programs do not agree on escapes in
// texts.
Parameter WithLiteral(const Parameter& define, const char* format) {
  const bool is_text = define.type == projectdb::e_string || define.type == projectdb::e_option;
  Parameter literal = define;
  if (is_text && !IsLiteral(define.value)) literal.value = InQuotes(define.value);
  const bool has_escape =
      IsTextInQuotes(literal.value) &&
      HasOneOf(std::string_view(literal.value).substr(1, literal.value.size() - 2), "\"\\");
  Require(!has_escape, What(projectdb::kDefineMap, define), format);
  return literal;
}

constexpr char kOtherPrograms[] = "-f of simulators and linters";

bool IsPlain(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x80 || std::isalnum(byte) != 0 ||
         HasOneOf(std::string_view(&c, 1), "_./+=:,-%@'");
}

bool BeginsComment(std::string_view text) {
  return text.substr(0, 2) == "//" || text.substr(0, 2) == "/*";
}

// A comment begins between quotes too, so that its beginning is parted by a backslash.
std::string Word(const std::string& text) {
  if (std::all_of(text.begin(), text.end(), IsPlain) && !Contains(text, "//")) return text;
  std::string word = "\"";
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"' || text[i] == '\\') word += '\\';
    word += text[i];
    if (BeginsComment(std::string_view(text).substr(i))) word += '\\';
  }
  return word + "\"";
}

// In names of files, variables of the environment are replaced whatever the quotes.
bool NamesVariable(const std::string& name) {
  for (std::size_t at = name.find('$'); at != std::string::npos; at = name.find('$', at + 1)) {
    const std::string next = name.substr(at + 1, 1);
    if (HasOneOf(next, "_({")) return true;
    if (!next.empty() && std::isalnum(static_cast<unsigned char>(next[0])) != 0) return true;
  }
  return false;
}

std::string MacroWord(const Parameter& macro) {
  Require(IsAssignableName(macro.name) && !HasOneOf(macro.value, kLineBreaks),
          What(projectdb::kMacroMap, macro), kOtherPrograms);
  // A plus sign would begin another macro.
  const char* const option = Contains(macro.value, "+") ? "-D" : "+define+";
  return Word(option + Assignment(macro));
}

std::string DefineWord(const Parameter& define) {
  Require(IsAssignableName(define.name) && !define.value.empty() &&
              !HasOneOf(define.value, kLineBreaks),
          What(projectdb::kDefineMap, define), kOtherPrograms);
  return Word("-G" + Assignment(WithLiteral(define, kOtherPrograms)));
}

std::string FileWord(const std::string& name) {
  Require(!HasOneOf(name, kLineBreaks) && !NamesVariable(name), InQuotes(name), kOtherPrograms);
  return Word(AsFile(name));
}

constexpr char kIverilog[] = "iverilog";

// In every line, these are replaced by variables of the environment.
bool NamesIverilogVariable(std::string_view text) {
  return Contains(text, "$(") || Contains(text, "${");
}

bool IsIverilogAssignment(const Parameter& parameter) {
  return IsAssignableName(parameter.name) && !HasOneOf(parameter.value, "+ \t\n\r") &&
         !NamesIverilogVariable(parameter.value);
}

std::string IverilogMacroLine(const Parameter& macro) {
  Require(IsIverilogAssignment(macro), What(projectdb::kMacroMap, macro), kIverilog);
  return "+define+" + Assignment(macro);
}

// A parameter is one of a root module, by whose name it is found. Only a literal takes the place of
// its default, and only a number without underscores.
std::string IverilogDefineLine(const std::string& top_module, const Parameter& define) {
  const std::string what = What(projectdb::kDefineMap, define);
  Parameter literal = WithLiteral(define, kIverilog);
  std::string& value = literal.value;
  if (IsVerilogNumber(value)) value = WithoutUnderscores(value);
  Require(IsIverilogAssignment(literal) && IsLiteral(value), what, kIverilog);
  Require(!top_module.empty(), what + " of a project without top module", kIverilog);
  return "+parameter+" + top_module + "." + Assignment(literal);
}

// A line is a name, up to a comment or blanks at its end.
std::string IverilogFileLine(const std::string& name) {
  const bool is_readable = !HasOneOf(name, kLineBreaks) && !Contains(name, "//") &&
                           !NamesIverilogVariable(name) &&
                           !HasOneOf(name.substr(name.size() - 1), kBlanks);
  Require(is_readable, InQuotes(name), kIverilog);
  return AsFile(name);
}

constexpr char kMake[] = "make";

std::string EscapedForMake(const std::string& name) {
  // What ends in one of these is something else than a file, whatever stands before it.
  const bool ends_as_name = !HasOneOf(name.substr(name.size() - 1), "&)\\ \t");
  Require(!HasOneOf(name, ";=|\n\r") && ends_as_name, InQuotes(name), kMake);
  std::string escaped = name.front() == '~' ? "./" : "";
  std::size_t backslashes = 0;
  for (const char c : name) {
    if (c == '$') escaped += '$';
    // Backslashes count before a character that they could escape, and only there.
    if (HasOneOf(std::string_view(&c, 1), " \t#:*?[")) escaped.append(backslashes + 1, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    escaped += c;
  }
  return escaped;
}

// Only in a target a percent sign is a pattern.
std::string Target(const std::string& escaped) {
  std::string target;
  for (const char c : escaped) {
    if (c == '%') target += '\\';
    target += c;
  }
  return target;
}

}  // namespace

std::string CommandFile(const ProjectContents& project, const std::vector<std::string>& names) {
  std::string lines;
  for (const auto& [name, macro] : SynthesisMap(project, projectdb::kMacroMap)) {
    lines += MacroWord(macro) + "\n";
  }
  for (const auto& [name, define] : SynthesisMap(project, projectdb::kDefineMap)) {
    lines += DefineWord(define) + "\n";
  }
  for (const std::string& name : names) lines += FileWord(name) + "\n";
  return lines;
}

std::string IverilogCommandFile(const ProjectContents& project,
                                const std::vector<std::string>& names) {
  std::string lines;
  for (const auto& [name, macro] : SynthesisMap(project, projectdb::kMacroMap)) {
    lines += IverilogMacroLine(macro) + "\n";
  }
  for (const auto& [name, define] : SynthesisMap(project, projectdb::kDefineMap)) {
    lines += IverilogDefineLine(project.design_info.top_module, define) + "\n";
  }
  for (const std::string& name : names) lines += IverilogFileLine(name) + "\n";
  return lines;
}

std::string MakeRules(const std::string& target, const std::vector<std::string>& names) {
  std::string rule = Target(EscapedForMake(target)) + ":";
  std::string empty_rules;
  for (const std::string& name : names) {
    const std::string escaped = EscapedForMake(name);
    rule += " \\\n  " + escaped;
    empty_rules += "\n" + Target(escaped) + ":\n";
  }
  return rule + "\n" + empty_rules;
}

}  // namespace kelproj
