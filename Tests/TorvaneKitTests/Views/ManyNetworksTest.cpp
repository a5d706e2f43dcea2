#include "Support/PaintCounter.h"
#include "Support/PopoverReading.h"
#include "TorvaneKitTests/Views/PreferencesFixture.h"
#include "Views/ChainPicker.h"
#include "Views/PopoverView.h"
#include "Views/ShownNetworks.h"
#include "Views/Switch.h"

#include <QLocale>

using namespace torvane;
using namespace torvane::PopoverReading;
using namespace Qt::StringLiterals;
using Section = PreferencesView::Section;

namespace {

/// About as many as a document of the largest size can name.
constexpr qsizetype manyNetworks = 400'000;

Snapshot snapshotOf(qsizetype count) {
    Snapshot snapshot = PreferencesFixture::snapshot();
    L2Entry model = snapshot.l2.first();
    model.history = QList<double>{1, 2};
    snapshot.l2.clear();
    for (qsizetype i = 1; i <= count; ++i) {
        model.name = u'N' + QString::number(i);
        snapshot.l2.append(model);
    }
    return snapshot;
}

} // namespace

/// A document that names more networks than anybody looks through costs the windows no more than a long one.
class ManyNetworksTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<PreferencesFixture> m_user;

    qsizetype switches() const { return m_user->view->findChildren<Switch*>().size(); }

private Q_SLOTS:
    void init() {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        m_user = std::make_unique<PreferencesFixture>();
    }

    void cleanup() { m_user.reset(); }

    void thePopoverListsTheFirstAndSaysHowManyMoreThereAre() {
        m_user->store->snapshot = snapshotOf(manyNetworks);
        const PopoverView view(*m_user->store, *m_user->settings);
        const QStringList names = rowNames(view);
        QCOMPARE(names.size(), mostShownNetworks);
        QCOMPARE(names.last(), u"N1000"_s);
        QVERIFY(lines(view).contains(u"and 399,000 more"_s));
    }

    void thePopoverFollowsWhenTheyBecomeFew() {
        m_user->store->snapshot = snapshotOf(mostShownNetworks + 1);
        PopoverView view(*m_user->store, *m_user->settings);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view, 30'000));
        QVERIFY(lines(view).contains(u"and 1 more"_s));
        const int before = view.sizeHint().height();
        m_user->settings->toggle(u"N7"_s);
        PaintCounter::settle();
        QCOMPARE(rowNames(view).size(), mostShownNetworks);
        QVERIFY(lines(view).filter(u"more"_s).isEmpty());
        QCOMPARE(view.sizeHint().height(), before - 24);
        m_user->store->snapshot = snapshotOf(2);
        PaintCounter::settle();
        QCOMPARE(rowNames(view), (QStringList{u"N1"_s, u"N2"_s}));
        m_user->store->snapshot = snapshotOf(mostShownNetworks + 3);
        PaintCounter::settle();
        QCOMPARE(lines(view).filter(u"more"_s), QStringList{u"and 2 more"_s}); // N7 is still switched off.
        QCOMPARE(rowNames(view).last(), u"N1001"_s);
    }

    void thePreferencesHaveSwitchesForTheFirstAndSayHowManyMoreThereAre() {
        m_user->store->snapshot = snapshotOf(manyNetworks);
        m_user->open(Section::networks);
        QCOMPARE(switches(), mostShownNetworks);
        QVERIFY(m_user->texts().contains(u"and 399,000 more"_s));
        m_user->store->snapshot = snapshotOf(manyNetworks + 1);
        QVERIFY(m_user->texts().contains(u"and 399,001 more"_s));
        m_user->store->snapshot = snapshotOf(mostShownNetworks);
        QCOMPARE(switches(), mostShownNetworks);
        QVERIFY(m_user->texts().filter(u"more"_s).isEmpty());
    }

    void thePickerOffersTheFirst() {
        m_user->store->snapshot = snapshotOf(manyNetworks);
        m_user->open(Section::menuBar);
        const auto* picker = m_user->control<ChainPicker>(u"Chain"_s);
        QCOMPARE(picker->count(), static_cast<int>(mostShownNetworks) + 1); // And Ethereum.
        QCOMPARE(picker->itemText(picker->count() - 1), u"N1000"_s);
    }
};

QTEST_MAIN(ManyNetworksTest)
#include "ManyNetworksTest.moc"
