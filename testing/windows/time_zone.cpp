#include "testing/time_zone.h"

#include <cstdlib>
#include <ctime>

namespace test_support {

void SetTimeZone(const char* zone) {
  _putenv_s("TZ", zone ? zone : "");
  _tzset();
}

}  // namespace test_support
