#pragma once

#include "hexbytes.h"

#include <QtCore/QByteArray>

#include <initializer_list>

// A whole small file, as canbus-monitor writes it: a section, its interface, a frame of the box, its answer.

inline const char *const kSection =
    "0a0d0d0a 44000000 4d3c2b1a 0100 0000 ffffffffffffffff"
    "0100 0700 6f6e20746865 6e 00"                       // comment: on then
    "0400 1400 63616e6275732d6d6f6e69746f7220312e302e30" // canbus-monitor 1.0.0
    "0000 0000"
    "44000000";
inline const char *const kInterface = "01000000 30000000 9300 0000 00000000"
                                      "0200 0a00 2f6465762f7474795333 0000" // name: /dev/ttyS3
                                      "0900 0100 06 000000"
                                      "0000 0000"
                                      "30000000";
// 1700000000000000 us is 00060a24 181e4000.
inline const char *const kReceived = "06000000 38000000 00000000 240a0600 00401e18 0a000000 0a000000"
                                     "9f02 2101 0100 01 20 9f03 0000"
                                     "0200 0400 01000000 0000 0000"
                                     "38000000";
inline const char *const kSent = "06000000 34000000 00000000 240a0600 0a401e18 06000000 06000000"
                                 "9f06 2121 9f03 0000"
                                 "0200 0400 02000000 0000 0000"
                                 "34000000";

inline QByteArray joined(std::initializer_list<const char *> parts)
{
    QByteArray all;
    for (const char *part : parts)
        all += bytes(part);
    return all;
}
