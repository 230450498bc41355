#pragma once

#include <array>
#include <string_view>
#include <vector>

#include <projectdb/records.h>

namespace kelproj {

/// A flow process, by the name of its element in a project file.
struct Process {
  projectdb::ProcType type;
  std::string_view name;
  std::string_view title;  ///< For people.
};

inline constexpr std::array<Process, 4> kProcesses = {{
    {projectdb::e_synthesis, "synthesis", "Synthesis"},
    {projectdb::e_place_and_route, "place_and_route", "Place and route"},
    {projectdb::e_bitstream_generation, "bitstream_generation", "Bitstream generation"},
    {projectdb::e_debugger, "debugger", "Debugger"},
}};

inline constexpr std::string_view kToolKey = "tool";  ///< Of a process's executable.

/// The map of ordinary parameters, which every process has.
inline constexpr std::string_view kParameterMap = "param";

/// The names of the maps that a process of this type may have.
inline std::vector<std::string_view> MapsOf(projectdb::ProcType type) {
  if (type == projectdb::e_synthesis) return {kParameterMap, "dynparam", "defmacro"};
  return {kParameterMap};
}

}  // namespace kelproj
