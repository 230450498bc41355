#include <projectdb/check.h>

#include <algorithm>
#include <stdexcept>
#include <tuple>
#include <utility>

#include <fmt/format.h>
#include <projectdb/project_db.h>
#include <projectdb/vocabulary.h>

#include "base/control_characters.h"
#include "check/located_parse.h"
#include "project_db/format.h"
#include "project_db/input_files.h"
#include "project_db/load_observer.h"
#include "xml/dom.h"
#include "xml/errors.h"
#include "xml/platform.h"

namespace projectdb {
namespace {

using xercesc::DOMElement;

// As it stands in the file, but without prefix.
std::string Tag(const DOMElement& element) {
  return fmt::format("<{}>", xml::TranscodeXMLString(element.getLocalName()));
}

std::string ParentTag(const DOMElement& element) {
  return Tag(static_cast<const DOMElement&>(*element.getParentNode()));
}

// "a, b or c".
std::string Alternatives(const std::vector<std::string>& texts) {
  const auto last = texts.end() - 1;
  const std::string others = fmt::format("{}", fmt::join(texts.begin(), last, ", "));
  return others.empty() ? *last : fmt::format("{} or {}", others, *last);
}

std::string Tags(const Names& names) {
  std::vector<std::string> tags;
  for (const std::string_view name : names) tags.push_back(fmt::format("<{}>", name));
  return Alternatives(tags);
}

Names SectionNames() {
  Names names;
  for (const Name& name : format::kSections) names.emplace_back(name.narrow);
  for (const FlowProcessName& process : kFlowProcesses) names.emplace_back(process.name);
  return names;
}

std::string TypeTexts() {
  return Alternatives({kParameterTypeTexts.begin(), kParameterTypeTexts.end()});
}

std::string TypeOf(const Parameter& parameter) {
  const std::string text = KelProjectDatabase::getParameterTypeStr(parameter.type);
  return text.empty() ? "no type" : "type " + text;
}

// Why the map refuses the parameter.
std::string RefusalOf(const Parameter& parameter, const ParameterMap& map) {
  if (!HasValueForItsType(parameter)) {
    return fmt::format("a parameter with {} must have {}", TypeOf(parameter),
                       parameter.type == e_noarg ? "no value" : "a value");
  }
  return fmt::format("it has {}, but one of that name above has {}", TypeOf(parameter),
                     TypeOf(map.at(parameter.name)));
}

// What the parser says may quote a file, line breaks included.
std::string OneLine(std::string text) {
  const std::size_t end = text.find_last_not_of('\n') + 1;
  text.erase(end);
  std::replace_if(text.begin(), text.end(), IsControl, ' ');
  return text;
}

class Problems {
 public:
  void Add(ProblemSeverity severity, check::Position position, std::string message) {
    problems_.push_back({severity, position.line, position.column, OneLine(std::move(message))});
  }

  /// In the order of their places.
  std::vector<FileProblem> Take() {
    std::stable_sort(problems_.begin(), problems_.end(), [](const auto& a, const auto& b) {
      return std::tie(a.line, a.column) < std::tie(b.line, b.column);
    });
    return std::move(problems_);
  }

 private:
  std::vector<FileProblem> problems_;
};

/// Makes a problem of each element that a load does not keep as it stands.
class CollectingObserver : public LoadObserver {
 public:
  /// @param positions of the document's elements; like the problems, they must outlive this
  CollectingObserver(const check::ElementPositions& positions, Problems& problems)
      : positions_(positions), problems_(problems) {}

  void UnexpectedSection(const DOMElement& element) override {
    AddError(element, "{} is not a section of a project file; expected {}", Tag(element),
             Tags(SectionNames()));
  }

  void UnexpectedChild(const DOMElement& element, const Names& expected) override {
    AddError(element, "{} cannot stand in {}; expected {}", Tag(element), ParentTag(element),
             Tags(expected));
  }

  void IgnoredElement(const DOMElement& element, const Names& expected) override {
    if (Tags(expected) == Tag(element)) {
      AddWarning(element, "{} is ignored because it is not in the namespace {:?}", Tag(element),
                 format::kNamespace.narrow);
    } else {
      AddWarning(element, "{} in {} is ignored; expected {}", Tag(element), ParentTag(element),
                 Tags(expected));
    }
  }

  void NamelessFile(const DOMElement& element) override {
    AddWarning(element, "{} is ignored because it names no file; expected the attribute \"{}\"",
               Tag(element), format::kName.narrow);
  }

  void DeprecatedElement(const DOMElement& element) override {
    AddWarning(element, "{} is deprecated and ignored; it can be removed", Tag(element));
  }

  void UnknownParameterType(const DOMElement& element, const Parameter& parameter,
                            const std::string& type) override {
    AddWarning(element, "parameter {:?}: {:?} is not a type; expected {}", parameter.name, type,
               TypeTexts());
  }

  void RefusedParameter(const DOMElement& element, const Parameter& parameter,
                        const ParameterMap& map) override {
    AddWarning(element, "parameter {:?} is ignored because {}", parameter.name,
               RefusalOf(parameter, map));
  }

 private:
  template <typename... Arguments>
  void AddError(const DOMElement& element, fmt::format_string<Arguments...> text,
                Arguments&&... arguments) {
    problems_.Add(ProblemSeverity::kError, positions_.Of(element),
                  fmt::format(text, std::forward<Arguments>(arguments)...));
  }

  template <typename... Arguments>
  void AddWarning(const DOMElement& element, fmt::format_string<Arguments...> text,
                  Arguments&&... arguments) {
    problems_.Add(ProblemSeverity::kWarning, positions_.Of(element),
                  fmt::format(text, std::forward<Arguments>(arguments)...));
  }

  const check::ElementPositions& positions_;
  Problems& problems_;
};

}  // namespace

/// Goes the way of a load, with a project of its own.
class ProjectFileChecker {
 public:
  void Check(const std::string& xml_file, const std::string& schema_file) {
    if (!FileExists(xml_file)) {
      AddError("the project file does not exist");
    } else if (!HasProjectFileExtension(xml_file)) {
      AddError(fmt::format("the name of a project file must end in \"{}\"",
                           KelProjectDatabase::XML_FILE_EXT));
    } else {
      const xml::Platform platform;
      CheckContent(xml_file, SchemaLocation(schema_file));
    }
  }

  void AddError(std::string message) {
    problems_.Add(ProblemSeverity::kError, {}, std::move(message));
  }

  std::vector<FileProblem> TakeProblems() { return problems_.Take(); }

 private:
  std::string SchemaLocation(const std::string& schema_file) {
    if (schema_file.empty() || FileExists(schema_file)) return schema_file;
    problems_.Add(ProblemSeverity::kWarning, {},
                  fmt::format("the XML schema {:?} does not exist; the file is read without it",
                              schema_file));
    return {};
  }

  void CheckContent(const std::string& xml_file, const std::string& schema_location) {
    const check::LocatedParse parse = check::ParseLocated(xml_file, schema_location);
    for (const auto& [is_error, position, message] : parse.problems) {
      problems_.Add(is_error ? ProblemSeverity::kError : ProblemSeverity::kWarning, position,
                    message);
    }
    const DOMElement* root = parse.document ? parse.document->getDocumentElement() : nullptr;
    if (root) CheckDocument(*root, parse.positions);
  }

  void CheckDocument(const DOMElement& root, const check::ElementPositions& positions) {
    if (!xml::HasLocalName(&root, format::kProject)) {
      problems_.Add(
          ProblemSeverity::kWarning, positions.Of(root),
          fmt::format("the root is {}; expected <{}>", Tag(root), format::kProject.narrow));
    }
    CollectingObserver observer(positions, problems_);
    KelProjectDatabase project;
    xml::WithPrefixedErrors("", [&] { return project.LoadProjectDocument(&root, observer); });
  }

  Problems problems_;
};

std::vector<FileProblem> CheckProjectFile(const std::string& xml_file,
                                          const std::string& schema_file) {
  ProjectFileChecker checker;
  try {
    checker.Check(xml_file, schema_file);
  } catch (const std::runtime_error& error) {
    checker.AddError(error.what());
  }
  return checker.TakeProblems();
}

}  // namespace projectdb
