#pragma once

#include <string>

#include <xercesc/dom/DOMLSSerializerFilter.hpp>
#include <xercesc/framework/XMLFormatter.hpp>

#include "xml/nodes.h"
#include "xml/text.h"

namespace projectdb::xml {

/// Writes plain elements by itself, in the serializer's form, and keeps them from the serializer,
/// which would take ten times as long for them. The serializer hands over what it writes at once,
/// so that both write to one target in turns. It is left:
/// - each element that was not made by this library's own nodes, has children or is no deeper than
///   the root's children;
/// - each whose texts have a character that is escaped anywhere, or one from the surrogates on;
/// - the last child of each element: only by a child of its own does the serializer notice that the
///   end tag needs a line of its own.
class LeafFilter final : public xercesc::DOMLSSerializerFilter {
 public:
  /// @param target of a serializer with pretty-printing and the usual line ends, in UTF-8
  LeafFilter(xercesc::XMLFormatTarget& target, Transcoder& transcoder)
      : target_(target), transcoder_(transcoder) {}

  /// @param node has plain elements alone above it (PlainElement): others would not count as levels
  FilterAction acceptNode(const xercesc::DOMNode* node) const override;
  ShowType getWhatToShow() const override { return xercesc::DOMNodeFilter::SHOW_ELEMENT; }

 private:
  bool Write(const xercesc::DOMElementNSImpl& element) const;
  bool Append(const XMLCh* text) const;

  xercesc::XMLFormatTarget& target_;
  Transcoder& transcoder_;
  mutable std::string line_;
};

}  // namespace projectdb::xml
