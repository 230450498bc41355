#pragma once

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <xercesc/dom/DOMElement.hpp>

#include "base/name.h"
#include "xml/errors.h"
#include "xml/nodes.h"
#include "xml/text.h"

/// Reading and making DOM elements.
namespace projectdb::xml {

/// The element children of an element, in document order, for a range-based loop.
class ChildElements {
 public:
  class Iterator {
   public:
    explicit Iterator(const xercesc::DOMElement* element) : element_(element) {}
    const xercesc::DOMElement* operator*() const { return element_; }
    Iterator& operator++() {
      element_ = element_->getNextElementSibling();
      return *this;
    }
    bool operator!=(const Iterator& other) const { return element_ != other.element_; }

   private:
    const xercesc::DOMElement* element_;
  };

  explicit ChildElements(const xercesc::DOMElement* parent) : parent_(parent) {}
  Iterator begin() const { return Iterator(parent_->getFirstElementChild()); }
  Iterator end() const { return Iterator(nullptr); }

 private:
  const xercesc::DOMElement* parent_;
};

/// The elements of one name at any depth below an element, in document order.
/// @param visit_other is called for each element of another name, if it is not empty
std::vector<const xercesc::DOMElement*> DescendantElements(
    const xercesc::DOMElement* root, std::u16string_view namespace_uri,
    std::u16string_view local_name,
    const std::function<void(const xercesc::DOMElement*)>& visit_other = {});

/// Whether this is the element's local name.
bool HasLocalName(const xercesc::DOMElement* element, const Name& name);

/// Where the text of an attribute goes.
struct AttributeText {
  const Name& name;
  std::string& text;
};

/// Reads the texts of several attributes of a parsed element; leaves those of absent ones alone.
void ReadAttributes(Transcoder& transcoder, const xercesc::DOMElement* element,
                    std::initializer_list<AttributeText> attributes);

/// The text of an attribute of a parsed element; "" if it is absent.
std::string GetDOMAttributeString(Transcoder& transcoder, const xercesc::DOMElement* element,
                                  const Name& name);

/// Makes elements of one namespace and prefix, and their attributes. Where the parent is null it
/// needs no XML platform.
class ElementWriter {
 public:
  /// @param namespace_uri may be null
  /// @param prefix may be null; not used without a namespace
  ElementWriter(const XMLCh* namespace_uri, const XMLCh* prefix)
      : namespace_uri_(namespace_uri), prefix_(prefix) {}

  /// The form in which a tag is handed to AddChildDOMElement.
  /// @return "" if the tag is not a name without colon
  std::u16string ElementName(std::string_view tag) { return transcoder().ToElementName(tag); }

  /// Appends a child element.
  /// @return null if the parent or the tag is null or empty, or if there can be no such element
  xercesc::DOMElement* AddChildDOMElement(xercesc::DOMElement* parent, const XMLCh* tag);

  /// Appends a child element and calls fill(element); what that throws leaves no element behind.
  /// @return whether there is such an element now
  template <typename Fill>
  bool AppendElement(xercesc::DOMElement* parent, const XMLCh* tag, Fill fill);

  /// Sets an attribute without namespace; does nothing if the element is null.
  /// @exception Failure if XML cannot carry the value
  void SetDOMElementAttribute(xercesc::DOMElement* element, const Name& name,
                              std::string_view value);

  /// Sets an attribute whose name may have a prefix. The document must declare every prefix, so
  /// each is given a namespace of its own, derived from the writer's.
  /// @exception Failure if the name is neither a name without colon nor two joined by one, or if
  ///            XML cannot carry the value
  void SetQualifiedAttribute(xercesc::DOMElement* element, std::string_view name,
                             std::string_view value);

  /// Appends a child element with one attribute, or nothing.
  /// @return whether there is such an element now
  /// @exception Failure if XML cannot carry the value
  bool AddChildDOMElementWithAttribute(xercesc::DOMElement* parent, const XMLCh* tag,
                                       const Name& attribute, std::string_view value);

 private:
  Transcoder& transcoder() { return transcoder_ ? *transcoder_ : transcoder_.emplace(); }
  const ElementNames* KnownNames(const XMLCh* tag) const;
  bool IsName(std::string_view text);
  std::u16string NamespaceOfPrefix(std::string_view prefix);

  const XMLCh* namespace_uri_;
  const XMLCh* prefix_;
  std::vector<ElementNames> known_names_;  ///< Of elements that were made, by tag.
  std::optional<Transcoder> transcoder_;   ///< Made when it is first used.
};

template <typename Fill>
bool ElementWriter::AppendElement(xercesc::DOMElement* parent, const XMLCh* tag, Fill fill) {
  xercesc::DOMElement* element = WithBadAlloc([&] { return AddChildDOMElement(parent, tag); });
  if (!element) return false;
  try {
    WithBadAlloc([&] { fill(element); });
  } catch (...) {
    parent->removeChild(element)->release();
    throw;
  }
  return true;
}

}  // namespace projectdb::xml
