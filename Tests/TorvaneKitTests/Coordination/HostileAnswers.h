#pragma once

#include "Support/StandInAnswer.h"

#include <QList>

#include <random>
#include <utility>

/// What a server may answer instead of what it was asked.
namespace torvane::HostileAnswers {

/// The answer to eth_feeHistory that a good node gives: base fee as told (gwei), tiers one, two and three gwei above.
QByteArray feeHistory(quint64 baseFee);

/// The answer to eth_gasPrice, in gwei.
QByteArray gasPrice(quint64 gwei);

/// One of the ways to spoil an answer: its transport, its length, or one of these bodies in the place of the good one.
StandInAnswer spoiled(const QByteArray& goodBody, const QList<std::pair<const char*, QByteArray>>& badBodies,
                      std::mt19937& random);

} // namespace torvane::HostileAnswers
