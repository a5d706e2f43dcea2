#pragma once

#include "TorvaneKitTests/Coordination/LiveStore.h"

#include <QLoggingCategory>
#include <QObject>

#include <memory>

namespace torvane {

/// What the tests of a store among its servers have in common: a new one for each function.
class LiveStoreFixture : public QObject {
    Q_OBJECT

protected:
    std::unique_ptr<LiveStore> m_live;

private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules(QStringLiteral("org.velisk.Torvane.net.info=false")); }

    void init() {
        m_live = std::make_unique<LiveStore>();
        prepare();
    }

    void cleanup() { m_live.reset(); }

private:
    /// Before each function, once the store's surroundings are there.
    virtual void prepare() {}
};

} // namespace torvane
