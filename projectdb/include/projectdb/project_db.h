#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kel/export.h>
#include <projectdb/records.h>
#include <projectdb/xercesc_forward.h>

namespace projectdb {

class LoadObserver;
class ProjectAccess;
struct ProjectContents;
class ProjectFileReader;

/// Holds one FPGA design project in memory and moves it to and from a project XML file.
///
/// An object holds no project until CreateNewProjectDatabase or LoadProjectData gives it one, and
/// holds it until CleanProjectDatabase or its destruction. Without a project, getters return "",
/// setters do nothing, adders return false or do nothing, and getters of lists leave the caller's
/// vector as it was.
///
/// Threads: one object may be used from several threads. Every operation takes the object's lock
/// for its whole run, except loading and exporting, which hold it only while they touch the
/// project, the tests of a file's name before a single one is stored, and those marked "takes no
/// lock", which the caller must guard. A failing lock throws
/// std::system_error with nothing changed.
///
/// Ownership: getters give copies. Only GetFlowProcess, FindFlowProcessParameterMap and
/// AddFlowProcessParameterMap hand out pointers into the project. Getters that fill a vector append
/// to it and never clear it.
///
/// Failures: an expected problem gives false and, where stated, a message to Diag::GlobalInst().
/// Allocation failures throw std::bad_alloc.
///
/// Text is UTF-8. Any bytes are stored, but for the names of constraint files (std::range_error);
/// what cannot be converted is refused when it is used, by path getters (std::range_error) and by
/// ExportProjectData (std::runtime_error).
class KEL_EXPORT KelProjectDatabase {
 public:
  static const std::string XML_FILE_EXT;        ///< Ending of project files: ".xml".
  static const std::string SDC_FILE_EXT;        ///< Ending of timing constraint files: ".sdc".
  static const std::string INTERFACE_FILE_EXT;  ///< Ending of interface constraint files:
                                                ///< ".interface.csv".

  /// @name Lifecycle
  /// @{
  KelProjectDatabase() noexcept;
  ~KelProjectDatabase() noexcept;
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

  /// @name Project properties
  /// Getters return a copy; setters store any text as it is.
  /// @{
  std::string GetProjectName() const;
  void SetProjectName(const std::string& name);
  std::string GetProjectCurrentPath() const;  ///< The project's directory.
  void SetProjectCurrentPath(const std::string& path);
  std::string GetProjectSoftwareVersion() const;  ///< Version that wrote the project.
  void SetProjectSoftwareVersion(const std::string& version);
  std::string GetProjectLastModifyTime() const;  ///< Text for display.
  std::string GetDeviceFamily() const;
  void SetDeviceFamily(const std::string& family);
  std::string GetDeviceModel() const;
  void SetDeviceModel(const std::string& device);
  std::string GetDeviceTimingModel() const;
  void SetDeviceTimingModel(const std::string& timing_model);
  std::string GetDesignTopModuleName() const;
  void SetDesignTopModuleName(const std::string& top_module);
  std::string GetDesignTopVHDLArchitecture() const;
  void SetDesignTopVHDLArchitecture(const std::string& architecture);
  std::string GetInterfaceConstraint() const;  ///< As stored, not resolved.
  /// @}

  /// @name Project info attributes
  /// Free texts by name, kept as attributes of the project file's root. "name", "sw_version" and
  /// "last_change_date" stand for the project's name, software version and last change time.
  /// @{

  /// Stores an attribute; a namespace declaration or an "xsi" attribute is dropped. Takes no lock.
  /// @return false only without a project
  bool InsertOrAssignProjectAttribute(const std::string& name, const std::string& value);

  /// InsertOrAssignProjectAttribute under the lock.
  bool AddProjectInfoAttribute(const std::string& name, const std::string& value);

  /// @param name of the attribute
  /// @param value receives the attribute's text; untouched if there is none
  /// @return whether there is such an attribute
  bool GetProjectInfoAttribute(const std::string& name, std::string& value) const;
  /// @}

  /// @name Design file lists
  /// Names are stored as they are given, duplicates included; the getters of path lists give them
  /// resolved against the project's directory, as absolute paths without lexical normalisation.
  /// A name or directory that is not UTF-8 makes a path getter throw std::range_error with the
  /// names before it appended.
  /// @{
  void AddDesignRTLFile(const std::string& name, const std::string& version,
                        const std::string& library);
  void AddDesignRTLFile(std::vector<DesignFile>& files);  ///< Copies the records.

  /// The file's library is "default".
  void AddSimulationTestBenchFile(const std::string& name, const std::string& version);
  void AddSimulationTestBenchFile(std::vector<DesignFile>& files);  ///< Copies the records.

  /// The file's library is "default", its version empty.
  void AddMiscellaneousFile(const std::string& name);
  void AddMiscellaneousFile(std::vector<std::string>& names);

  /// Adds a timing constraint file unless its name is empty, is that of an existing directory or
  /// has another extension than SDC_FILE_EXT.
  /// @return whether it was added
  /// @exception std::range_error if the name is not UTF-8
  /// @exception std::filesystem::filesystem_error if the path's status cannot be read
  bool AddTimingConstraintFile(const std::string& name);

  /// Adds those names that the single form would add; after an exception those before it are kept.
  /// @return whether any was added
  bool AddTimingConstraintFile(const std::vector<std::string>& names);

  /// Stores the interface constraint file if its name ends in INTERFACE_FILE_EXT after a stem.
  /// @return false, with nothing changed, if it does not
  /// @exception std::range_error if the name is not UTF-8; nothing is changed
  bool SetInterfaceConstraint(const std::string& name);

  void GetDesignFileList(std::vector<DesignFile>& files) const;
  void GetSimulationTestBenchFileList(std::vector<std::string>& paths) const;
  void GetMiscellaneousFileList(std::vector<std::string>& paths) const;
  void GetTimingConstraintFileList(std::vector<std::string>& paths) const;

  /// The source files of all IP instances, each resolved against the directory that holds the
  /// instance's path.
  void GetIpSrcFileList(std::vector<std::string>& paths) const;

  /// The IP instances as stored, names not resolved.
  void GetIpInstanceList(std::vector<IP>& instances) const;
  /// @}

  /// @name Flow processes and parameter maps
  /// Each process keeps named maps of parameters. A value that is no ProcType is refused: with
  /// null, false, "" or an empty optional.
  /// @{

  /// Takes no lock. @return null if there is no such process
  FlowProcess* GetFlowProcess(ProcType type) const;

  /// Takes no lock; the pointer holds until the process gets another map.
  /// @return null if there is no such process or map
  ParameterMap* FindFlowProcessParameterMap(ProcType type, std::string map_name) const;

  /// Finds the map or creates it empty; takes no lock.
  /// @return null if there is no such process or it has 32768 other maps
  ParameterMap* AddFlowProcessParameterMap(ProcType type, std::string map_name);

  /// Stores a parameter under a key. A parameter of type e_noarg must have an empty value, any
  /// other a non-empty one, and a stored parameter never changes its type. Takes no lock.
  /// @return false, with nothing changed, if the parameter is refused
  static bool InsertOrAssignParameterToMap(ParameterMap& map, const std::string& key,
                                           const Parameter& parameter);

  /// Sets the name of the process's element in the file, a zero-terminated text. Takes no lock.
  void SetFlowProcessName(ProcType type, const char* name);

  void SetFlowProcessExecutableName(ProcType type, const std::string& name);
  std::string GetFlowProcessExecutableName(ProcType type) const;

  /// Stores a parameter in the named map, which is created if it is missing, even if the
  /// parameter is then refused.
  bool AddFlowProcessParameter(ProcType type, std::string map_name, const Parameter& parameter);
  bool AddFlowProcessParameter(ProcType type, std::string map_name, const std::string& name,
                               const std::string& value, ParameterType value_type);

  /// Stores each parameter that is not refused.
  /// @return false only if there is no such process
  bool AddFlowProcessParameterList(ProcType type, std::string map_name,
                                   const std::vector<Parameter>& parameters);

  /// Appends the map's parameters in no particular order.
  void GetFlowProcessParameterList(ProcType type, std::string map_name,
                                   std::vector<Parameter>& parameters) const;
  std::optional<Parameter> GetFlowProcessParameter(ProcType type, std::string map_name,
                                                   const std::string& name) const;
  std::string GetFlowProcessParameterValue(ProcType type, std::string map_name,
                                           const std::string& name) const;
  /// @}

  /// @name Synthesis
  /// The general operations with the process and the map fixed.
  /// @{
  std::string GetSynthesisExecutableName() const;
  void SetSynthesisExecutableName(const std::string& name);
  bool AddSynthesisParameter(const Parameter& parameter);
  bool AddSynthesisParameter(const std::string& name, const std::string& value, ParameterType type);
  bool AddSynthesisParameterList(const std::vector<Parameter>& parameters);
  void GetSynthesisParameterList(std::vector<Parameter>& parameters) const;
  std::string GetSynthesisParameterValue(const std::string& name) const;

  bool AddSynthesisVerilogDefineParameter(const Parameter& parameter);
  /// The parameter has no type (kNoParameterType) and needs a value.
  bool AddSynthesisVerilogDefineParameter(const std::string& name, const std::string& value);
  bool AddSynthesisVerilogDefineParameterList(const std::vector<Parameter>& parameters);
  void GetSynthesisVerilogDefineParameterList(std::vector<Parameter>& parameters) const;
  std::string GetSynthesisVerilogDefineParameterValue(const std::string& name) const;

  bool AddSynthesisVerilogMacro(const Parameter& parameter);
  /// The macro has no type (kNoParameterType) and needs a value.
  bool AddSynthesisVerilogMacro(const std::string& name, const std::string& value);
  bool AddSynthesisVerilogMacroList(const std::vector<Parameter>& parameters);
  void GetSynthesisVerilogMacroList(std::vector<Parameter>& parameters) const;
  std::string GetSynthesisVerilogMacroValue(const std::string& name) const;
  /// @}

  /// @name Place and route
  /// @{
  std::string GetPlaceAndRouteExecutableName() const;
  void SetPlaceAndRouteExecutableName(const std::string& name);
  bool AddPlaceAndRouteParameter(const Parameter& parameter);
  bool AddPlaceAndRouteParameter(const std::string& name, const std::string& value,
                                 ParameterType type);
  bool AddPlaceAndRouteParameterList(const std::vector<Parameter>& parameters);
  void GetPlaceAndRouteParameterList(std::vector<Parameter>& parameters) const;
  std::optional<Parameter> GetPlaceAndRouteParameter(const std::string& name) const;
  std::string GetPlaceAndRouteParameterValue(const std::string& name) const;
  /// @}

  /// @name Bitstream generation
  /// @{
  std::string GetBitstreamGenerateExecutableName() const;
  void SetBitstreamGenerateExecutableName(const std::string& name);
  bool AddBitstreamGenerateParameter(const Parameter& parameter);
  bool AddBitstreamGenerateParameter(const std::string& name, const std::string& value,
                                     ParameterType type);
  bool AddBitstreamGenerateParameterList(const std::vector<Parameter>& parameters);
  void GetBitstreamGenerateParameterList(std::vector<Parameter>& parameters) const;
  std::string GetBitstreamGenerateParameterValue(const std::string& name) const;
  /// @}

  /// @name Debugger
  /// @{
  bool AddDebuggerParameter(const Parameter& parameter);
  bool AddDebuggerParameter(const std::string& name, const std::string& value, ParameterType type);
  bool AddDebuggerParameterList(const std::vector<Parameter>& parameters);
  void GetDebuggerParameterList(std::vector<Parameter>& parameters) const;
  std::optional<Parameter> GetDebuggerParameter(const std::string& name) const;
  std::string GetDebuggerParameterValue(const std::string& name) const;
  /// @}

  /// @name Parameter types as text
  /// @{

  /// "e_string", "e_bool", "e_option", "e_noarg"; "" for any other value. Takes no lock.
  static std::string getParameterTypeStr(ParameterType type);

  /// The type whose text this is, kNoParameterType for any other text. Takes no lock.
  static ParameterType getParameterTypeFromStr(const std::string& text);
  /// @}

  /// @name Thread counts
  /// @{

  /// Reads a thread count of at most 65535 from ASCII digits; takes no lock.
  /// @param text decimal
  /// @param default_num returned for a text that is empty, not a number, zero or too large
  /// @exception kel_exception if default_num is 0
  static std::uint64_t ParseMaxThreads(std::string_view text, std::uint64_t default_num);

  /// ParseMaxThreads of the parameter "max_threads" of synthesis.
  std::uint64_t GetSynthesisMaxThreads(std::uint64_t default_num) const;

  /// ParseMaxThreads of the parameter "max_threads" of place and route.
  std::uint64_t GetPnRMaxThreads(std::uint64_t default_num) const;
  /// @}

  /// @name Project file
  /// @{

  /// Reads a project file into the object. A project that is there is kept: single values are
  /// overwritten, lists appended to, parameters inserted or assigned. The project's directory
  /// becomes that of the file.
  ///
  /// Not every file comes in whole:
  /// - One with a document type declaration is refused as malformed.
  /// - A parameter that its map refuses, as InsertOrAssignParameterToMap would, is left out without
  ///   a message and without a false result; CheckProjectFile (check.h) tells of it.
  /// - One of XML 1.1 may bring in control characters, which no export can write.
  ///
  /// @param xml_file path of the project file, which must end in ".xml"
  /// @param schema_file path of the XML schema, or "": then a local schema that the file itself
  ///        names is used, if there is one. A schema must be a regular file of at most 16 MiB; one
  ///        that is given and is not makes the file count as malformed. One that is given and does
  ///        not exist is a warning, and the file is loaded as if none were given.
  /// @return false, with the project untouched, if the path is empty (without a message) or if the
  ///         file is missing or malformed (with an error message); false, with all else loaded, if
  ///         it has sections outside the format (with an error message for each) or elements
  ///         outside the format within the sections that allow no others (without a message)
  /// @exception std::runtime_error if the XML library fails, with the project untouched: "Failed
  ///            parsing XML file …"; "Unexpected Exception", which is also the error if memory runs
  ///            out inside the parse; "Failed to initialize …", after which no load and no export
  ///            of this process succeeds any more
  bool LoadProjectData(const std::string& xml_file, const std::string& schema_file);

  /// Writes the project to a file, stamped with this library's version and the local time; does
  /// nothing without a project. A load of the file gives the same project, except where a caller
  /// has brought something into it that a load reads as something else or not at all, which is
  /// written as it stands:
  /// - a change through a pointer, such as a value that does not go with its parameter's type;
  /// - a parameter under another key than its name;
  /// - a process under another name than a new project gives it;
  /// - a parameter map under a name that its process does not have in a project file.
  ///
  /// ExportProjectDataDurably (durable_export.h) refuses what a load would not give back.
  /// A process without a name is written under that of a new project.
  ///
  /// @exception std::runtime_error "Failed writing XML file …" if the project holds text that no
  ///            XML file can hold, or if a process, a parameter map with parameters or an info
  ///            attribute has a name that none can have in XML (an existing file is then
  ///            untouched), or if the file could not be written whole; "Unexpected Exception" if
  ///            memory runs out while it is written; "Failed to initialize …" if the XML library
  ///            cannot be used, which stays so for as long as the process runs
  /// @exception xercesc::IOException if the file cannot be opened
  void ExportProjectData(const std::string& path) const;
  /// @}

  /// @name Writers of DOM elements
  /// Each appends one element to its parent, with the namespace URI and, if that is given, the
  /// prefix. They take no lock. The caller must have initialised the XML platform, unless the
  /// parent is null. A map without parameters writes nothing, whatever its name, and so does the
  /// item tag of a list without files; one that is null leaves the list without items.
  /// @return false, with nothing appended, if the parent is null or an element cannot be created,
  ///         such as one whose tag, process name or map name is not a name without colon
  /// @exception std::runtime_error if a text cannot stand in an XML document; nothing is appended
  /// @exception std::bad_alloc with nothing appended
  /// @{
  bool AppendDeviceInfoToDOMElement(xercesc::DOMElement* parent, DeviceInfo& device_info,
                                    const char16_t* namespace_uri, const char16_t* prefix) const;
  bool AppendDesignInfoToDOMElement(xercesc::DOMElement* parent, DesignInfo& design_info,
                                    const char16_t* namespace_uri, const char16_t* prefix) const;
  bool AppendDesignConstraintToDOMElement(xercesc::DOMElement* parent, DesignConstraint& constraint,
                                          const char16_t* namespace_uri,
                                          const char16_t* prefix) const;
  bool AppendISFToDOMElement(xercesc::DOMElement* parent, DesignISF& isf,
                             const char16_t* namespace_uri, const char16_t* prefix) const;
  bool AppendDesignFileListToDOMElement(xercesc::DOMElement* parent, const char* list_tag,
                                        const char* item_tag, std::vector<DesignFile>& files,
                                        const char16_t* namespace_uri,
                                        const char16_t* prefix) const;
  bool AppendDesignFileToDOMElement(xercesc::DOMElement* parent, const char* tag, DesignFile& file,
                                    const char16_t* namespace_uri, const char16_t* prefix) const;
  bool AppendIPInfoToDOMElement(xercesc::DOMElement* parent, IPInfo& ip_info,
                                const char16_t* namespace_uri, const char16_t* prefix) const;
  bool AppendIPInstanceToDOMElement(xercesc::DOMElement* parent, const char* tag, IP& ip,
                                    const char16_t* namespace_uri, const char16_t* prefix) const;
  bool AppendIPSrcFileToDOMElement(xercesc::DOMElement* parent, const char* tag, IPSrcFile& file,
                                   const char16_t* namespace_uri, const char16_t* prefix) const;
  bool AppendProcessParameterToDOMElement(xercesc::DOMElement* parent, const Parameter& parameter,
                                          const char* tag, const char16_t* namespace_uri,
                                          const char16_t* prefix) const;
  bool AppendFlowProcessToDOMElement(xercesc::DOMElement* parent, const FlowProcess& process,
                                     const char16_t* namespace_uri, const char16_t* prefix) const;
  bool AppendSynthesisProcessToDOMElement(xercesc::DOMElement* parent, SynthesisProcess& process,
                                          const char16_t* namespace_uri,
                                          const char16_t* prefix) const;
  /// @}

 private:
  friend ProjectAccess;      // By it the companion headers copy, set and export what there is.
  friend ProjectFileReader;  // It reads a document as a load does, but posts no messages.

  struct ProjectData;

  template <typename... Members>
  std::string GetProperty(Members... members) const;
  template <typename... Members>
  void SetProperty(const std::string& text, Members... members);

  bool LoadProjectDocument(const xercesc::DOMElement* root, LoadObserver& observer);

  /// Throws if the project must not be written.
  using ProjectTest = void (*)(const ProjectContents&);
  /// Exports the project if it passes the test, which runs under the lock under which it is copied.
  /// @param test null for none
  void ExportTestedProject(const std::string& path, ProjectTest test) const;
  bool AppendProjectToRoot(xercesc::DOMElement* root, ProjectTest test) const;
  /// A copy of all that there is, for whoever has the lock.
  ProjectContents CopyContents() const;
  /// All that there is, for whoever needs the object no more.
  ProjectContents TakeContents();

  bool LoadProjectInfoAttributes(const char* ns, const xercesc::DOMElement* root);
  bool LoadProjectInfo(const char* ns, const xercesc::DOMElement* elem, LoadObserver& observer);
  bool UpdateDeviceInfo(DeviceInfo& device_info, const char* ns, const xercesc::DOMElement* elem,
                        LoadObserver& observer);
  bool UpdateDesignInfo(DesignInfo& design_info, const char* ns, const xercesc::DOMElement* elem,
                        LoadObserver& observer);
  bool UpdateConstraintInfo(DesignConstraint& constraint, const char* ns,
                            const xercesc::DOMElement* elem, LoadObserver& observer);
  bool UpdateISFInfo(DesignISF& isf, const char* ns, const xercesc::DOMElement* elem,
                     LoadObserver& observer);
  bool UpdateIPInfo(IPInfo& ip_info, const char* ns, const xercesc::DOMElement* elem,
                    LoadObserver& observer);
  void UpdateFileListInfo(std::vector<DesignFile>& files, const char* tag, const char* ns,
                          const xercesc::DOMElement* elem, LoadObserver& observer);
  bool SetUpFlowProcess(ProcType type, const char* tag, const char* ns,
                        const xercesc::DOMElement* elem, LoadObserver& observer);

  mutable std::mutex mutex_;
  std::unique_ptr<ProjectData> data_;
};

}  // namespace projectdb
