// The checks of the doctor: each looks at one thing that a run needs, and returns all that it
// finds.
//
// What can't be looked at is unknown, never well. No check changes anything.
#pragma once

#include "doctor/finding.h"
#include "doctor/workstation.h"

namespace watch {

/// The configuration file, line by line, and the values in force.
Findings checkSettings(const Workstation& workstation);
/// The start command, what it starts, and the folder of the fixed paths.
Findings checkInstallation(const Workstation& workstation);
/// Which ping is there, and whether the tester reads its summary.
Findings checkPing(const Workstation& workstation);
/// Where the fixed path of iperf3 leads, and what is there.
Findings checkIperf3(const Workstation& workstation);
/// Whether the server replies, and takes a connection, or a test.
Findings checkServer(const Workstation& workstation);
/// Whether a run can use HOME.
Findings checkHome(const Workstation& workstation);
bool canUseHome(const Workstation& workstation);
/// The log directory: its rights, its room, its archive, histories that do not move.
Findings checkLogs(const Workstation& workstation);
/// Whether the archive moves can open their file "nul", and what they have said there.
Findings checkNul(const Workstation& workstation);
/// Whether another run of the user is in progress.
Findings checkLock(const Workstation& workstation);
/// The hourly run: by systemd's timer or by cron.
Findings checkTimer(const Workstation& workstation);
/// Whether the network sets the clock.
Findings checkClock(const Workstation& workstation);
/// How long a run takes, and whether the hourly one lets it.
Findings checkDuration(const Workstation& workstation);

/// Makes all checks, in the order in which they are shown.
Findings examine(const Workstation& workstation);

}  // namespace watch
