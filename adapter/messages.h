// What an adapter itself says, in one line on standard error: "ping adapter: cannot run ...".
#pragma once

#include <string>

// The exit statuses by which a shell, too, says that a program cannot be run, or is not there.
constexpr int kCannotRunStatus = 126;
constexpr int kNotFoundStatus = 127;

/// Says `message` as the adapter of `tool`.
void complain(const std::string& tool, const std::string& message);

/// Says `message` as the adapter of `tool`, and ends this process with `status`.
[[noreturn]] void giveUp(const std::string& tool, const std::string& message, int status);

/// Returns "cannot TASK: " and the reason that errno holds.
std::string cannot(const std::string& task);
