#pragma once

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/dom/impl/DOMAttrMapImpl.hpp>
#include <xercesc/dom/impl/DOMDocumentImpl.hpp>
#include <xercesc/dom/impl/DOMElementNSImpl.hpp>

#include "xml/owned.h"

/// Elements of documents that never leave this library, made and linked without the XML library's
/// general path, which finds out anew for each node what it is and whether it may stand where it
/// shall: that would take two thirds of a load and of an export.
///
/// What is taken over from the XML library, and why it is safe:
/// - How a last child is linked (AppendElement): fNode, fParent, fChild and fAttributes of
///   DOMElementImpl, public in its installed header. The parent and its first and last child must
///   be of exactly the class DOMElementNSImpl or made here; others are left to the XML library.
/// - The names of an element (fName, fNamespaceURI, fPrefix, fLocalName) and the document's table
///   of names (fNameTable, fNameTableSize), open to derived classes: each name is the document's
///   own copy, taken from another of its elements, and the table is replaced while it is empty.
/// - How an element keeps its attributes (TextAttributes): a map that the element asks by virtual
///   functions, but for attributes of a document type, which these have not. This one makes the
///   usual nodes, and takes the usual map's place, as soon as it is asked for one, so that every
///   operation on such a tree does what it would do anyway.
/// - Nobody else holds nodes of these documents: one thread at a time has them, and they end before
///   this library does. Read-only parents and documents with ranges are left all the same.
///
/// These members are those of version 3.2. With another one that has them, or with the build option
/// PROJECTDB_PLAIN_DOM, the XML library makes and writes all elements. Others do not compile.
namespace projectdb::xml {

/// Whether this build makes elements here.
bool MakesElements();

/// The names of so many kinds of elements are kept; a project has fewer than forty.
inline constexpr XMLSize_t kMostKinds = 64;

/// The names of an element, in its document's memory.
struct ElementNames {
  explicit ElementNames(const xercesc::DOMElement& element);

  const xercesc::DOMDocument* document;
  const XMLCh* namespace_uri;
  const XMLCh* prefix;
  const XMLCh* local_name;
  const XMLCh* qualified_name;
};

/// An attribute without namespace, in the memory of the element's document.
struct TextAttribute {
  const XMLCh* name;
  const XMLCh* text;
  TextAttribute* next;  ///< In the order of the names.
};

/// An empty document for a parser, allocated by the memory manager. Its table of names, each entry
/// of which is the start of a list, is larger than usual.
xercesc::DOMDocumentImpl* NewDocument(xercesc::MemoryManager& memory);

/// A document with a root.
Owned<xercesc::DOMDocument> CreateDocument(xercesc::DOMImplementation& core,
                                           const XMLCh* namespace_uri, const XMLCh* root_name);

/// Appends an element with the names of another one of its document.
/// @return null, and nothing has happened, if the document is none of these or another one, or if
///         the parent or one of its children is special
xercesc::DOMElementNSImpl* AppendElement(xercesc::DOMNode& parent, const ElementNames& names);

/// The node as an element that is linked like the ones made here; null if it is none.
const xercesc::DOMElementNSImpl* PlainElement(const xercesc::DOMNode* node);
xercesc::DOMElementNSImpl* PlainElement(xercesc::DOMNode* node);

/// The attributes of an element as texts, until somebody asks for nodes.
class TextAttributes final : public xercesc::DOMAttrMapImpl {
 public:
  explicit TextAttributes(xercesc::DOMElementNSImpl& element)
      : DOMAttrMapImpl(&element), element_(element) {}

  const TextAttribute* first() const { return first_; }

  /// Replaces the text of an attribute, or adds one.
  void Set(const XMLCh* name, const XMLCh* text);

  // What the usual map is asked for where no document type gives attributes.
  xercesc::DOMAttrMapImpl* cloneAttrMap(xercesc::DOMNode* owner) override;
  int findNamePoint(const XMLCh* name) const override;
  int findNamePoint(const XMLCh* uri, const XMLCh* local_name) const override;
  xercesc::DOMNode* removeNamedItemAt(XMLSize_t i) override;
  void setReadOnly(bool is_read_only, bool is_deep) override;
  XMLSize_t getLength() const override;
  xercesc::DOMNode* item(XMLSize_t i) const override;
  xercesc::DOMNode* getNamedItem(const XMLCh* name) const override;
  xercesc::DOMNode* setNamedItem(xercesc::DOMNode* node) override;
  xercesc::DOMNode* removeNamedItem(const XMLCh* name) override;
  xercesc::DOMNode* getNamedItemNS(const XMLCh* uri, const XMLCh* local_name) const override;
  xercesc::DOMNode* setNamedItemNS(xercesc::DOMNode* node) override;
  xercesc::DOMNode* removeNamedItemNS(const XMLCh* uri, const XMLCh* local_name) override;

 private:
  xercesc::DOMAttrMapImpl& Map() const;

  xercesc::DOMElementNSImpl& element_;
  TextAttribute* first_ = nullptr;
  mutable xercesc::DOMAttrMapImpl* map_ = nullptr;  // The usual map, once it is made.
};

/// @return null if the element has nodes for attributes
const TextAttributes* TextAttributesOf(const xercesc::DOMElement& element);
TextAttributes* TextAttributesOf(xercesc::DOMElement& element);

}  // namespace projectdb::xml
