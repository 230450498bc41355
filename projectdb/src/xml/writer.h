#pragma once

#include <string>

#include <xercesc/dom/DOMDocument.hpp>

namespace projectdb::xml {

/// Writes a document to a file, pretty-printed. Does nothing if the path is empty.
///
/// @param path native path
/// @exception xercesc::IOException if the file cannot be opened
/// @exception std::runtime_error "Failed writing XML file …" if it was not written whole
void WriteDOMDocumentToFile(const std::string& path, const xercesc::DOMDocument* document);

/// The bytes that WriteDOMDocumentToFile would write.
/// @exception Failure if the document cannot be written
std::string WriteDOMDocumentToBytes(const xercesc::DOMDocument& document);

}  // namespace projectdb::xml
