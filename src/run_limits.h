// The log directory below HOME, and how long HOME and the address may be. Holds no state of its
// own.
#pragma once

#include "log_files.h"
#include "run_state.h"

#include <cstddef>

inline constexpr char kLogDirectory[] = "/Library/Logs/Qelmora/";
inline constexpr char kArchiveDirectory[] = "archive/";

/// The longest command line moves a history. It holds LOG_PATH twice, which is left out here.
inline constexpr std::size_t kLongestCommand =
    sizeof("mv   \n") + kLongestLiveName + sizeof(kArchiveDirectory) - 1 + kLongestArchivedName;

/// Longest LOG_PATH with which every command line fits `cmd`, and every path its buffer.
inline constexpr std::size_t kMaxLogPathLength = (sizeof(cmd) - kLongestCommand) / 2;
static_assert(kMaxLogPathLength + kLongestLiveName < kPathCapacity);
inline constexpr std::size_t kMaxHomeLength = kMaxLogPathLength - (sizeof(kLogDirectory) - 1);

inline constexpr std::size_t kMaxAddressLength = sizeof(ipaddr) - 1;
