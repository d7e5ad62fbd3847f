// The configuration file: optional lines of "key=value" that change the compiled defaults.
//
// Files: "/usr/local/bin/Qelmora/connTester.conf" (read).
#pragma once

#include <string>

inline constexpr char kConfigPath[] = "/usr/local/bin/Qelmora/connTester.conf";

/// Reads the configuration file into `ConfigurationParameters`. Without a readable file, all
/// defaults stand, silently.
///
/// Throws std::invalid_argument or std::out_of_range, as applyConfigLine() does.
void readConfigFile();

/// Applies the first key of `configFileKeys` that stands anywhere in `line`, with the text after
/// the first "=" as its value. A line without a key or without a "=" changes nothing.
///
/// Throws std::invalid_argument for a numeric key whose value does not start with a number, and
/// std::out_of_range for a number outside 32 bits; what() names the file, `lineNumber`, the key,
/// the text found and what would be right.
void applyConfigLine(const std::string& line, unsigned lineNumber);
