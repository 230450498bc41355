#pragma once

#include <string>

#include "check/locating_parser.h"
#include "check/problem_list.h"
#include "project_db/load_observer.h"

namespace projectdb::check {

/// Makes a problem of each element that a load does not keep as it stands.
class CollectingObserver : public LoadObserver {
 public:
  /// @param positions of the document's elements; like the problems, they must outlive this
  CollectingObserver(ElementPositions& positions, ProblemList& problems, ProblemList& unkept)
      : positions_(positions), problems_(problems), unkept_(unkept) {}

  void UnexpectedSection(const xercesc::DOMElement& element) override;
  void SkippedSection(const xercesc::DOMElement& element) override;
  void UnexpectedChild(const xercesc::DOMElement& element, const Names& expected) override;
  void IgnoredElement(const xercesc::DOMElement& element, const Names& expected) override;
  void NamelessFile(const xercesc::DOMElement& element) override;
  void DeprecatedElement(const xercesc::DOMElement& element) override;
  void UnknownParameterType(const xercesc::DOMElement& element, const Parameter& parameter,
                            const std::string& type) override;
  void ReplacedName(const xercesc::DOMElement& element, const std::string& former) override;
  void ReplacedParameter(const xercesc::DOMElement& element, const Parameter& parameter) override;
  void RefusedParameter(const xercesc::DOMElement& element, const Parameter& parameter,
                        const ParameterMap& map) override;

 private:
  void AddError(const xercesc::DOMElement& element, std::string message);
  void AddWarning(const xercesc::DOMElement& element, std::string message);

  ElementPositions& positions_;
  ProblemList& problems_;
  ProblemList& unkept_;
};

/// The start tag of an element as it stands in the file, but without prefix and attributes.
std::string Tag(const xercesc::DOMElement& element);

}  // namespace projectdb::check
