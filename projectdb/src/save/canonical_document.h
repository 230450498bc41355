#pragma once

#include <projectdb/project_contents.h>
#include <projectdb/project_file.h>
#include <xercesc/dom/DOMDocument.hpp>

#include "xml/owned.h"

namespace projectdb {

/// @exception Failure with the reason for contents that a load of their file would not give back
void RequireWritable(const ProjectContents& contents);

/// The document of a project file in canonical order.
/// @exception Failure as RequireWritable, and for texts that XML cannot carry
xml::Owned<xercesc::DOMDocument> CanonicalDocument(const ProjectContents& contents,
                                                   const FormatOptions& options);

}  // namespace projectdb
