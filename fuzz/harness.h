// What the fuzz targets share: the machine that an input meets, and the judgement of what follows.
//
// The shell does nothing and the sleep takes no time. Every trace is on.
//
// Files: LOG_PATH, a directory below /tmp (emptied for each input).
#pragma once

#include "promise.h"
#include "support/files.h"
#include "support/log_paths.h"

#include <cstddef>
#include <initializer_list>
#include <stdexcept>
#include <string>

/// The command lines that the shell was given since the start of the run.
extern std::size_t commandCount;

/// Puts the settings, the results and the log directory back to the start of a run, as each input
/// meets them.
void startRun();

/// Checks the ping history that a parser leaves: whole lines, as many as `outputResults` tells of,
/// and a move for each line from the tenth on. The parser has run `otherCommands` more.
void requireSoundPingHistory(std::size_t otherCommands);

/// Ends the process unless `message` starts with one of `documented`.
void requireDocumented(const std::string& message, std::initializer_list<const char*> documented);

/// Runs a reader and returns the message of the exception with which it ended; empty without one.
/// Only exceptions of a malformed number may end it, by messages that start with one of
/// `documented`. Any other exception is a finding.
template <typename Reader>
std::string endingOf(Reader reader, std::initializer_list<const char*> documented) {
  try {
    reader();
    return "";
  } catch (const std::invalid_argument& error) {
    requireDocumented(error.what(), documented);
    return error.what();
  } catch (const std::out_of_range& error) {
    requireDocumented(error.what(), documented);
    return error.what();
  }
}
