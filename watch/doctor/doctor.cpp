#include "doctor/doctor.h"

#include "doctor/checks.h"
#include "views/doctor.h"
#include "views/output.h"

#include <algorithm>

namespace watch {

namespace {

constexpr int kAllWell = 0;
constexpr int kToLookAt = 1;
constexpr int kToMend = 2;

int statusOf(const Findings& findings) {
  const auto isThere = [&](Level level) {
    return std::ranges::find(findings, level, &Finding::level) != findings.end();
  };
  if (isThere(Level::mend)) {
    return kToMend;
  }
  return isThere(Level::look) || isThere(Level::unknown) ? kToLookAt : kAllWell;
}

}  // namespace

int doctor(const DoctorRequest& request, EpochSeconds now) {
  const Findings findings = examine(findWorkstation(request.address, request.isTry, now));
  Output output(std::nullopt);
  output.write(doctorView(findings, styleOfStandardOutput()));
  output.finish();
  return statusOf(findings);
}

}  // namespace watch
