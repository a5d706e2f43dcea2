#pragma once

/// A network that fails on command. A program that links this unit has its own socket, connect, send, sendmsg, recv and
/// recvmsg, and its libraries take these too: each passes on to the system's, except for the calls that are told to
/// fail. Only sockets of one family count, and of these only the ones that connect while it is armed: what a test's own
/// servers accept, and what was connected before, is left alone.
namespace torvane::FailingSockets {

enum class Call { socket, connect, send, receive };
enum class Family { internet, local };

struct Fault {
    Call call = Call::socket;
    int number = 0;         ///< which of these calls fails, counted from 1; 0 for none
    int error = 0;          ///< the errno that it leaves
    bool isLasting = false; ///< all later calls of the kind fail too
};

/// Starts counting the calls of the fault's kind.
void arm(Family family, const Fault& fault);

/// Ends it: the number of calls counted.
int disarm();

} // namespace torvane::FailingSockets
