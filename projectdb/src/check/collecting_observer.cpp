#include "check/collecting_observer.h"

#include <utility>
#include <vector>

#include <fmt/format.h>
#include <projectdb/vocabulary.h>

#include "project_db/format.h"
#include "xml/dom.h"

namespace projectdb::check {
namespace {

using xercesc::DOMElement;

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
  const std::string text = projectdb::TextOf(parameter.type);
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

}  // namespace

std::string Tag(const DOMElement& element) {
  return fmt::format("<{}>", xml::TranscodeXMLString(element.getLocalName()));
}

void CollectingObserver::UnexpectedSection(const DOMElement& element) {
  static const std::string expected = Tags(SectionNames());
  AddError(element, fmt::format("{} is not a section of a project file; expected {}", Tag(element),
                                expected));
}

void CollectingObserver::SkippedSection(const DOMElement& element) {
  unkept_.Add(ProblemSeverity::kWarning, positions_.Of(element),
              fmt::format("{} is not kept", Tag(element)));
}

void CollectingObserver::UnexpectedChild(const DOMElement& element, const Names& expected) {
  AddError(element, fmt::format("{} cannot stand in {}; expected {}", Tag(element),
                                ParentTag(element), Tags(expected)));
}

void CollectingObserver::IgnoredElement(const DOMElement& element, const Names& expected) {
  if (Tags(expected) == Tag(element)) {
    AddWarning(element, fmt::format("{} is ignored because it is not in the namespace {:?}",
                                    Tag(element), format::kNamespace.narrow));
  } else {
    AddWarning(element, fmt::format("{} in {} is ignored; expected {}", Tag(element),
                                    ParentTag(element), Tags(expected)));
  }
}

void CollectingObserver::NamelessFile(const DOMElement& element) {
  AddWarning(element,
             fmt::format("{} is ignored because it names no file; expected the attribute \"{}\"",
                         Tag(element), format::kName.narrow));
}

void CollectingObserver::DeprecatedElement(const DOMElement& element) {
  AddWarning(element, fmt::format("{} is deprecated and ignored; it can be removed", Tag(element)));
}

void CollectingObserver::UnknownParameterType(const DOMElement& element, const Parameter& parameter,
                                              const std::string& type) {
  AddWarning(element, fmt::format("parameter {:?}: {:?} is not a type; expected {}", parameter.name,
                                  type, TypeTexts()));
}

void CollectingObserver::ReplacedName(const DOMElement& element, const std::string& former) {
  AddWarning(element, fmt::format("{} takes the place of {:?} above; a project has only one",
                                  Tag(element), former));
}

void CollectingObserver::ReplacedParameter(const DOMElement& element, const Parameter& parameter) {
  AddWarning(element, fmt::format("parameter {:?} takes the place of the one of that name above",
                                  parameter.name));
}

void CollectingObserver::RefusedParameter(const DOMElement& element, const Parameter& parameter,
                                          const ParameterMap& map) {
  AddWarning(element, fmt::format("parameter {:?} is ignored because {}", parameter.name,
                                  RefusalOf(parameter, map)));
}

void CollectingObserver::AddError(const DOMElement& element, std::string message) {
  problems_.Add(ProblemSeverity::kError, positions_.Of(element), std::move(message));
}

void CollectingObserver::AddWarning(const DOMElement& element, std::string message) {
  problems_.Add(ProblemSeverity::kWarning, positions_.Of(element), std::move(message));
}

}  // namespace projectdb::check
