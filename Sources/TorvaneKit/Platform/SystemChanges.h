#pragma once

#include "Support/FileDescriptor.h"

#include <QByteArray>
#include <QObject>
#include <QTimer>

#include <functional>

namespace torvane {

/// A timer of the kernel's that becomes readable when the real-time clock jumps: it is set, or the machine wakes from
/// sleep (timerfd_create(2), TFD_TIMER_CANCEL_ON_SET). It costs no wakeup otherwise.
FileDescriptor clockJumpDescriptor();

/// A socket that tells of addresses that come and go, as they do with their links (rtnetlink(7)).
FileDescriptor networkDescriptor();

/// The addresses by which this machine reaches others, a line for each with its interface, sorted.
QByteArray outsideAddresses();

/// Tells when what was known of the outside no longer holds. Needs neither a bus nor a service.
class SystemChanges final : public QObject {
    Q_OBJECT

public:
    SystemChanges()
        : SystemChanges(clockJumpDescriptor(), networkDescriptor(), &outsideAddresses) {}

    /// Watches these descriptors; one that is not open is never heard of.
    SystemChanges(FileDescriptor clock, FileDescriptor network, std::function<QByteArray()> addresses);

Q_SIGNALS:
    /// The machine slept, or its clock was set.
    void timeJumped();

    /// This machine's addresses are others than before. Said once when they have been at rest for a second: a network
    /// that comes up says much at a time.
    void networkChanged();

private:
    void clockIsReadable();
    void networkIsReadable();
    void compareAddresses();

    FileDescriptor m_clock;
    FileDescriptor m_network;
    const std::function<QByteArray()> m_readAddresses;
    QByteArray m_addresses;
    QTimer m_rest;
};

} // namespace torvane
