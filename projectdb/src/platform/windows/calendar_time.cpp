#include "platform/calendar_time.h"

namespace projectdb {

std::tm LocalCalendarTime(std::time_t moment) {
  std::tm local{};
  _tzset();
  localtime_s(&local, &moment);
  return local;
}

}  // namespace projectdb
