#include "Model/Snapshot.h"

#include "Support/JSON.h"

#include <QTest>

using namespace torvane;

class SnapshotTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aDocumentWithoutStakingFails() {
        try {
            JSON::decode<Snapshot>(
                R"({"generatedAt":"t","price":{"eth":1,"change24h":2},"gas":{"baseFee":1,"low":1,"avg":1,"high":1,"history":[1,2]},"l2":[]})");
            QFAIL("decoded");
        } catch (const DecodingError& error) {
            QCOMPARE(error.what(), "staking: missing");
        }
    }
};

QTEST_GUILESS_MAIN(SnapshotTest)
#include "SnapshotTest.moc"
