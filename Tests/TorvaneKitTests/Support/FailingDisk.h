#pragma once

#include <QByteArray>

#include <functional>
#include <string_view>

/// A disk that fails on command. A program that links this unit has its own open, read, write, fsync, rename, link,
/// unlink, mkdir and flock: each passes on to the system's, except for the calls that are told to fail. Only calls that
/// concern one directory are counted.
namespace torvane::FailingDisk {

struct Fault {
    int call = 0;                      ///< which call fails, counted from 1; 0 for none
    int error = 0;                     ///< the errno that it leaves
    bool isLasting = false;            ///< all later calls fail too
    bool writesShort = false;          ///< no fault at all, but each write takes a few bytes only
    std::string_view only{};           ///< the one function whose calls count, such as "fsync"; empty for all
    bool kills = false;                ///< the process is killed at that call instead
    std::function<void()> meanwhile{}; ///< instead, what somebody else does just before that call, which passes
};

/// Starts counting the calls that concern what is below this directory.
void arm(const QByteArray& directory, const Fault& fault);

/// Ends it: the number of calls counted.
int disarm();

/// The function of one of the first calls that were counted, from 1; empty where it was not made.
std::string_view functionOf(int call);

} // namespace torvane::FailingDisk
