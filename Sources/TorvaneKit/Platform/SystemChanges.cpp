#include "Platform/SystemChanges.h"

#include <QList>
#include <QSocketNotifier>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <ifaddrs.h>
#include <limits>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <netdb.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace torvane {

namespace {

using namespace std::chrono_literals;

/// Arms the timer for a day that does not come; only a jump of the clock ends it.
void arm(int clock) {
    itimerspec never{};
    never.it_value.tv_sec = std::numeric_limits<std::time_t>::max();
    timerfd_settime(clock, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &never, nullptr);
}

/// An interface's name with its address, or nothing where the address leads nowhere.
QByteArray describe(const ifaddrs& entry) {
    const bool leadsOut = entry.ifa_addr && (entry.ifa_flags & IFF_UP) && !(entry.ifa_flags & IFF_LOOPBACK);
    if (!leadsOut || (entry.ifa_addr->sa_family != AF_INET && entry.ifa_addr->sa_family != AF_INET6))
        return {};
    const socklen_t size = entry.ifa_addr->sa_family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
    std::array<char, NI_MAXHOST> host{};
    if (getnameinfo(entry.ifa_addr, size, host.data(), host.size(), nullptr, 0, NI_NUMERICHOST) != 0)
        return {};
    return QByteArray(entry.ifa_name) + ' ' + host.data();
}

} // namespace

FileDescriptor clockJumpDescriptor() {
    FileDescriptor clock(timerfd_create(CLOCK_REALTIME, TFD_CLOEXEC | TFD_NONBLOCK));
    if (clock.isOpen())
        arm(clock.get());
    return clock;
}

FileDescriptor networkDescriptor() {
    FileDescriptor network(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
    sockaddr_nl groups{};
    groups.nl_family = AF_NETLINK;
    groups.nl_groups = RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    if (!network.isOpen() || bind(network.get(), reinterpret_cast<const sockaddr*>(&groups), sizeof groups) != 0)
        return FileDescriptor(-1);
    return network;
}

QByteArray outsideAddresses() {
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0)
        return {};
    QList<QByteArray> all;
    for (const ifaddrs* entry = first; entry; entry = entry->ifa_next) {
        if (const QByteArray description = describe(*entry); !description.isEmpty())
            all.append(description);
    }
    freeifaddrs(first);
    std::sort(all.begin(), all.end()); // The kernel's order may differ from one time to the next.
    return all.join('\n');
}

SystemChanges::SystemChanges(FileDescriptor clock, FileDescriptor network, std::function<QByteArray()> addresses)
    : m_clock(std::move(clock))
    , m_network(std::move(network))
    , m_readAddresses(std::move(addresses)) {
    if (m_clock.isOpen()) {
        auto* notifier = new QSocketNotifier(m_clock.get(), QSocketNotifier::Read, this);
        connect(notifier, &QSocketNotifier::activated, this, &SystemChanges::clockIsReadable);
    }
    if (m_network.isOpen()) {
        m_addresses = m_readAddresses();
        auto* notifier = new QSocketNotifier(m_network.get(), QSocketNotifier::Read, this);
        connect(notifier, &QSocketNotifier::activated, this, &SystemChanges::networkIsReadable);
    }
    m_rest.setSingleShot(true);
    m_rest.setInterval(1s);
    connect(&m_rest, &QTimer::timeout, this, &SystemChanges::compareAddresses);
}

void SystemChanges::clockIsReadable() {
    quint64 expirations = 0;
    // The kernel reports the jump as an error, ECANCELED; read or not, the timer must be armed anew.
    [[maybe_unused]] const ssize_t count = read(m_clock.get(), &expirations, sizeof expirations);
    arm(m_clock.get());
    Q_EMIT timeJumped();
}

void SystemChanges::networkIsReadable() {
    std::array<char, 8192> message{}; // Only that it came matters.
    // An error of the socket, such as messages lost, means that something changed as well.
    while (recv(m_network.get(), message.data(), message.size(), 0) > 0) {
    }
    m_rest.start();
}

/// Routers announce themselves again and again, which renews addresses and changes none.
void SystemChanges::compareAddresses() {
    QByteArray current = m_readAddresses();
    if (current == m_addresses)
        return;
    m_addresses = std::move(current);
    Q_EMIT networkChanged();
}

} // namespace torvane
