#include "json_reading.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <projectdb/vocabulary.h>

#include "console.h"
#include "json.h"
#include "keys.h"

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

[[noreturn]] void RefuseKey(const std::string& path) { Refuse(path, "a project has no such key"); }

std::string Joined(const std::string& path, const std::string& name) {
  return path.empty() ? name : path + "." + name;
}

const std::string& TextIn(const Json& value, const std::string& path) {
  if (!value.is_string()) Refuse(path, "a text is needed");
  return value.get_ref<const std::string&>();
}

void RequireObject(const Json& value, const std::string& path) {
  if (!value.is_object()) Refuse(path, "an object is needed");
}

bool IsBeginOf(std::string_view key, std::string_view begin) {
  return key.size() > begin.size() && key.substr(0, begin.size()) == begin &&
         key[begin.size()] == '.';
}

/// Reads members of an object that no term of the record has; gives whether it has.
using OtherMembers =
    std::function<bool(const Json&, const std::string& path, const std::string& key)>;

/// Reads the members of objects into the fields of a record whose keys they are.
template <typename Terms, typename Record>
class RecordReader {
 public:
  RecordReader(const Terms& terms, Record& record, OtherMembers read_other)
      : terms_(terms), record_(record), read_other_(std::move(read_other)) {}

  /// @param path of the object in the document
  /// @param key of the object in the record, with which those of its members begin
  void Read(const Json& object, const std::string& path, const std::string& key = "") {
    RequireObject(object, path);
    for (const auto& [name, value] : object.items()) {
      ReadMember(value, Joined(path, name), Joined(key, name));
    }
  }

 private:
  void ReadMember(const Json& value, const std::string& path, const std::string& key);

  const Terms& terms_;
  Record& record_;
  OtherMembers read_other_;
};

bool HasNoOther(const Json& /*value*/, const std::string& /*path*/, const std::string& /*key*/) {
  return false;
}

template <typename Terms, typename Record>
void ReadRecord(const Json& object, const std::string& path, const Terms& terms, Record& record,
                const OtherMembers& read_other = HasNoOther) {
  RecordReader<Terms, Record>(terms, record, read_other).Read(object, path);
}

// An entry of a list must have its name and that of its file.
template <typename Terms, typename Record>
void ReadEntry(const Json& object, const std::string& path, const Terms& terms, Record& record) {
  ReadRecord(object, path, terms, record);
  for (const auto& term : terms) {
    const bool is_text = std::holds_alternative<Access<Record, std::string>>(term.access);
    const bool is_needed = &term == terms.begin() || (is_text && term.file_ending);
    const std::string key(term.key);
    if (is_needed && !object.contains(key)) Refuse(Joined(path, key), "it is missing");
  }
}

void ReadField(const Json& value, const std::string& path, std::string& text) {
  text = TextIn(value, path);
}

void ReadField(const Json& value, const std::string& path, projectdb::InfoAttributes& attributes) {
  RequireObject(value, path);
  attributes.clear();
  for (const auto& [name, text] : value.items()) {
    const std::string place = Joined(path, name);
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

void ReadField(const Json& value, const std::string& path, IPSrcFile& file) {
  file.name = TextIn(value, path);
}

template <typename Entry>
void ReadField(const Json& value, const std::string& path, std::vector<Entry>& list);

void ReadField(const Json& value, const std::string& path, DesignFile& file) {
  ReadEntry(value, path, projectdb::DesignFileTerms(), file);
}

void ReadField(const Json& value, const std::string& path, IP& ip) {
  ReadEntry(value, path, projectdb::IPTerms(), ip);
}

template <typename Entry>
void ReadField(const Json& value, const std::string& path, std::vector<Entry>& list) {
  if (!value.is_array()) Refuse(path, "a list is needed");
  list.clear();
  for (std::size_t i = 0; i < value.size(); ++i) {
    list.push_back(NewEntry(list));
    ReadField(value[i], path + "[" + std::to_string(i) + "]", list.back());
  }
}

// Neither is in any file under a key of its own.
void ReadField(const Json& /*value*/, const std::string& path, projectdb::ParameterMaps& /*maps*/) {
  RefuseKey(path);
}
void ReadField(const Json& /*value*/, const std::string& path,
               std::vector<Parameter>& /*parameters*/) {
  RefuseKey(path);
}

// The reader of the record knows what the format wants, which is no term's business.
bool IsOfDocument(TermKind kind) { return kind != TermKind::kMemory && kind != TermKind::kFormat; }

template <typename Terms, typename Record>
void RecordReader<Terms, Record>::ReadMember(const Json& value, const std::string& path,
                                             const std::string& key) {
  const auto* const term = std::find_if(terms_.begin(), terms_.end(), [&key](const auto& each) {
    return each.key == key && IsOfDocument(each.kind);
  });
  const auto is_begin = [&key](const auto& each) { return IsBeginOf(each.key, key); };
  if (term != terms_.end() && !key.empty()) {
    // What others decide may be in the document, as in that of a whole project.
    if (term->kind != TermKind::kValue) return static_cast<void>(TextIn(value, path));
    std::visit([&](const auto& access) { ReadField(value, path, access(record_)); }, term->access);
  } else if (std::any_of(terms_.begin(), terms_.end(), is_begin)) {
    Read(value, path, key);
  } else if (!read_other_(value, path, key)) {
    RefuseKey(path);
  }
}

projectdb::ParameterType TypeIn(const Json& value, const std::string& path) {
  const std::string& text = TextIn(value, path);
  const std::vector<std::string> names = ParameterTypeNames();
  const bool is_known = text.empty() || std::count(names.begin(), names.end(), text) > 0;
  if (!is_known) Refuse(path, "there is no type \"" + text + "\"");
  return ParameterTypeFromName(text);
}

// A parameter whose type is not given keeps the one that it has.
Parameter ParameterIn(const Json& object, const std::string& path, Parameter parameter) {
  RequireObject(object, path);
  if (!object.contains("value")) Refuse(Joined(path, "value"), "it is missing");
  for (const auto& [key, value] : object.items()) {
    const std::string place = Joined(path, key);
    if (key == "value") {
      parameter.value = TextIn(value, place);
    } else if (key == "type") {
      parameter.type = TypeIn(value, place);
    } else {
      RefuseKey(place);
    }
  }
  if (const auto reason = WhyRefused(parameter)) Refuse(path, *reason);
  return parameter;
}

void ReadMap(const Json& object, const std::string& path, const std::string& map,
             projectdb::SortedParameters& parameters) {
  RequireObject(object, path);
  projectdb::SortedParameters read;
  for (const auto& [name, value] : object.items()) {
    const auto former = parameters.find(name);
    const Parameter stored =
        former == parameters.end() ? Parameter(name, "", TypeOfNewParameter(map)) : former->second;
    read.emplace(name, ParameterIn(value, Joined(path, name), stored));
  }
  parameters = std::move(read);
}

bool IsNameOfProcess(const std::string& key) {
  const auto terms = projectdb::FlowProcessTerms();
  return std::any_of(terms.begin(), terms.end(), [&key](const projectdb::FlowProcessTerm& term) {
    return term.kind == TermKind::kFormat && term.key == key;
  });
}

// A process that no file has told of yet has the empty name.
void RequireNameOfProcess(const Json& value, const std::string& path, const FlowProcessName& name) {
  const std::string& text = TextIn(value, path);
  if (text.empty() || text == name.name) return;
  Refuse(path, std::string("it is always \"") + name.name + "\"");
}

void ReadProcess(const Json& object, const std::string& path, const FlowProcessName& name,
                 FlowProcessContents& process) {
  const auto read_other = [&](const Json& value, const std::string& place, const std::string& key) {
    if (IsNameOfProcess(key)) {
      RequireNameOfProcess(value, place, name);
      return true;
    }
    for (const projectdb::ParameterMapName& map : projectdb::MapsOf(name.type)) {
      if (key != map.name) continue;
      ReadMap(value, place, key, process.parameter_maps[key]);
      return true;
    }
    return false;
  };
  ReadRecord(object, path, projectdb::FlowProcessTerms(), process, read_other);
}

Json Parsed(const std::string& text) {
  try {
    return Json::parse(text);
  } catch (const Json::parse_error& error) {
    throw Trouble("the document is no JSON: byte " + std::to_string(error.byte));
  }
}

}  // namespace

void ApplyJson(const std::string& text, ProjectContents& project) {
  const auto read_process = [&](const Json& value, const std::string& path,
                                const std::string& key) {
    for (const FlowProcessName& process : projectdb::kFlowProcesses) {
      if (key != process.name) continue;
      ReadProcess(value, path, process,
                  project.flow_processes.at(static_cast<std::size_t>(process.type)));
      return true;
    }
    return false;
  };
  ReadRecord(Parsed(text), "", projectdb::ProjectTerms(), project, read_process);
}

}  // namespace kelproj
