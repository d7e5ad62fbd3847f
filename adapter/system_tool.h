// The system's own tool, behind an adapter of its name.
//
// Environment: PATH (read); CONNTESTER_ADAPTERS (extended), by device and number the adapters that
// a call has come through, so that it comes through none twice.
#pragma once

#include <string>

/// Returns the path of the first executable `name` in PATH behind this program itself, or anywhere
/// in PATH when this program is not there; without one the first in the usual folders. An adapter
/// that the call has come through does not count, by whatever path: so this one doesn't.
///
/// Ends this program with status 127 when there is none, which `package` would bring on Debian;
/// with 126 where /proc does not tell this program's own file, as it does on Linux, and when the
/// call has come through this program before.
std::string findSystemTool(const std::string& name, const std::string& package);
