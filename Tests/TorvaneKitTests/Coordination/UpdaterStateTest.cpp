#include "Coordination/UpdaterState.h"

#include <QTest>

using namespace torvane;

class UpdaterStateTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingCanBeCheckedUntilSomeoneSaysSo() {
        const UpdaterState state;
        QVERIFY(!state.canCheck.value());
        QVERIFY(state.automaticChecks.value());
    }

    void withoutABridgeTheActionsDoNothing() {
        UpdaterState state;
        state.check();
        state.setAutomatic(false);
        QVERIFY(!state.automaticChecks.value());
    }

    void aCheckIsPassedOnEvenWhenItCannotStart() {
        UpdaterState state;
        int checks = 0;
        state.onCheck = [&checks] { ++checks; };
        state.check();
        QVERIFY(!state.canCheck.value());
        QCOMPARE(checks, 1);
    }

    void observersHearOfTheAutomaticChecksBeforeTheBridgeIsTold() {
        UpdaterState state;
        QStringList heard;
        state.automaticChecks.observe(&state, [&](bool next) {
            heard.append(QStringLiteral("will be %1, is %2").arg(next).arg(state.automaticChecks.value()));
        });
        state.onSetAutomatic = [&](bool automatic) {
            heard.append(QStringLiteral("bridge %1, is %2").arg(automatic).arg(state.automaticChecks.value()));
        };
        state.setAutomatic(false);
        QCOMPARE(heard, (QStringList{QStringLiteral("will be 0, is 1"), QStringLiteral("bridge 0, is 0")}));
    }
};

QTEST_GUILESS_MAIN(UpdaterStateTest)
#include "UpdaterStateTest.moc"
