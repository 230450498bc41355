#pragma once

#include <string>

/// Version of the suite's software, such as "1.2.3".
extern const std::string KEL_VERSION_NO;
