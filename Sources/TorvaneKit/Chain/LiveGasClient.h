#pragma once

#include "Chain/LiveQuotes.h"
#include "Model/Snapshot.h"
#include "Support/Async.h"

#include <exception>

namespace torvane {

/// There is no endpoint that could be asked, or an endpoint's text is no URL.
class LiveGasFailure final : public std::exception {
public:
    enum class Case { noRPC, invalidURL };

    explicit LiveGasFailure(Case which)
        : m_case(which) {}

    Case which() const { return m_case; }

    const char* what() const noexcept override { return m_case == Case::noRPC ? "No endpoint" : "Not a URL"; }

private:
    Case m_case;
};

/// Asks public nodes for live figures. Endpoints are tried in order, each once, and each call starts again at the
/// first; when all fail, the last one's error is thrown as it came.
struct LiveGasClient {
    /// What gas on Ethereum costs, by eth_feeHistory from the configured endpoints.
    Task<LiveGasQuote> ethereum() const;

    /// A network's gas price, by eth_gasPrice from its own endpoints.
    Task<LiveL2Quote> l2(L2Entry network) const;
};

} // namespace torvane
