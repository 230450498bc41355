#include "json_reading.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include <projectdb/vocabulary.h>

#include "console.h"
#include "json_parsing.h"
#include "keys.h"
#include "places.h"
#include "suggestions.h"

namespace kelproj {
namespace {

using projectdb::Access;
using projectdb::DesignFile;
using projectdb::FlowProcessContents;
using projectdb::FlowProcessName;
using projectdb::IP;
using projectdb::IPSrcFile;
using projectdb::Parameter;
using projectdb::ProjectContents;
using projectdb::TermKind;

[[noreturn]] void Refuse(const std::string& path, const std::string& reason) {
  throw Trouble((path.empty() ? "the document" : path) + ": " + reason);
}

using Names = std::vector<std::string>;

/// @param known keys at the same place
[[noreturn]] void RefuseKey(const std::string& path, const Names& known = {}) {
  Refuse(path, "a project has no such key" + DidYouMean(path, known));
}

const std::string& TextIn(const ParsedJson& value, const std::string& path) {
  if (!value.is_string()) Refuse(path, "a text is needed");
  return value.get_ref<const std::string&>();
}

void RequireObject(const ParsedJson& value, const std::string& path) {
  if (!value.is_object()) Refuse(path, "an object is needed");
}

// The reader of the record knows what the format wants, which is no term's business.
bool IsOfDocument(TermKind kind) { return kind != TermKind::kMemory && kind != TermKind::kFormat; }

bool IsBeginOf(std::string_view key, std::string_view begin) {
  return key.size() > begin.size() && key.substr(0, begin.size()) == begin &&
         key[begin.size()] == '.';
}

// The part of a key behind another one with which it begins; "" if it does not.
std::string PartBehind(std::string_view begin, std::string_view key) {
  if (!begin.empty() && !IsBeginOf(key, begin)) return "";
  const std::string_view rest = key.substr(begin.empty() ? 0 : begin.size() + 1);
  return std::string(rest.substr(0, rest.find('.')));
}

/// What reads the members of a record's object that no term of the record has, by their names.
using OtherMembers =
    std::map<std::string, std::function<void(const ParsedJson&, const std::string& path)>>;

/// Reads the members of objects into the fields of a record whose keys they are.
template <typename Terms, typename Record>
class RecordReader {
 public:
  RecordReader(const Terms& terms, Record& record, const OtherMembers& others)
      : terms_(terms), record_(record), others_(others) {}

  /// @param path of the object in the document
  /// @param key of the object in the record, with which those of its members begin
  void Read(const ParsedJson& object, const std::string& path, const std::string& key = "") {
    RequireObject(object, path);
    for (const auto& [name, value] : object.items()) {
      const std::string place = MemberPlace(path, name);
      if (name.find('.') != std::string::npos) Refuse(place, "a part of a key has no dot");
      const bool is_read = ReadMember(value, place, MemberPlace(key, name));
      if (!is_read) RefuseKey(place, MembersOf(path, key));
    }
  }

 private:
  // Gives whether the object may have the member.
  bool ReadMember(const ParsedJson& value, const std::string& path, const std::string& key);

  // All that the object may have, as places.
  Names MembersOf(const std::string& path, const std::string& key) const {
    Names members;
    for (const auto& term : terms_) {
      const std::string part = PartBehind(key, term.key);
      if (IsOfDocument(term.kind) && !part.empty()) members.push_back(MemberPlace(path, part));
    }
    if (!key.empty()) return members;
    for (const auto& other : others_) members.push_back(MemberPlace(path, other.first));
    return members;
  }

  const Terms& terms_;
  Record& record_;
  const OtherMembers& others_;
};

template <typename Terms, typename Record>
void ReadRecord(const ParsedJson& object, const std::string& path, const Terms& terms,
                Record& record, const OtherMembers& others = {}) {
  RecordReader<Terms, Record>(terms, record, others).Read(object, path);
}

// An entry of a list must have its name and that of its file.
template <typename Terms, typename Record>
void ReadEntry(const ParsedJson& object, const std::string& path, const Terms& terms,
               Record& record) {
  ReadRecord(object, path, terms, record);
  for (const auto& term : terms) {
    const bool is_text = std::holds_alternative<Access<Record, std::string>>(term.access);
    const bool is_needed = &term == terms.begin() || (is_text && term.file_ending);
    const std::string key(term.key);
    if (is_needed && !object.contains(key)) Refuse(MemberPlace(path, key), "it is missing");
  }
}

void ReadField(const ParsedJson& value, const std::string& path, std::string& text) {
  text = TextIn(value, path);
}

void ReadField(const ParsedJson& value, const std::string& path,
               projectdb::InfoAttributes& attributes) {
  RequireObject(value, path);
  attributes.clear();
  for (const auto& [name, text] : value.items()) {
    const std::string place = MemberPlace(path, name);
    if (!projectdb::IsInfoAttributeName(name)) Refuse(place, "a project does not keep it");
    attributes[name] = TextIn(text, place);
  }
}

std::string NewEntry(const std::vector<std::string>& /*list*/) { return {}; }
IP NewEntry(const std::vector<IP>& /*list*/) { return {}; }
IPSrcFile NewEntry(const std::vector<IPSrcFile>& /*list*/) { return {}; }
DesignFile NewEntry(const std::vector<DesignFile>& /*list*/) {
  return {"", "", projectdb::kDefaultLibrary};
}

void ReadField(const ParsedJson& value, const std::string& path, IPSrcFile& file) {
  file.name = TextIn(value, path);
}

template <typename Entry>
void ReadField(const ParsedJson& value, const std::string& path, std::vector<Entry>& list);

void ReadField(const ParsedJson& value, const std::string& path, DesignFile& file) {
  ReadEntry(value, path, projectdb::DesignFileTerms(), file);
}

void ReadField(const ParsedJson& value, const std::string& path, IP& ip) {
  ReadEntry(value, path, projectdb::IPTerms(), ip);
}

// A load passes over an entry without a name if a name is all that it has.
template <typename Entry>
void RequireKept(const Entry& entry, const std::string& path) {
  if constexpr (std::is_same_v<Entry, std::string>) {
    if (entry.empty()) Refuse(path, "a project does not keep a file without a name");
  }
}

template <typename Entry>
void ReadField(const ParsedJson& value, const std::string& path, std::vector<Entry>& list) {
  if (!value.is_array()) Refuse(path, "a list is needed");
  list.clear();
  for (std::size_t i = 0; i < value.size(); ++i) {
    const std::string place = PlaceText(path, std::to_string(i));
    list.push_back(NewEntry(list));
    ReadField(value[i], place, list.back());
    RequireKept(list.back(), place);
  }
}

// Neither is in any file under a key of its own.
void ReadField(const ParsedJson& /*value*/, const std::string& path,
               projectdb::ParameterMaps& /*maps*/) {
  RefuseKey(path);
}
void ReadField(const ParsedJson& /*value*/, const std::string& path,
               std::vector<Parameter>& /*parameters*/) {
  RefuseKey(path);
}

template <typename Terms, typename Record>
bool RecordReader<Terms, Record>::ReadMember(const ParsedJson& value, const std::string& path,
                                             const std::string& key) {
  const auto* const term = std::find_if(terms_.begin(), terms_.end(), [&key](const auto& each) {
    return each.key == key && IsOfDocument(each.kind) && !key.empty();
  });
  const auto is_begin = [&key](const auto& each) { return IsBeginOf(each.key, key); };
  const auto other = others_.find(key);
  if (term != terms_.end() && term->kind == TermKind::kValue) {
    std::visit([&](const auto& access) { ReadField(value, path, access(record_)); }, term->access);
  } else if (term != terms_.end()) {
    // What others decide may be in the document, as in that of a whole project.
    TextIn(value, path);
  } else if (std::any_of(terms_.begin(), terms_.end(), is_begin)) {
    Read(value, path, key);
  } else if (other != others_.end()) {
    other->second(value, path);
  } else {
    return false;
  }
  return true;
}

projectdb::ParameterType TypeIn(const ParsedJson& value, const std::string& path) {
  const std::string& text = TextIn(value, path);
  const std::vector<std::string> names = ParameterTypeNames();
  const bool is_known = text.empty() || std::count(names.begin(), names.end(), text) > 0;
  if (!is_known) Refuse(path, "there is no type \"" + text + "\"" + DidYouMean(text, names));
  return ParameterTypeFromName(text);
}

// A parameter whose type is not given keeps the one that it has.
Parameter ParameterIn(const ParsedJson& object, const std::string& path, Parameter parameter) {
  RequireObject(object, path);
  if (!object.contains("value")) Refuse(MemberPlace(path, "value"), "it is missing");
  for (const auto& [key, value] : object.items()) {
    const std::string place = MemberPlace(path, key);
    if (key == "value") {
      parameter.value = TextIn(value, place);
    } else if (key == "type") {
      parameter.type = TypeIn(value, place);
    } else {
      RefuseKey(place, {MemberPlace(path, "value"), MemberPlace(path, "type")});
    }
  }
  if (const auto reason = WhyRefused(parameter)) Refuse(path, *reason);
  return parameter;
}

void ReadMap(const ParsedJson& object, const std::string& path, const std::string& map,
             projectdb::SortedParameters& parameters) {
  RequireObject(object, path);
  projectdb::SortedParameters read;
  for (const auto& [name, value] : object.items()) {
    const auto former = parameters.find(name);
    const Parameter stored =
        former == parameters.end() ? Parameter(name, "", TypeOfNewParameter(map)) : former->second;
    read.emplace(name, ParameterIn(value, MemberPlace(path, name), stored));
  }
  parameters = std::move(read);
}

// A process that no file has told of yet has the empty name.
void RequireNameOfProcess(const ParsedJson& value, const std::string& path,
                          const FlowProcessName& name) {
  const std::string& text = TextIn(value, path);
  if (text.empty() || text == name.name) return;
  Refuse(path, std::string("it is always \"") + name.name + "\"");
}

void ReadProcess(const ParsedJson& object, const std::string& path, const FlowProcessName& name,
                 FlowProcessContents& process) {
  OtherMembers others;
  for (const projectdb::FlowProcessTerm& term : projectdb::FlowProcessTerms()) {
    if (term.kind != TermKind::kFormat) continue;
    others[std::string(term.key)] = [&name](const ParsedJson& value, const std::string& place) {
      RequireNameOfProcess(value, place, name);
    };
  }
  for (const projectdb::ParameterMapName& map : projectdb::MapsOf(name.type)) {
    others[map.name] = [&map, &process](const ParsedJson& value, const std::string& place) {
      ReadMap(value, place, map.name, process.parameter_maps[map.name]);
    };
  }
  ReadRecord(object, path, projectdb::FlowProcessTerms(), process, others);
}

}  // namespace

void ApplyJson(const std::string& text, ProjectContents& project) {
  OtherMembers processes;
  for (const FlowProcessName& process : projectdb::kFlowProcesses) {
    processes[process.name] = [&process, &project](const ParsedJson& value,
                                                   const std::string& path) {
      ReadProcess(value, path, process,
                  project.flow_processes.at(static_cast<std::size_t>(process.type)));
    };
  }
  ReadRecord(ParseJson(text), "", projectdb::ProjectTerms(), project, processes);
}

}  // namespace kelproj
