// The findings of the doctor, as people read them.
#pragma once

#include "doctor/finding.h"
#include "views/style.h"

#include <string>

namespace watch {

/// A line or more for each finding, in columns, and how many there are to mend and to look at.
std::string doctorView(const Findings& findings, const Style& style);

}  // namespace watch
