#include "contents/record_text.h"

#include <algorithm>

#include <projectdb/vocabulary.h>

#include "base/control_characters.h"

namespace projectdb {
namespace {

std::string Escaped(char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(c);
  if (c == '"' || c == '\\') return {'\\', c};
  if (c == '\n') return "\\n";
  if (c == '\r') return "\\r";
  if (c == '\t') return "\\t";
  if (!IsControl(c)) return {c};
  return {'\\', 'x', kDigits[byte >> 4U], kDigits[byte & 0xFU]};
}

bool IsOneWord(std::string_view text) {
  return !text.empty() && std::none_of(text.begin(), text.end(),
                                       [](char c) { return c == ' ' || c == '"' || IsControl(c); });
}

std::string Word(std::string_view text) {
  return IsOneWord(text) ? std::string(text) : QuotedText(text);
}

std::string Field(std::string_view name, std::string_view text) {
  std::string field = " ";
  return field.append(name).append("=").append(Word(text));
}

std::string FieldUnlessEmpty(std::string_view name, std::string_view text) {
  return text.empty() ? std::string() : Field(name, text);
}

std::string TypeField(ParameterType type) {
  const std::string text = TextOf(type);
  const bool is_number = text.empty() && type != kNoParameterType;
  return FieldUnlessEmpty("type", is_number ? std::to_string(type) : text);
}

}  // namespace

std::string QuotedText(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) quoted += Escaped(c);
  return quoted + '"';
}

std::string TextOf(const DesignFile& file) {
  return Word(file.name) + FieldUnlessEmpty("version", file.version) +
         FieldUnlessEmpty("library", file.library);
}

std::string TextOf(const IP& ip) {
  std::string text = Word(ip.instance_name) + FieldUnlessEmpty("path", ip.path);
  for (const IPSrcFile& file : ip.src_files) text += Field("file", file.name);
  return text;
}

std::string TextOf(const Parameter& parameter) {
  return Word(parameter.name) + FieldUnlessEmpty("value", parameter.value) +
         TypeField(parameter.type);
}

std::string TextUnderKey(const std::string& key, const Parameter& parameter) {
  const std::string text = Word(parameter.value) + TypeField(parameter.type);
  return parameter.name == key ? text : text + Field("name", parameter.name);
}

std::string MapKey(const std::string& name) {
  return name.empty() || name.find_first_of(".\"") != std::string::npos ? QuotedText(name) : name;
}

}  // namespace projectdb
