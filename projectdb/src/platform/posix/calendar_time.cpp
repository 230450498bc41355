#include "platform/calendar_time.h"

namespace projectdb {

std::tm LocalCalendarTime(std::time_t moment) {
  std::tm local{};
  tzset();  // localtime_r alone need not notice that the time zone was changed.
  localtime_r(&moment, &local);
  return local;
}

}  // namespace projectdb
