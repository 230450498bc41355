#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/XMLEntityResolver.hpp>

#include "xml/error_handler.h"

namespace projectdb::xml {

/// Finds the schema documents that a parse needs, given, hinted or included: local files only.
/// One with a document type declaration is refused, since such a declaration can make a small
/// file expand without bound or read other files; so is one that is not well-formed, and one that
/// is larger than any schema.
class SchemaSource : public xercesc::XMLEntityResolver {
 public:
  /// The bytes that a document may have; no more are read.
  static constexpr std::size_t kMaxSize = std::size_t{16} << 20U;

  /// @param errors is told what is wrong with a refused document; must outlive this
  explicit SchemaSource(KelProjectDbErrorHandler& errors) : errors_(errors) {}

  /// @param path of the schema that the caller gives
  /// @return null if it cannot be read or is refused
  std::unique_ptr<xercesc::InputSource> Open(const std::filesystem::path& path);

  /// The parser's question for a hinted or included schema. Never null: that would make the parser
  /// look for the document itself, on the network too.
  xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* identifier) override;

 private:
  KelProjectDbErrorHandler& errors_;
};

}  // namespace projectdb::xml
