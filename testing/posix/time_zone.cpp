#include "testing/time_zone.h"

#include <cstdlib>
#include <ctime>

namespace test_support {

void SetTimeZone(const char* zone) {
  if (zone) {
    setenv("TZ", zone, 1);
  } else {
    unsetenv("TZ");
  }
  tzset();
}

}  // namespace test_support
