#pragma once

#include <algorithm>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <projectdb/project_db.h>
#include <projectdb/project_file.h>

#include "testing/checking.h"
#include "testing/complete_project.h"
#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/project_differences.h"
#include "testing/temporary_directory.h"

/// Making project files and loading them.
namespace test_support {

/// A project file with the given attributes of the root and sections below it. The default
/// namespace is that of the format, so that sections need no prefix; "kel" stands for it too.
inline std::string ProjectXml(const std::string& sections, const std::string& attributes = "") {
  return "<project xmlns=\"http://schema.kel.example/wdp_proj\""
         " xmlns:kel=\"http://schema.kel.example/wdp_proj\""
         " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" " +
         attributes + ">" + sections + "</project>\n";
}

/// An element with the given attributes and content.
inline std::string ElementXml(const std::string& tag, const std::string& attributes = "",
                              const std::string& content = "") {
  std::string element = "<";
  element.append(tag).append(" ").append(attributes).append(">");
  element.append(content).append("</").append(tag).append(">");
  return element;
}

/// A schema for project files that hold "device_info" sections and nothing else.
inline std::string DeviceOnlySchema(const std::string& declarations = "") {
  return "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\""
         " targetNamespace=\"http://schema.kel.example/wdp_proj\""
         " elementFormDefault=\"qualified\">" +
         declarations +
         "<xs:element name=\"project\"><xs:complexType><xs:sequence>"
         "<xs:element name=\"device_info\" minOccurs=\"0\" maxOccurs=\"unbounded\">"
         "<xs:complexType><xs:sequence>"
         "<xs:any minOccurs=\"0\" maxOccurs=\"unbounded\" processContents=\"skip\"/>"
         "</xs:sequence></xs:complexType></xs:element>"
         "</xs:sequence><xs:anyAttribute processContents=\"skip\"/></xs:complexType></xs:element>"
         "</xs:schema>\n";
}

/// A "device_info" section: what DeviceOnlySchema accepts.
inline std::string DeviceInfoXml(const std::string& family) {
  return "<device_info><family name=\"" + family + "\"/></device_info>";
}

// The messages of the library, each with its severity.
inline MessageRecorder::Message ProjectExistsMessage() {
  return {Diag::MessageType::kError,
          "Project database has already existed. Fail to create new project"};
}
inline MessageRecorder::Message ReadingMessage(const std::string& path) {
  return {Diag::MessageType::kInfo, "Reading project database \"" + path + "\""};
}
inline MessageRecorder::Message MissingMessage(const std::string& path) {
  return {Diag::MessageType::kError, "Project XML file \"" + path + "\" does not exist"};
}
inline MessageRecorder::Message SchemaMissingMessage(const std::string& path) {
  return {Diag::MessageType::kWarning, "XML schema file \"" + path + "\" does not exist"};
}
inline MessageRecorder::Message MalformedMessage(const std::string& path) {
  return {Diag::MessageType::kError,
          "Failed to parse the project XML file \"" + path + "\". The file format is unexpected"};
}
inline MessageRecorder::Message DeprecatedMessage(const std::string& tag) {
  return {Diag::MessageType::kWarning, "Found a deprecated tag name " + tag + ". Skipping ..."};
}
inline MessageRecorder::Message UnexpectedMessage(const std::string& tag) {
  return {Diag::MessageType::kError, "Unexpected tag name " + tag};
}

/// The messages of a load that refuses the file as malformed.
inline std::vector<MessageRecorder::Message> RefusedMessages(const std::string& path) {
  return {ReadingMessage(path), MalformedMessage(path)};
}

/// A database object, a directory for its files, and what a load gave.
class Loading {
 public:
  /// Writes a file into the directory. @return its path
  std::string Write(const std::string& name, const std::string& bytes) const {
    std::string path = directory / name;
    // Overwriting a file makes some file systems wait for the disk.
    std::filesystem::remove(path);
    WriteFile(path, bytes);
    return path;
  }

  /// Loads a file and keeps the messages of this load.
  bool LoadFile(const std::string& path, const std::string& schema = "") {
    const MessageRecorder recorder;
    const bool result = database.LoadProjectData(path, schema);
    messages = recorder.messages();
    return result;
  }

  /// Writes a project file of these bytes and loads it. Whatever they are, reading the file as a
  /// value must come to the same result and, if there was no project before, to the same project.
  bool LoadBytes(const std::string& bytes, const std::string& schema = "") {
    const bool had_project = database.IsProjectDatabaseExist();
    const bool result = LoadFile(Write("p.xml", bytes), schema);
    const projectdb::ProjectFile file = projectdb::ReadProjectFile(path(), schema);
    const bool is_accepted = std::none_of(file.problems.begin(), file.problems.end(), IsError);
    if (is_accepted != result || !(had_project || IsLoaded(file.contents))) {
      throw std::logic_error("read and load disagree on " + bytes);
    }
    return result;
  }

  /// What the file holds now; throws if that is no project.
  projectdb::ProjectContents Contents() const {
    return projectdb::ReadProjectFile(path(), "").contents.value();
  }

  /// The file as it is now is the one expected.
  projectdb::WriteOptions ExpectingTheFile() const {
    projectdb::WriteOptions options;
    options.expected = projectdb::ReadProjectFile(path(), "").version;
    return options;
  }

  /// What the database holds; see ProjectLines.
  Lines project() const { return ProjectLines(database); }

  /// The path that LoadBytes loads.
  std::string path() const { return directory / "p.xml"; }

  TemporaryDirectory directory;
  projectdb::KelProjectDatabase database;
  std::vector<MessageRecorder::Message> messages;

 private:
  /// Whether the database holds the same project, or none as well.
  bool IsLoaded(const std::optional<projectdb::ProjectContents>& contents) const {
    if (!contents || !database.IsProjectDatabaseExist()) {
      return !contents && !database.IsProjectDatabaseExist();
    }
    return AllDifferences(*contents, database).empty();
  }
};

}  // namespace test_support
