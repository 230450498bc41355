#pragma once

#include <projectdb/records.h>

namespace test_support {

/// All flow processes, in their order.
inline constexpr projectdb::ProcType kProcesses[] = {
    projectdb::e_synthesis, projectdb::e_place_and_route, projectdb::e_bitstream_generation,
    projectdb::e_debugger};

}  // namespace test_support
