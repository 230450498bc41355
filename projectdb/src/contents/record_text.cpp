#include "contents/record_text.h"

#include <algorithm>
#include <variant>

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

std::string FieldsOf(std::string_view key, const std::string& text) {
  return FieldUnlessEmpty(key, text);
}

std::string FieldsOf(std::string_view /*key*/, const std::vector<IPSrcFile>& files) {
  std::string fields;
  for (const IPSrcFile& file : files) fields += Field("file", file.name);
  return fields;
}

// The name stands without its key.
template <typename Terms, typename Record>
std::string RecordText(const Terms& terms, const Record& record) {
  std::string text = Word(NameOf(record));
  for (const auto* term = terms.begin() + 1; term != terms.end(); ++term) {
    std::visit([&](const auto& access) { text += FieldsOf(term->key, access(record)); },
               term->access);
  }
  return text;
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

std::string TextOf(const DesignFile& file) { return RecordText(DesignFileTerms(), file); }

std::string TextOf(const IP& ip) { return RecordText(IPTerms(), ip); }

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
