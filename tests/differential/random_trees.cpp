#include "random_trees.h"

#include <vector>

#include <projectdb/project_db.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/dom/DOMAttr.hpp>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/dom/DOMNamedNodeMap.hpp>
#include <xercesc/dom/impl/DOMElementImpl.hpp>

#include "testing/xml_tree.h"
#include "xml/nodes.h"

namespace differential {
namespace {

using projectdb::KelProjectDatabase;
using projectdb::xml::Owned;
using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;

constexpr char16_t kNamespace[] = u"http://schema.kel.example/wdp_proj";

/// Writes down what the XML library tells it.
class UserData : public xercesc::DOMUserDataHandler {
 public:
  explicit UserData(std::string& report) : report_(report) {}
  void handle(DOMOperationType operation, const XMLCh* key, void* /*data*/, const DOMNode* source,
              DOMNode* /*destination*/) override {
    report_ += "handler " + std::to_string(operation) + " " + test_support::Utf8(key) + " " +
               (source ? test_support::Utf8(source->getNodeName()) : "") + "\n";
  }

 private:
  std::string& report_;
};

class Trees {
 public:
  explicit Trees(RandomInput& input) : input_(input), handler_(report_) {
    auto* core = xercesc::DOMImplementationRegistry::getDOMImplementation(u"Core");
    documents_.push_back(projectdb::xml::CreateDocument(*core, kNamespace, u"project"));
    documents_.push_back(Owned<DOMDocument>(core->createDocument(kNamespace, u"project", nullptr)));
    if (input_.OneIn(2)) documents_[0]->getDocumentElement()->setPrefix(u"kel");
  }

  std::string Run() {
    for (std::size_t i = 5 + input_.Number(40); i > 0; --i) Step();
    for (const auto& document : documents_) Describe(*document);
    for (const xercesc::DOMRange* range : ranges_) {
      report_ += "range " + std::to_string(range->getStartOffset()) + " " +
                 std::to_string(range->getEndOffset()) + "\n";
    }
    return report_;
  }

 private:
  DOMDocument& Document() { return *documents_[input_.Number(documents_.size())]; }

  /// Mostly the root or one of its children, so that they have many.
  DOMElement& Element() {
    DOMElement* element = Document().getDocumentElement();
    while (!input_.OneIn(2)) {
      DOMElement* child =
          input_.OneIn(2) ? element->getLastElementChild() : element->getFirstElementChild();
      if (!child) break;
      element = child;
    }
    return *element;
  }

  void Step() {
    try {
      switch (input_.Number(3)) {
        case 0:
          Change(Element());
          break;
        default:
          Write(Element());
      }
    } catch (const xercesc::DOMException& exception) {
      report_ += "exception " + std::to_string(exception.code) + "\n";
    } catch (const std::exception& exception) {
      report_ += std::string("exception ") + exception.what() + "\n";
    }
  }

  void Write(DOMElement& parent) {
    const auto* uri = input_.OneOf<const char16_t*>({kNamespace, kNamespace, kNamespace, nullptr});
    const auto* prefix = input_.OneOf<const char16_t*>({u"kel", u"kel", u"kel", nullptr, u"xml"});
    const auto* tag = input_.OneOf<const char*>({"sim_info", "größe", "a:b", "param"});
    bool written = false;
    if (input_.OneIn(2)) {
      std::vector<projectdb::DesignFile> files;
      for (std::size_t i = input_.Number(6); i > 0; --i) files.emplace_back(input_.Text(), "", "w");
      written =
          writer_.AppendDesignFileListToDOMElement(&parent, tag, "sim_file", files, uri, prefix);
    } else if (input_.OneIn(2)) {
      projectdb::IP ip{input_.Text(), input_.Text(), {{"a"}, {input_.Text()}, {"b"}}};
      written = writer_.AppendIPInstanceToDOMElement(&parent, tag, ip, uri, prefix);
    } else {
      const std::string name = input_.Text();
      std::vector<projectdb::Parameter> parameters(4, {name, input_.Text(), projectdb::e_bool});
      projectdb::SynthesisProcess process{"synthesis", input_.Text(), parameters, {}, parameters};
      written = writer_.AppendSynthesisProcessToDOMElement(&parent, process, uri, prefix);
    }
    report_ += written ? "written\n" : "not written\n";
  }

  void Change(DOMElement& element) {
    DOMDocument& document = *element.getOwnerDocument();
    DOMNode* parent = element.getParentNode();
    switch (input_.Number(18)) {
      case 0:
        element.appendChild(document.createTextNode(u"text"));
        break;
      case 1:
        element.insertBefore(document.createComment(u"comment"), element.getFirstChild());
        break;
      case 2:
        element.appendChild(document.createElement(u"old"));
        break;
      case 3:
        element.insertBefore(document.createElementNS(u"urn:x", u"x:y"), element.getFirstChild());
        break;
      case 4:
        element.appendChild(element.cloneNode(input_.OneIn(2)));
        break;
      case 5:
        Move(element, Element());
        break;
      case 6:
        Document().getDocumentElement()->appendChild(
            documents_[1]->importNode(&element, input_.OneIn(2)));
        break;
      case 7:
        documents_[0]->getDocumentElement()->appendChild(documents_[0]->importNode(&element, true));
        break;
      case 8:
        document.renameNode(&element, input_.OneIn(2) ? u"urn:x" : kNamespace, u"x:renamed");
        break;
      case 9:
        element.normalize();
        break;
      case 10:
        if (input_.OneIn(4)) static_cast<xercesc::DOMElementImpl&>(element).setReadOnly(true, true);
        break;
      case 11:
        ranges_.push_back(document.createRange());
        ranges_.back()->selectNodeContents(&element);
        break;
      case 12:
        element.setUserData(u"key", this, &handler_);
        break;
      case 13:
        ChangeAttributes(element);
        break;
      case 14:
        if (parent != &document) parent->removeChild(&element)->release();
        break;
      case 15:
        if (parent != &document) parent->replaceChild(document.createElement(u"other"), &element);
        break;
      case 16:
        report_ +=
            std::to_string(document.getElementsByTagNameNS(kNamespace, u"sim_file")->getLength()) +
            " files\n";
        break;
      default:
        report_ += std::to_string(element.isEqualNode(element.getPreviousElementSibling())) +
                   std::to_string(element.getChildNodes()->getLength()) + "\n";
    }
  }

  // The XML library does not see that an element without children shall go into itself.
  void Move(DOMElement& element, DOMElement& target) {
    if (&element != &target && element.getParentNode() != element.getOwnerDocument()) {
      target.appendChild(&element);
    }
  }

  void ChangeAttributes(DOMElement& element) {
    xercesc::DOMNamedNodeMap& map = *element.getAttributes();
    switch (input_.Number(8)) {
      case 0:
        element.setAttribute(u"name", u"set");
        break;
      case 1:
        element.setAttributeNS(u"urn:x", u"x:name", u"set");
        break;
      case 2:
        element.removeAttribute(u"version");
        break;
      case 3:
        if (map.getNamedItem(u"name")) map.removeNamedItem(u"name")->release();
        break;
      case 4:
        map.setNamedItem(element.getOwnerDocument()->createAttribute(u"library"));
        break;
      case 5:
        if (element.getAttributeNodeNS(nullptr, u"name")) element.setIdAttribute(u"name", true);
        break;
      case 6:
        report_ +=
            std::to_string(map.getLength()) + test_support::Utf8(element.getAttribute(u"name"));
        break;
      default:
        if (map.getLength() > 0) map.item(map.getLength() - 1)->setNodeValue(u"changed");
    }
  }

  void Describe(const DOMDocument& document) {
    DescribeNode(document, 0);
    auto* implementation = xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
    const Owned<xercesc::DOMLSSerializer> serializer(implementation->createLSSerializer());
    XMLCh* text = serializer->writeToString(&document);
    report_ += test_support::Utf8(text) + "\n";
    xercesc::XMLString::release(&text);
  }

  /// Also whether each node knows its neighbours.
  void DescribeNode(const DOMNode& node, std::size_t depth) {
    report_ += std::string(depth, ' ') + test_support::Utf8(node.getNodeName()) + "{" +
               test_support::Utf8(node.getNamespaceURI()) + "}" +
               test_support::Utf8(node.getPrefix()) + ":" +
               test_support::Utf8(node.getLocalName()) + " " +
               test_support::Utf8(node.getNodeValue()) + "\n";
    const xercesc::DOMNamedNodeMap* map = node.getAttributes();
    for (XMLSize_t i = 0; map && i < map->getLength(); ++i) {
      const auto& attribute = static_cast<const xercesc::DOMAttr&>(*map->item(i));
      const bool is_owned = attribute.getOwnerElement() == &node;
      report_ += std::string(depth, ' ') + "@" + test_support::Utf8(attribute.getName()) + "=" +
                 test_support::Utf8(attribute.getValue()) + " " +
                 test_support::Utf8(attribute.getLocalName()) + std::to_string(is_owned) +
                 std::to_string(attribute.getSpecified()) + "\n";
    }
    const DOMNode* previous = nullptr;
    for (const DOMNode* child = node.getFirstChild(); child; child = child->getNextSibling()) {
      if (child->getPreviousSibling() != previous || child->getParentNode() != &node) {
        report_ += "linked wrongly\n";
      }
      DescribeNode(*child, depth + 1);
      previous = child;
    }
    if (node.getLastChild() != previous) report_ += "another last child\n";
  }

  RandomInput& input_;
  std::string report_;
  UserData handler_;
  const KelProjectDatabase writer_;
  std::vector<Owned<DOMDocument>> documents_;
  std::vector<xercesc::DOMRange*> ranges_;
};

}  // namespace

std::string DoMuchToTrees(RandomInput& input) { return Trees(input).Run(); }

}  // namespace differential
