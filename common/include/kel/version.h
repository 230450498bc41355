#pragma once

#include <string>

#include <kel/export.h>

/// Version of the suite's software, such as "1.2.3".
KEL_EXPORT extern const std::string KEL_VERSION_NO;
