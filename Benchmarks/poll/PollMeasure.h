#pragma once

#include <QByteArray>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <sys/resource.h>
#include <vector>

/// What a measured program counts and prints: one line, "first MS median MS switches N", CPU milliseconds of the whole
/// process per request and voluntary context switches per request.
class PollMeasure final {
public:
    static QByteArray body() {
        return R"({"jsonrpc":"2.0","id":1,"method":"eth_feeHistory","params":["0x14","latest",[15,50,90]]})";
    }

    /// A request has ended.
    void count() {
        const double now = cpu();
        m_each.push_back(now - m_last);
        m_last = now;
        if (m_each.size() == 1)
            m_switches = switches();
    }

    std::size_t counted() const { return m_each.size(); }

    void print() {
        const double first = m_each.front();
        const auto others = static_cast<double>(m_each.size() - 1);
        const double perRequest = static_cast<double>(switches() - m_switches) / others;
        std::sort(m_each.begin() + 1, m_each.end());
        std::printf("first %.3f median %.4f switches %.2f\n", first, m_each[1 + (m_each.size() - 1) / 2], perRequest);
    }

private:
    static double cpu() {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    }

    static long switches() {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_nvcsw;
    }

    double m_last = cpu();
    long m_switches = 0;
    std::vector<double> m_each;
};
