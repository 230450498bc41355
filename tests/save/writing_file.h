#pragma once

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <projectdb/project_file.h>

#include "testing/complete_project.h"
#include "testing/project_loading.h"
#include "testing/shipped_files.h"

namespace test_support {

/// Contents to be written, and a directory for the file.
class WritingFile : public testing::Test, public Loading {
 protected:
  /// The text of the error that a write ends in; "" if it ends well.
  std::string WriteError(const projectdb::ProjectContents& contents,
                         const projectdb::WriteOptions& options = {}) const {
    try {
      projectdb::WriteProjectFile(path(), contents, options);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return {};
  }

  const projectdb::ProjectContents contents_ = CompleteProject(PathText(directory.path()));
};

/// A file whose debugger has no tool but the one that a schema gives it.
class WritingFileOfASchema : public WritingFile {
 protected:
  void SetUp() override { WriteProject("<debugger/>"); }

  /// One with a design file, whose library is the schema's too, and these sections.
  void WriteProject(const std::string& sections) const {
    Write("p.xml", ProjectXml("<design_info><design_file name=\"a.v\" version=\"sv\"/>"
                              "</design_info>" +
                                  sections,
                              "xsi:schemaLocation=\"http://schema.kel.example/wdp_proj "
                              "wdp_proj.xsd\""));
  }

  std::string WriteSchema(const std::string& name) const {
    std::string schema = ReadFile(ShippedSchema());
    AddDefault("tool_name", "own", schema);
    AddDefault("library", "own_library", schema);
    return Write(name, schema);
  }

  /// The writer leaves it out if it is empty.
  static std::string& DebuggerOf(projectdb::ProjectContents& contents) {
    return contents.flow_processes.at(projectdb::e_debugger).tool_name;
  }

  /// The writer writes it even if it is empty.
  static std::string& LibraryOf(projectdb::ProjectContents& contents) {
    return contents.design_info.design_files.at(0).library;
  }

 private:
  static void AddDefault(const std::string& name, const std::string& value, std::string& schema) {
    const std::string attribute = "<xs:attribute name=\"" + name + "\"";
    schema.insert(schema.find(attribute) + attribute.size(), " default=\"" + value + "\"");
  }
};

}  // namespace test_support
