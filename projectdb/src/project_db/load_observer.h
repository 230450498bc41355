#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <xercesc/dom/DOMElement.hpp>

#include <projectdb/records.h>

namespace projectdb {

/// Local names of elements.
using Names = std::vector<std::string_view>;

/// Is told of each element of a project document that is not kept as it stands, or in whose place
/// an earlier one is not, in document order and while the database's lock is held. Any other draws
/// no call.
class LoadObserver {
 public:
  virtual ~LoadObserver() = default;

  /// A child of the root that is no section; the load's result is false.
  virtual void UnexpectedSection(const xercesc::DOMElement& element) = 0;

  /// A section that no project keeps, of which nobody needs to be told.
  virtual void SkippedSection(const xercesc::DOMElement& element) = 0;

  /// A child that its section does not have; the load's result is false.
  /// @param expected the children that it has
  virtual void UnexpectedChild(const xercesc::DOMElement& element, const Names& expected) = 0;

  /// An element where any may stand, but only the expected are kept.
  virtual void IgnoredElement(const xercesc::DOMElement& element, const Names& expected) = 0;

  /// An element of a list of file names that has none.
  virtual void NamelessFile(const xercesc::DOMElement& element) = 0;

  /// An element that the format no longer has.
  virtual void DeprecatedElement(const xercesc::DOMElement& element) = 0;

  /// An element whose parameter is taken for one without a type, since there is none of that name.
  virtual void UnknownParameterType(const xercesc::DOMElement& element, const Parameter& parameter,
                                    const std::string& type) = 0;

  /// An element whose name takes the place of an earlier one: a project has one of the kind.
  virtual void ReplacedName(const xercesc::DOMElement& element, const std::string& former) = 0;

  /// An element whose parameter takes the place of an earlier one of that name.
  virtual void ReplacedParameter(const xercesc::DOMElement& element,
                                 const Parameter& parameter) = 0;

  /// An element whose parameter its map refuses.
  virtual void RefusedParameter(const xercesc::DOMElement& element, const Parameter& parameter,
                                const ParameterMap& map) = 0;
};

}  // namespace projectdb
