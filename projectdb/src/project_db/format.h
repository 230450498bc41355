#pragma once

#include <array>
#include <tuple>

#include <projectdb/vocabulary.h>

#include "base/name.h"

/// The names of the project XML file, shared by reader and writer.
namespace projectdb::format {

inline constexpr Name kNamespace = "http://schema.kel.example/wdp_proj";
inline constexpr Name kPrefix = "kel";
inline constexpr Name kSchemaFile = "wdp_proj.xsd";
inline constexpr Name kSchemaLocation = "xsi:schemaLocation";

// Root element and its sections.
inline constexpr Name kProject = "project";
inline constexpr Name kDeviceInfo = "device_info";
inline constexpr Name kDesignInfo = "design_info";
inline constexpr Name kConstraintInfo = "constraint_info";
inline constexpr Name kIsfInfo = "isf_info";
inline constexpr Name kSimInfo = "sim_info";
inline constexpr Name kMiscInfo = "misc_info";
inline constexpr Name kIpInfo = "ip_info";
inline constexpr Name kPackageInfo = "package_info";  ///< Deprecated.
inline constexpr Name kSecurity = "security";         ///< Skipped silently.

/// The sections that the project is read from, besides the flow processes.
inline constexpr std::array<Name, 7> kSections = {
    kDeviceInfo, kDesignInfo, kConstraintInfo, kIsfInfo, kSimInfo, kMiscInfo, kIpInfo};

/// The names that the entries of a table have, in its order.
template <typename Table>
constexpr auto NamesOf(const Table& table) {
  return std::apply([](const auto&... entries) { return std::array{Name(entries.name)...}; },
                    table);
}

/// The sections of the flow processes, by ProcType.
inline constexpr auto kProcesses = NamesOf(kFlowProcesses);

/// The parameters of a flow process, by their maps: a process has the first ones of these.
inline constexpr auto kParameters = NamesOf(kParameterMaps);

// Children of the sections.
inline constexpr Name kFamily = "family";
inline constexpr Name kDevice = "device";
inline constexpr Name kTimingModel = "timing_model";
inline constexpr Name kTopModule = "top_module";
inline constexpr Name kTopVhdlArch = "top_vhdl_arch";
inline constexpr Name kDesignFile = "design_file";
inline constexpr Name kSdcFile = "sdc_file";
inline constexpr Name kInterFile = "inter_file";
inline constexpr Name kIoPlaceFile = "io_place_file";      ///< Deprecated.
inline constexpr Name kCorePlaceFile = "core_place_file";  ///< Deprecated.
inline constexpr Name kIsfFile = "isf_file";
inline constexpr Name kSimFile = "sim_file";
inline constexpr Name kMiscFile = "misc_file";
inline constexpr Name kIp = "ip";
inline constexpr Name kIpSrcFile = "ip_src_file";

// Attributes of the root that are no info attributes.
inline constexpr Name kProjectName = kProjectNameKey;
inline constexpr Name kSoftwareVersion = kSoftwareVersionKey;
inline constexpr Name kLastModifyTime = kLastModifyTimeKey;

// Attributes.
inline constexpr Name kName = "name";
inline constexpr Name kVersion = "version";
inline constexpr Name kLibrary = "library";
inline constexpr Name kDefVeriVersion = "def_veri_version";
inline constexpr Name kDefVhdlVersion = "def_vhdl_version";
inline constexpr Name kInstanceName = "instance_name";
inline constexpr Name kPath = "path";
inline constexpr Name kToolName = "tool_name";
inline constexpr Name kValue = "value";
inline constexpr Name kValueType = "value_type";

}  // namespace projectdb::format
