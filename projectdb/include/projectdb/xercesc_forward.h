#pragma once

// What the public headers need of the XML library, without its headers: callers that write DOM
// elements themselves include those. The namespace carries the version of the library, here 3.2.
namespace xercesc_3_2 {
class DOMElement;
}
namespace xercesc = xercesc_3_2;
