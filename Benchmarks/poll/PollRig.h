#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <vector>

/// Says why nothing can be measured, and ends the program with 2.
[[noreturn]] void giveUp(const QString& why);

/// An nginx of its own on a loopback port that gives every request a node's answer to eth_feeHistory, of the size that
/// real ones have: 20 blocks, three percentiles. Ends with this.
class NodeServer final {
public:
    NodeServer();
    ~NodeServer();

    /// Its address. At the path "/close" each connection is closed after its answer.
    QString url(const char* path) const;

private:
    QTemporaryDir m_folder;
    quint16 m_port;
    QProcess m_process;
};

/// What a measured program prints (PollMeasure): CPU milliseconds, and voluntary context switches, per request.
struct PollFigures {
    double first;
    double median;
    double switches;
};

/// Runs a program that lies beside this one.
PollFigures measurePolls(const QString& program, const QStringList& arguments);

/// The medians of several rounds.
PollFigures medianOf(const std::vector<PollFigures>& rounds);
