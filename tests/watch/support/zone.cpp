#include "watch/support/zone.h"

#include "local_time.h"

#include <cstdlib>
#include <ctime>

namespace {

void forgetTheZoneBefore() {
  constexpr watch::EpochSeconds kFarAway = 200'000'000'000;
  tzset();
  watch::utcOffset(kFarAway);
}

}  // namespace

Zone::Zone(const char* zone) {
  setenv("TZ", zone, 1);
  forgetTheZoneBefore();
}

Zone::~Zone() {
  unsetenv("TZ");
  forgetTheZoneBefore();
}
