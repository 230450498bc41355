#pragma once

#include <filesystem>
#include <ostream>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include <projectdb/project_db.h>

#include "testing/checking.h"
#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/project_snapshot.h"
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

/// A small project file with every section, every kind of entry and every parameter type.
inline std::string CompleteProjectXml() {
  return ProjectXml(R"(
  <device_info><family name="Orrin"/><device name="O40"/><timing_model name="slow"/></device_info>
  <design_info def_veri_version="v2k" def_vhdl_version="vhdl08">
    <top_module name="top"/>
    <design_file name="a.v" version="v2k" library="work"/>
    <design_file name="b.vhd" version="" library="lib"/>
    <top_vhdl_arch name="rtl"/>
  </design_info>
  <constraint_info><sdc_file name="c.sdc"/><inter_file name="c.interface.csv"/></constraint_info>
  <isf_info><isf_file name="d.isf"/></isf_info>
  <sim_info><sim_file name="tb.v" version="sv" library="sim"/></sim_info>
  <misc_info><misc_file name="notes.txt" version="1" library="docs"/></misc_info>
  <ip_info><ip instance_name="u" path="ip/u.cfg"><ip_src_file name="u.v"/></ip></ip_info>
  <synthesis tool_name="syn">
    <param name="mode" value="fast" value_type="e_option"/>
    <param name="flat" value="" value_type="e_noarg"/>
    <dynparam name="W" value="8" value_type="e_string"/>
    <defmacro name="SIM" value="1"/>
  </synthesis>
  <place_and_route tool_name="pnr"><param name="seed" value="1" value_type="e_string"/></place_and_route>
  <bitstream_generation><param name="zip" value="true" value_type="e_bool"/></bitstream_generation>
  <debugger tool_name="dbg"/>
)",
                    R"(name="demo" vendor_id="77" sw_version="0.0.1" last_change_date="long ago")");
}

// The messages of a load, each with its severity.
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

  /// Writes a project file of these bytes and loads it. Whatever they are, a check of the file must
  /// come to the same result.
  bool LoadBytes(const std::string& bytes, const std::string& schema = "") {
    const bool result = LoadFile(Write("p.xml", bytes), schema);
    if (CheckAccepts(path(), schema) != result) {
      throw std::logic_error("check and load disagree on " + bytes);
    }
    return result;
  }

  /// The path that LoadBytes loads.
  std::string path() const { return directory / "p.xml"; }

  TemporaryDirectory directory;
  projectdb::KelProjectDatabase database;
  std::vector<MessageRecorder::Message> messages;
};

/// The project as a file, without the time stamp; "" without a project.
inline std::string ExportedText(const projectdb::KelProjectDatabase& database) {
  if (!database.IsProjectDatabaseExist()) return {};
  const TemporaryDirectory directory;
  database.ExportProjectData(directory / "exported.xml");
  return std::regex_replace(ReadFile(directory / "exported.xml"),
                            std::regex("last_change_date=\"[^\"]*\""), "");
}

/// The values of an attribute of all exported elements of one name, in order.
inline std::vector<std::string> ExportedValues(const projectdb::KelProjectDatabase& database,
                                               const std::string& element,
                                               const std::string& attribute) {
  const std::string text = ExportedText(database);
  const std::regex pattern("<kel:" + element + " [^>]*\\b" + attribute + "=\"([^\"]*)\"");
  std::vector<std::string> values;
  for (std::sregex_iterator match(text.begin(), text.end(), pattern), end; match != end; ++match) {
    values.push_back((*match)[1]);
  }
  return values;
}

/// All that a project holds, whether a getter gives it or only an export.
struct WholeProject {
  explicit WholeProject(const projectdb::KelProjectDatabase& database)
      : exists(database.IsProjectDatabaseExist()),
        snapshot(TakeSnapshot(database)),
        exported(ExportedText(database)) {}
  bool operator==(const WholeProject& other) const {
    return exists == other.exists && snapshot == other.snapshot && exported == other.exported;
  }

  bool exists;
  ProjectSnapshot snapshot;
  std::string exported;
};

inline std::ostream& operator<<(std::ostream& out, const WholeProject& project) {
  return out << (project.exists ? "" : "no project\n") << project.snapshot << project.exported;
}

}  // namespace test_support
