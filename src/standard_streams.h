// The standard streams, made safe for a program that starts others.
#pragma once

/// Opens each closed one of descriptors 0 to 2 on /dev/null, so that no log file takes its place,
/// and makes standard output pass on each line as it is printed, so that an abnormal end loses
/// none. Comes before anything is printed.
void prepareStandardStreams();
