#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <projectdb/records.h>

namespace projectdb {

/// Holds one FPGA design project in memory and moves it to and from a project XML file.
///
/// An object holds no project until CreateNewProjectDatabase or LoadProjectData gives it one, and
/// holds it until CleanProjectDatabase or its destruction. Without a project, getters return "",
/// setters do nothing, adders return false or do nothing, and getters of lists leave the caller's
/// vector as it was.
///
/// Threads: one object may be used from several threads. Every operation takes the object's lock
/// for its whole run, except loading and exporting, which hold it only while they touch the
/// project, and those marked "takes no lock", which the caller must guard. A failing lock throws
/// std::system_error with nothing changed.
///
/// Ownership: getters give copies. Only GetFlowProcess, FindFlowProcessParameterMap and
/// AddFlowProcessParameterMap hand out pointers into the project. Getters that fill a vector append
/// to it and never clear it.
///
/// Failures: an expected problem gives false and, where stated, a message to Diag::GlobalInst().
/// Allocation failures throw std::bad_alloc.
///
/// Text is UTF-8. Any bytes are stored; what cannot be converted is refused when it is used, by
/// path getters (std::range_error) and by ExportProjectData (std::runtime_error).
class KelProjectDatabase {
 public:
  static const std::string XML_FILE_EXT;        ///< Ending of project files: ".xml".
  static const std::string SDC_FILE_EXT;        ///< Ending of timing constraint files: ".sdc".
  static const std::string INTERFACE_FILE_EXT;  ///< Ending of interface constraint files:
                                                ///< ".interface.csv".

  /// @name Lifecycle
  /// @{
  KelProjectDatabase();
  ~KelProjectDatabase();
  KelProjectDatabase(const KelProjectDatabase&) = delete;
  KelProjectDatabase& operator=(const KelProjectDatabase&) = delete;

  /// Gives the object an empty project with four unnamed flow processes; takes no lock.
  /// @return false, with nothing changed, if there is a project
  bool SetupProjectDatabase();

  /// Creates a project with the defaults of a new one in the current working directory.
  /// @param name the project's name; "new_project" if empty
  /// @return false, with an error message and nothing changed, if there is a project
  bool CreateNewProjectDatabase(std::string name);

  bool IsProjectDatabaseExist() const;

  /// Discards the project, if there is one.
  void CleanProjectDatabase();
  /// @}

  /// @name Flow processes
  /// @{

  /// Takes no lock. @return null if there is no such process
  FlowProcess* GetFlowProcess(ProcType type) const;

  /// Takes no lock. @param name zero-terminated; the name of the process's element in the file
  void SetFlowProcessName(ProcType type, const char* name);
  /// @}

  /// @name Parameter types as text
  /// @{

  /// "e_string", "e_bool", "e_option", "e_noarg"; "" for any other value. Takes no lock.
  static std::string getParameterTypeStr(ParameterType type);

  /// The type whose text this is, kNoParameterType for any other text. Takes no lock.
  static ParameterType getParameterTypeFromStr(const std::string& text);
  /// @}

 private:
  struct ProjectData;

  mutable std::mutex mutex_;
  std::unique_ptr<ProjectData> data_;
};

}  // namespace projectdb
