#include "Questions.h"

namespace torvane {

Task<Words> ChainAtBlock::call(ContractCall call) const {
    const CallParams params{call, block};
    const Nodes::Check<Words> check = [](const Words& words) {
        if (words.count() == 0)
            throw NoContract();
    };
    Task<Words> answer = nodes.ask<Words>(QStringLiteral("eth_call"), params, check);
    const Words words = co_await answer;
    co_return words;
}

Task<> askChainId(Nodes& nodes, QString method, QString expected) {
    const Nodes::Check<QString> check = [expected](const QString& id) {
        if (id.compare(expected, Qt::CaseInsensitive) != 0)
            throw DecodingError(DecodingError::Cause::corrupted, "it serves another chain");
    };
    Task<> answers = nodes.askEach<QString>(method, EmptyRPCParams{}, check);
    co_await answers;
}

} // namespace torvane
