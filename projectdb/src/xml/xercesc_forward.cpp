#include <projectdb/xercesc_forward.h>

#include <type_traits>

#include <xercesc/dom/DOMElement.hpp>

static_assert(std::is_same_v<xercesc::DOMElement, XERCES_CPP_NAMESPACE::DOMElement>,
              "projectdb/xercesc_forward.h declares the namespace of another version of the XML "
              "library than the installed one: write the installed one's name into that header.");
