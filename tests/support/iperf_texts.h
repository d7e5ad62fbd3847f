// The texts of one iperf run that the tests of several parts tell of.
#pragma once

/// What iperf2 reports of it.
inline constexpr char kIperf2Report[] =
    "20201116054000,192.168.1.20,54012,192.168.1.10,5001,3,0.0-10.0,1180000000,943718400\n";

/// What is printed of that, without its numbers.
inline constexpr char kIperf2Connection[] =
    "date 20201116054000\n"
    "client ip 192.168.1.20\n"
    "server ip 192.168.1.10\n"
    "client tcp port 54012\n"
    "server tcp port 5001\n"
    "transfer ID 3\n"
    "test time 0.0-10.0\n";

/// The first seven columns of a line with texts of 32 characters, and what is printed of them.
inline constexpr char kLongColumns[] =
    "dddddddddddddddddddddddddddddddd,cccccccccccccccccccccccccccccccc,-1,"
    "ssssssssssssssssssssssssssssssss,-2,-3,tttttttttttttttttttttttttttttttt,";
inline constexpr char kLongConnection[] =
    "date dddddddddddddddddddddddddddddddd\n"
    "client ip cccccccccccccccccccccccccccccccc\n"
    "server ip ssssssssssssssssssssssssssssssss\n"
    "client tcp port -1\n"
    "server tcp port -2\n"
    "transfer ID -3\n"
    "test time tttttttttttttttttttttttttttttttt\n";

/// The lines that are kept of its directions by iperf3.
inline constexpr char kForwardLine[] =
    "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,1180000000,943718400,0,0\n";
inline constexpr char kReverseLine[] =
    "1605505183,192.168.1.20,54012,192.168.1.10,5201,0,10,0,0,1170000000,935718400\n";

/// What is printed of these, without their direction and numbers.
inline constexpr char kIperf3Connection[] =
    "date 1605505183\n"
    "client ip 192.168.1.20\n"
    "server ip 192.168.1.10\n"
    "client tcp port 54012\n"
    "server tcp port 5201\n"
    "transfer ID 0\n"
    "test time 10\n";
