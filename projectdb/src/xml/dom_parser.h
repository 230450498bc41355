#pragma once

#include <set>
#include <string>
#include <unordered_map>

#include <xercesc/dom/DOMErrorHandler.hpp>
#include <xercesc/parsers/DOMLSParserImpl.hpp>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "xml/nodes.h"
#include "xml/owned.h"

namespace projectdb::xml {

/// The load/save parser of the XML library, in time proportional to the file. By itself it looks a
/// prefix up through all the levels that an element is nested in, an attribute through all those
/// that its element has already, and a name through a table that does not grow: a small file of
/// deep nesting, many attributes or many names would keep it busy for hours. It makes the same
/// documents, but without what stands between the tags: nothing of a project does, and the blanks
/// there would be half of a document's nodes. An element with many attributes does not tell which
/// of them is its ID.
///
/// In each build it uses what the XML library opens to derived classes: of its parser, fDocument,
/// fCurrentParent, fCurrentNode, fScanner, fValidator, fGrammarResolver, fURIStringPool and
/// createAttrNS; of its scanner, fElemStack; and one private function, resizeElemState. A version
/// that lacks one of them does not compile.
class DomParser : public xercesc::DOMLSParserImpl {
 public:
  DomParser();

  void startDocument() override;
  void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                    const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t count, bool is_empty, bool is_root) override;
  void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool is_root,
                  const XMLCh* prefix) override;
  void docCharacters(const XMLCh* /*text*/, XMLSize_t /*length*/, bool /*is_cdata*/) override {}
  void ignorableWhitespace(const XMLCh* /*text*/, XMLSize_t /*length*/,
                           bool /*is_cdata*/) override {}

 protected:
  /// What is to be done at the beginning and the end of each element, kept or not.
  void EnterElement(const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t count);
  void LeaveElement() { --depth_; }

 private:
  class Scanner;

  /// Elements that have all their names in common.
  struct Kind {
    unsigned int uri;
    ElementNames names;
  };

  void NotePrefixes(const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t count);
  void AddAttributes(const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t count);
  void AddAttribute(const xercesc::XMLAttr& attribute);
  bool AppendPlainElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                          const XMLCh* prefix,
                          const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                          XMLSize_t count);
  bool ArePlain(const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t count) const;
  void StartOtherElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                         const XMLCh* prefix,
                         const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t count,
                         bool is_empty, bool is_root);
  void NoteKind(const xercesc::XMLElementDecl& declaration, unsigned int uri);

  Scanner* scanner_;  // fScanner, which the base class owns.
  std::set<std::u16string> prefixes_;
  XMLSize_t depth_ = 0;
  std::unordered_map<const xercesc::XMLElementDecl*, Kind> kinds_;
};

/// Keeps no elements: only the errors matter.
class SyntaxParser : public DomParser {
 public:
  void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                    const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t count, bool is_empty, bool is_root) override;
  void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool is_root,
                  const XMLCh* prefix) override;
};

/// Gives a new parser the settings that every parse of this library shares: namespaces, schema
/// validation, no document type declarations.
/// @param error_handler must outlive the parser
void Configure(xercesc::DOMLSParser& parser, xercesc::DOMErrorHandler& error_handler);

/// Sets a parameter if the parser can take the value.
void Set(xercesc::DOMLSParser& parser, const XMLCh* parameter, bool value);

Owned<xercesc::DOMDocument> Parse(xercesc::DOMLSParser& parser, const xercesc::InputSource& input);

}  // namespace projectdb::xml
