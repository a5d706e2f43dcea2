#include "TorvaneKitTests/Views/PreferencesFixture.h"
#include "Views/ChainPicker.h"
#include "Views/Stepper.h"
#include "Views/TextLabel.h"
#include "Views/TextLine.h"

#include <QFontInfo>
#include <QScrollArea>

using namespace torvane;
using namespace Qt::StringLiterals;
using Section = PreferencesView::Section;

namespace {

const QString endlessName = u"Network"_s + QString(80, u'W');

/// What a sidebar's item and a segment keep free at their sides, at least.
int paddingOf(const QAbstractButton& button) {
    return qobject_cast<const SidebarItem*>(&button) ? 8 + 12 + 9 + 8 : 2 + 2;
}

} // namespace

/// That no text of the preferences is cut off, in the font that the environment chooses: see Tests/CMakeLists.txt.
class PreferencesTextTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<PreferencesFixture> m_user;

    void everyLabelHasRoom() const {
        for (const TextLabel* label : m_user->view->findChildren<TextLabel*>()) {
            const int flags = static_cast<int>(label->alignment()) | (label->wordWrap() ? Qt::TextWordWrap : 0);
            const QRect needed = label->fontMetrics().boundingRect(label->contentsRect(), flags, label->text());
            QVERIFY2(label->contentsRect().contains(needed), qPrintable(label->text()));
        }
    }

    void everyButtonHasRoom() const {
        for (const QAbstractButton* button : m_user->view->findChildren<QAbstractButton*>()) {
            const int needed = button->fontMetrics().horizontalAdvance(button->text());
            QVERIFY2(button->text().isEmpty() || needed <= button->width() - paddingOf(*button),
                     qPrintable(button->text()));
            QVERIFY2(button->text().isEmpty() || button->fontMetrics().height() <= button->height(),
                     qPrintable(button->text()));
        }
    }

    void nothingReachesBeyondThePanel() const {
        const auto* area = m_user->view->findChild<QScrollArea*>();
        QCOMPARE(area->widget()->width(), area->viewport()->width());
    }

private Q_SLOTS:
    void init() { m_user = std::make_unique<PreferencesFixture>(); }
    void cleanup() { m_user.reset(); }

    void theFontIsTheOneThatWasAskedFor() {
        const QString wanted = qEnvironmentVariable("TORVANE_TEST_FONT");
        const QString family = QFontInfo(Fonts::sans(13, QFont::Normal)).family();
        QVERIFY2(wanted.isEmpty() || family == wanted, qPrintable(family + u" instead of "_s + wanted));
    }

    void noTextIsCutOff_data() {
        QTest::addColumn<Section>("section");
        for (const Section section : allCases<Section>())
            QTest::newRow(rawValue(section).data()) << section;
    }

    void noTextIsCutOff() {
        QFETCH(const Section, section);
        Snapshot snapshot = PreferencesFixture::snapshot();
        snapshot.l2.append(PreferencesFixture::snapshotOf({endlessName}).l2);
        m_user->store->snapshot = snapshot;
        m_user->open(section);
        everyLabelHasRoom();
        everyButtonHasRoom();
        nothingReachesBeyondThePanel();
    }

    void theLongestThresholdHasRoom() {
        m_user->settings->alert = std::numeric_limits<qint64>::min();
        m_user->open(Section::alerts);
        const auto* stepper = m_user->control<Stepper>(u"Notify when gas drops below"_s);
        QCOMPARE(stepper->width(), stepper->sizeHint().width());
        everyLabelHasRoom();
        nothingReachesBeyondThePanel();
    }

    void everyKnownNetworkHasRoomInThePicker() {
        m_user->store->snapshot = PreferencesFixture::snapshot();
        m_user->open(Section::menuBar);
        const auto* picker = m_user->control<ChainPicker>(u"Chain"_s);
        for (int i = 0; i < picker->count(); ++i)
            QVERIFY(picker->fontMetrics().horizontalAdvance(picker->itemText(i)) <= picker->width() - 10 - 25);
    }

    void anEndlessNameGivesWay() {
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s, endlessName});
        m_user->open(Section::networks);
        const QList<TextLine*> names = m_user->view->findChildren<TextLine*>();
        QCOMPARE(names.size(), 3);
        QCOMPARE(names[1]->text(), u"Base"_s);
        QVERIFY(names[1]->width() >= names[1]->sizeHint().width());
        QCOMPARE(names[2]->text(), endlessName);
        QVERIFY(names[2]->width() < names[2]->sizeHint().width());
    }
};

QTEST_MAIN(PreferencesTextTest)
#include "PreferencesTextTest.moc"
