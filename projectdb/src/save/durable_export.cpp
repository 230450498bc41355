#include <projectdb/durable_export.h>

#include <string>

#include <projectdb/project_db.h>

#include "base/failure.h"
#include "project_db/project_access.h"
#include "save/canonical_document.h"
#include "save/replace_file.h"
#include "xml/errors.h"

namespace projectdb {

void ExportProjectDataDurably(const KelProjectDatabase& database, const std::string& path) {
  if (path.empty() || !database.IsProjectDatabaseExist()) return;
  // Writes nothing if another thread has cleaned the project away.
  const auto write = [&](const std::string& file) {
    ProjectAccess::Export(database, file, RequireWritable);
  };
  xml::WithPrefixedErrors(WritingPrefix(path), [&] { files::ReplaceFile(path, {write}); });
}

}  // namespace projectdb
