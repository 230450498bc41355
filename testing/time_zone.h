#pragma once

namespace test_support {

/// Sets the environment variable TZ, or removes it if the zone is null, and has it noticed.
void SetTimeZone(const char* zone);

}  // namespace test_support
