#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include <kel/export.h>

/// The records that make up a project: plain values that own all they hold. Text is UTF-8 as far
/// as it names a file or is to be exported; the records themselves check nothing.
namespace projectdb {

/// Kind of a parameter's value. Any value can be cast in; see kNoParameterType.
enum ParameterType : int { e_string = 0, e_bool = 1, e_option = 2, e_noarg = 3 };

/// "No type": what a text that names no type is converted to. It has no enumerator on purpose.
inline constexpr ParameterType kNoParameterType = static_cast<ParameterType>(4);

/// The four flow processes; the value is the process's position in the project.
enum ProcType : int {
  e_synthesis = 0,
  e_place_and_route = 1,
  e_bitstream_generation = 2,
  e_debugger = 3
};

/// One named setting of a flow process.
struct KEL_EXPORT Parameter {
  std::string name;
  std::string value;  ///< Decimal numbers, truth values and options are kept as their text.
  ParameterType type;

  Parameter(const std::string& name, const std::string& value, ParameterType type);
};

/// The parameters of one map, by parameter name.
using ParameterMap = std::unordered_map<std::string, Parameter>;

/// One design source file.
struct KEL_EXPORT DesignFile {
  std::string name;     ///< File name or path, usually relative to the project directory.
  std::string version;  ///< Language version.
  std::string library;  ///< Library that the file is compiled into.

  DesignFile(const std::string& name, const std::string& version, const std::string& library);
};

/// The target device.
struct KEL_EXPORT DeviceInfo {
  std::string family;
  std::string device;
  std::string timing_model;

  DeviceInfo();
  DeviceInfo(std::string& family, std::string& device, std::string& timing_model);
};

/// The design's top level and its sources.
struct KEL_EXPORT DesignInfo {
  std::string top_module;
  std::string top_vhdl_arch;  ///< Architecture of the top level when it is VHDL.
  std::vector<DesignFile> design_files;
  std::string def_veri_version;  ///< Default Verilog version.
  std::string def_vhdl_version;  ///< Default VHDL version.

  DesignInfo();
  /// Takes the design files over and leaves the caller's vector empty; copies the texts.
  /// The order of the arguments is not that of the fields.
  DesignInfo(std::string& top_module, std::vector<DesignFile>& design_files,
             std::string& top_vhdl_arch, std::string& def_veri_version,
             std::string& def_vhdl_version);
};

/// Timing and interface constraints.
struct KEL_EXPORT DesignConstraint {
  std::vector<std::string> sdc_files;  ///< Timing constraint files.
  std::string inter_file;              ///< Interface constraint file.

  DesignConstraint();
  /// Takes the file list over and leaves the caller's vector empty; copies the file name.
  DesignConstraint(std::vector<std::string>& sdc_files, std::string& inter_file);
};

/// ISF files.
struct KEL_EXPORT DesignISF {
  std::vector<std::string> isf_files;

  DesignISF();
  /// Takes the list over and leaves the caller's vector empty.
  DesignISF(std::vector<std::string>& isf_files);  // NOLINT(google-explicit-constructor)
};

/// One source file of an IP instance.
struct KEL_EXPORT IPSrcFile {
  std::string name;  ///< Relative to the directory that holds the instance's path.
};

/// One IP instance.
struct KEL_EXPORT IP {
  std::string instance_name;
  std::string path;
  std::vector<IPSrcFile> src_files;
};

/// All IP instances.
struct KEL_EXPORT IPInfo {
  std::vector<IP> ips;
};

/// One step of the design flow.
struct KEL_EXPORT FlowProcess {
  std::string name;                   ///< Also the name of its element in the project file.
  std::string tool_name;              ///< Executable that runs the step.
  std::vector<Parameter> parameters;  ///< Plain parameters; not kept in the project file.
  std::vector<ParameterMap> parameter_maps;
  /// Name of a map to its position in parameter_maps.
  std::unordered_map<std::string, std::int16_t> parameter_map_index;

  FlowProcess();
  /// Takes the parameters over and leaves the caller's vector empty; copies the texts.
  FlowProcess(std::string& name, std::string& tool_name, std::vector<Parameter>& parameters);
};

/// The synthesis step with its three kinds of parameter as lists, ready to be written.
struct KEL_EXPORT SynthesisProcess {
  std::string name;
  std::string tool_name;
  std::vector<Parameter> params;      ///< Ordinary parameters.
  std::vector<Parameter> dyn_params;  ///< Dynamic parameters.
  std::vector<Parameter> def_macros;  ///< Macro definitions.
};

}  // namespace projectdb
