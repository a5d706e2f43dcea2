#pragma once

#include "Reading.h"
#include "ReadingFigures.h"
#include "StandInWorld.h"
#include "Support/Await.h"
#include "Support/TestConfig.h"

#include <QLoggingCategory>
#include <QTest>

#include <memory>

namespace torvane {

/// What the tests of a whole reading have in common: nodes that answer what is easy to work out, and others to fall
/// back to, new for each function.
class ReadingFixture : public QObject {
    Q_OBJECT

protected:
    static constexpr RequestGate::Limits wide{20, 20, 1e6};

    std::unique_ptr<StandInWorld> m_world;
    std::unique_ptr<StandInWorld> m_second; // The fallbacks.

    Reading read(const RelayTable& table) const {
        RequestGate gate(wide);
        return await(readAll(gate, table, StandInWorld::now()));
    }

    RelayTable ethereumAlone() const {
        RelayTable table = m_world->table();
        table.networks.clear();
        return table;
    }

    NetworkReading readRow(const RelayTable::Network& network) const {
        RequestGate gate(wide);
        return await(readNetwork(gate, network));
    }

private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=false")); }

    void init() {
        TestConfig::setTrustAnchorPath(StandInServer::certificatePath("ca"));
        m_world = std::make_unique<StandInWorld>();
        m_second = std::make_unique<StandInWorld>();
    }
};

} // namespace torvane
