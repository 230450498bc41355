#pragma once

#include <array>

#include "base/name.h"
#include "contents/model_names.h"

/// The vocabulary of the project XML file, shared by reader and writer. The names of the flow
/// processes, their parameter maps and the root's reserved attributes stand in model_names.h.
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
