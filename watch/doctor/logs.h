// How much room the log directory has to have.
#pragma once

#include "doctor/finding.h"

#include <cstdint>
#include <optional>
#include <string>

namespace watch {

/// Says how it is for so many free bytes in the directory `name`.
Finding judgeRoom(const std::string& name, std::optional<std::uint64_t> bytes);

}  // namespace watch
