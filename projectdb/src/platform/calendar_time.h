#pragma once

#include <ctime>

namespace projectdb {

/// A moment as the calendars and clocks of the process's time zone have it.
std::tm LocalCalendarTime(std::time_t moment);

}  // namespace projectdb
