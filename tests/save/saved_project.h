#pragma once

#include <string>

#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/message_recorder.h"
#include "testing/temporary_directory.h"
#include "testing/xml_tree.h"

namespace test_support {

/// The name of the project in a file.
inline std::string NameInFile(const std::string& path) {
  return ReadXmlFile(path).attributes.at("name");
}

/// A project to be saved.
class DurableExport : public testing::Test {
 protected:
  DurableExport() { database_.CreateNewProjectDatabase("next"); }

  /// Puts the project file of another project there.
  void WriteFormer(const std::string& path) const {
    projectdb::KelProjectDatabase former;
    former.CreateNewProjectDatabase("former");
    former.ExportProjectData(path);
  }

  const MessageRecorder recorder_;
  const TemporaryDirectory directory_;
  const std::string path_ = directory_ / "p.xml";
  projectdb::KelProjectDatabase database_;
};

}  // namespace test_support
