#include "Support/Published.h"

#include <QTest>

#include <memory>

using namespace torvane;

namespace {

class Lamp final : public ObservableObject {
public:
    Published<int> brightness{this, 1};
    Published<QString> colour{this, QStringLiteral("white")};
};

} // namespace

class PublishedTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void observersAreToldTheNewValueWhileTheOldOneCanBeRead() {
        Lamp lamp;
        QList<std::pair<int, int>> seen;
        lamp.brightness.observe(this, [&](int announced) { seen.append({announced, lamp.brightness.value()}); });
        lamp.brightness = 5;
        QCOMPARE(seen, (QList<std::pair<int, int>>{{5, 1}}));
        QCOMPARE(lamp.brightness.value(), 5);
    }

    void theOwnersObserversAreToldBeforeThePropertysOwn() {
        Lamp lamp;
        QStringList order;
        lamp.brightness.observe(this, [&](int) { order.append(QStringLiteral("property")); });
        connect(&lamp, &ObservableObject::objectWillChange, this, [&] {
            QCOMPARE(lamp.brightness.value(), 1);
            order.append(QStringLiteral("owner"));
        });
        lamp.brightness = 5;
        QCOMPARE(order, (QStringList{QStringLiteral("owner"), QStringLiteral("property")}));
    }

    void equalValuesAreAnnouncedToo() {
        Lamp lamp;
        int announced = 0;
        lamp.brightness.observe(this, [&](int) { ++announced; });
        lamp.brightness = 1;
        lamp.brightness = 1;
        QCOMPARE(announced, 2);
    }

    void onlyThePropertysOwnObserversHearOfIt() {
        Lamp lamp;
        int announced = 0;
        lamp.colour.observe(this, [&](const QString&) { ++announced; });
        lamp.brightness = 5;
        QCOMPARE(announced, 0);
        lamp.colour = QStringLiteral("red");
        QCOMPARE(announced, 1);
    }

    void anObserverWhoseContextIsGoneIsNotCalled() {
        Lamp lamp;
        int announced = 0;
        auto context = std::make_unique<QObject>();
        lamp.brightness.observe(context.get(), [&](int) { ++announced; });
        lamp.brightness = 2;
        context.reset();
        lamp.brightness = 3;
        QCOMPARE(announced, 1);
    }

    void aContextMayGoInsideTheAnnouncement() {
        Lamp lamp;
        auto* first = new QObject;
        auto second = std::make_unique<QObject>();
        int secondTold = 0;
        lamp.brightness.observe(first, [&](int) {
            second.reset();
            delete first;
        });
        lamp.brightness.observe(second.get(), [&](int) { ++secondTold; });
        lamp.brightness = 2;
        QCOMPARE(secondTold, 0);
        QCOMPARE(lamp.brightness.value(), 2);
    }

    void anObserverMayStopObserving() {
        Lamp lamp;
        int announced = 0;
        const QMetaObject::Connection connection = lamp.brightness.observe(this, [&](int) { ++announced; });
        lamp.brightness = 2;
        disconnect(connection);
        lamp.brightness = 3;
        QCOMPARE(announced, 1);
    }

    void anObserverMayObserveAndAssignAnotherProperty() {
        Lamp lamp;
        int laterTold = 0;
        lamp.brightness.observe(this, [&](int value) {
            lamp.colour.observe(this, [&](const QString&) { ++laterTold; });
            if (value == 0)
                lamp.colour = QStringLiteral("black");
        });
        lamp.brightness = 0;
        QCOMPARE(lamp.colour.value(), QStringLiteral("black"));
        QCOMPARE(laterTold, 1);
    }

    void theOuterAssignmentIsTheLastToTakeEffect() {
        Lamp lamp;
        QList<int> announced;
        lamp.brightness.observe(this, [&](int value) {
            announced.append(value);
            if (value == 2)
                lamp.brightness = 3;
        });
        lamp.brightness = 2;
        QCOMPARE(announced, (QList<int>{2, 3}));
        QCOMPARE(lamp.brightness.value(), 2);
    }
};

QTEST_GUILESS_MAIN(PublishedTest)
#include "PublishedTest.moc"
