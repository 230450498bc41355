#include "json.h"

#include <string_view>
#include <variant>

#include <projectdb/vocabulary.h>

#include "problems.h"
#include "shown_terms.h"

namespace kelproj {
namespace {

using projectdb::DesignFile;
using projectdb::IP;
using projectdb::IPSrcFile;
using projectdb::TermKind;

template <typename Terms, typename Record>
Json RecordToJson(const Terms& terms, const Record& record);

Json FieldToJson(const std::string& text) { return text; }
Json FieldToJson(const projectdb::InfoAttributes& attributes) { return attributes; }
Json FieldToJson(const std::vector<std::string>& names) { return names; }
Json FieldToJson(const IPSrcFile& file) { return file.name; }
Json FieldToJson(const DesignFile& file) {
  return RecordToJson(projectdb::DesignFileTerms(), file);
}
Json FieldToJson(const IP& ip) { return RecordToJson(projectdb::IPTerms(), ip); }

Json FieldToJson(const projectdb::Parameter& parameter) {
  return {{"value", parameter.value}, {"type", projectdb::TextOf(parameter.type)}};
}

Json FieldToJson(const projectdb::ParameterMaps& maps) {
  Json object = Json::object();
  for (const auto& [map, parameters] : maps) {
    object[map] = Json::object();
    for (const auto& [name, parameter] : parameters) object[map][name] = FieldToJson(parameter);
  }
  return object;
}

template <typename Entry>
Json FieldToJson(const std::vector<Entry>& entries) {
  Json list = Json::array();
  for (const Entry& entry : entries) list.push_back(FieldToJson(entry));
  return list;
}

// Puts a field where its key says; one without a key puts its members into the record itself.
void Put(Json& record, std::string_view key, const Json& field) {
  if (key.empty()) {
    record.update(field);
  } else if (const auto dot = key.find('.'); dot == std::string_view::npos) {
    record[std::string(key)] = field;
  } else {
    Put(record[std::string(key.substr(0, dot))], key.substr(dot + 1), field);
  }
}

template <typename Terms, typename Record>
Json RecordToJson(const Terms& terms, const Record& record) {
  Json object = Json::object();
  for (const auto& term : terms) {
    if (term.kind == TermKind::kMemory) continue;
    std::visit([&](const auto& access) { Put(object, term.key, FieldToJson(access(record))); },
               term.access);
  }
  return object;
}

}  // namespace

Json ToJson(const projectdb::ProjectContents& project) {
  Json object = RecordToJson(ShownTerms(), project);
  for (const auto& [type, name, title] : projectdb::kFlowProcesses) {
    Json& process = object[name];
    process = RecordToJson(projectdb::FlowProcessTerms(),
                           project.flow_processes.at(static_cast<std::size_t>(type)));
    // A map without parameters is there too, which tells that it has none.
    for (const projectdb::ParameterMapName& map : projectdb::MapsOf(type)) {
      process.emplace(map.name, Json::object());
    }
  }
  return object;
}

Json ToJson(const std::vector<projectdb::ProjectDifference>& differences) {
  Json list = Json::array();
  for (const projectdb::ProjectDifference& difference : differences) {
    Json object = {{"what", difference.what}, {"where", difference.where}};
    if (difference.before) object["before"] = *difference.before;
    if (difference.after) object["after"] = *difference.after;
    list.push_back(object);
  }
  return list;
}

Json ToJson(const std::vector<projectdb::MergeConflict>& conflicts) {
  Json list = Json::array();
  for (const projectdb::MergeConflict& conflict : conflicts) {
    Json object = {{"what", conflict.what}, {"where", conflict.where}};
    if (conflict.base) object["base"] = *conflict.base;
    if (conflict.ours) object["ours"] = *conflict.ours;
    if (conflict.theirs) object["theirs"] = *conflict.theirs;
    list.push_back(object);
  }
  return list;
}

Json ToJson(const std::vector<projectdb::FileProblem>& problems) {
  Json list = Json::array();
  for (const projectdb::FileProblem& problem : problems) {
    Json object = Json::object();
    if (problem.line > 0) object["line"] = problem.line;
    if (problem.column > 0) object["column"] = problem.column;
    object["severity"] = SeverityName(problem.severity);
    object["message"] = problem.message;
    list.push_back(object);
  }
  return list;
}

void WriteJson(std::ostream& out, const Json& value) {
  out << value.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace kelproj
