#include "Support/AccessibleTree.h"
#include "TorvaneKitTests/Views/PreferencesFixture.h"

#include <QScrollArea>

using namespace torvane;
using namespace Qt::StringLiterals;
using Section = PreferencesView::Section;

/// What assistive technology is told of the preferences.
class PreferencesAccessibilityTest final : public QObject {
    Q_OBJECT

    std::unique_ptr<PreferencesFixture> m_user;

private Q_SLOTS:
    void init() { m_user = std::make_unique<PreferencesFixture>(); }
    void cleanup() { m_user.reset(); }

    void theSidebarIsAListOfTabs() {
        m_user->open(Section::alerts);
        const QStringList expected{
            u"PageTabList \"Sections\""_s,
            u"  StaticText \"velisk\""_s,
            u"  StaticText \"Version 0.3.0\""_s,
            u"  PageTab \"General\""_s,
            u"  PageTab \"Networks\""_s,
            u"  PageTab \"Menu Bar\""_s,
            u"  PageTab \"Alerts\" selected focused"_s,
            u"  PageTab \"Appearance\""_s,
            u"  PageTab \"About\""_s,
        };
        QCOMPARE(AccessibleTree::of(*m_user->view->findChild<Sidebar*>()).trimmed().split(u'\n'), expected);
    }

    void aTabCanBePressed() {
        m_user->open();
        QAccessibleInterface* tab = QAccessible::queryAccessibleInterface(m_user->item(Section::about));
        tab->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(m_user->view->section(), Section::about);
    }

    void everyControlOfAPanelHasItsRoleItsNameAndItsState_data() {
        QTest::addColumn<Section>("section");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("general") << Section::general
                                 << QStringList{u"Pane \"General\""_s,
                                                u"  Heading \"General\""_s,
                                                u"  StaticText \"Startup, units, and how often gas refreshes.\""_s,
                                                u"  StaticText \"Launch at login\""_s,
                                                u"  CheckBox \"Launch at login\""_s,
                                                u"  StaticText \"Show gas as\""_s,
                                                u"  Grouping \"Show gas as\""_s,
                                                u"    RadioButton \"gwei\" checked"_s,
                                                u"    RadioButton \"USD\""_s,
                                                u"  Heading \"Live gas cadence\""_s,
                                                u"  Grouping \"Live gas cadence\""_s,
                                                u"    RadioButton \"Per block\" checked"_s,
                                                u"    RadioButton \"15s\""_s,
                                                u"    RadioButton \"30s\""_s,
                                                u"    RadioButton \"60s\""_s};
        QTest::newRow("networks")
            << Section::networks
            << QStringList{
                   u"Pane \"Networks\""_s,
                   u"  Heading \"Networks\""_s,
                   u"  StaticText \"Choose which chains show in the popover.\""_s,
                   u"  StaticText \"Ethereum\""_s,
                   u"  StaticText \"Mainnet · Layer 1\""_s,
                   u"  StaticText \"Always\""_s,
                   u"  StaticText \"Base\""_s,
                   u"  StaticText \"Optimistic rollup\""_s,
                   u"  CheckBox \"Base\" checked"_s,
                   u"  StaticText \"Newcomer\""_s,
                   u"  StaticText \"Layer 2\""_s,
                   u"  CheckBox \"Newcomer\" checked"_s,
                   u"  StaticText \"Enabled networks appear in the popover's Layer 2 list. Ethereum mainnet is always shown.\""_s};
        QTest::newRow("menu bar")
            << Section::menuBar
            << QStringList{u"Pane \"Menu Bar\""_s,
                           u"  Heading \"Menu Bar\""_s,
                           u"  StaticText \"What the icon shows at the top of your screen.\""_s,
                           u"  StaticText \"Chain\""_s,
                           u"  StaticText \"Gas shown in the menu-bar badge\""_s,
                           u"  ComboBox \"Chain\" = Ethereum"_s,
                           u"  StaticText \"Show badge value\""_s,
                           u"  StaticText \"Number beside the fuel icon\""_s,
                           u"  CheckBox \"Show badge value\" checked"_s,
                           u"  StaticText \"Value\""_s,
                           u"  StaticText \"Which gas figure the Ethereum badge shows\""_s,
                           u"  Grouping \"Value\""_s,
                           u"    RadioButton \"Base fee\""_s,
                           u"    RadioButton \"Low\" checked"_s,
                           u"    RadioButton \"Average\""_s,
                           u"    RadioButton \"High\""_s,
                           u"  StaticText \"Colour icon\""_s,
                           u"  StaticText \"Off: the chain mark follows the menu bar, like every other icon\""_s,
                           u"  CheckBox \"Colour icon\""_s,
                           u"  StaticText \"Status dot\" disabled"_s,
                           u"  StaticText \"Status colour on the icon's corner · needs Colour icon\" disabled"_s,
                           u"  CheckBox \"Status dot\" checked disabled"_s};
        QTest::newRow("alerts") << Section::alerts
                                << QStringList{u"Pane \"Alerts\""_s,
                                               u"  Heading \"Alerts\""_s,
                                               u"  StaticText \"Get notified when gas is cheap.\""_s,
                                               u"  StaticText \"Notify when gas drops below\""_s,
                                               u"  StaticText \"Catch cheap windows to transact\""_s,
                                               u"  SpinBox \"Notify when gas drops below\" = 10 gwei"_s,
                                               u"    Button \"Decrease\""_s,
                                               u"    Button \"Increase\""_s,
                                               u"  StaticText \"Enable notifications\""_s,
                                               u"  CheckBox \"Enable notifications\""_s,
                                               u"  StaticText \"Play sound with notification\""_s,
                                               u"  CheckBox \"Play sound with notification\""_s};
        QTest::newRow("appearance") << Section::appearance
                                    << QStringList{u"Pane \"Appearance\""_s,
                                                   u"  Heading \"Appearance\""_s,
                                                   u"  StaticText \"Theme and status colours.\""_s,
                                                   u"  Heading \"Theme\""_s,
                                                   u"  Grouping \"Theme\""_s,
                                                   u"    RadioButton \"Auto\" checked"_s,
                                                   u"    RadioButton \"Light\""_s,
                                                   u"    RadioButton \"Dark\""_s,
                                                   u"  Heading \"Status colours\""_s,
                                                   u"  StaticText \"Low\""_s,
                                                   u"  StaticText \"Normal\""_s,
                                                   u"  StaticText \"Busy\""_s};
        QTest::newRow("about")
            << Section::about
            << QStringList{u"Pane \"About\""_s,
                           u"  Heading \"About\""_s,
                           u"  StaticText \"Version and software updates.\""_s,
                           u"  StaticText \"velisk\""_s,
                           u"  StaticText \"Version 0.3.0\""_s,
                           u"  StaticText \"Ethereum gas, from the velisk relay.\""_s,
                           u"  StaticText \"Automatically check for updates\""_s,
                           u"  StaticText \"Sparkle checks daily in the background\""_s,
                           u"  CheckBox \"Automatically check for updates\" checked"_s,
                           u"  StaticText \"Software update\""_s,
                           u"  StaticText \"Signed updates delivered via Sparkle\""_s,
                           u"  Button \"Check for Updates…\" disabled"_s,
                           u"  StaticText \"Updates are verified with an EdDSA signature before installing.\""_s};
    }

    void everyControlOfAPanelHasItsRoleItsNameAndItsState() {
        QFETCH(const Section, section);
        QFETCH(const QStringList, expected);
        m_user->store->snapshot = PreferencesFixture::snapshotOf({u"Base"_s, u"Newcomer"_s});
        m_user->open(section);
        QWidget* panel = m_user->view->findChild<QScrollArea*>()->widget();
        QCOMPARE(AccessibleTree::of(*panel).trimmed().split(u'\n'), expected);
    }
};

QTEST_MAIN(PreferencesAccessibilityTest)
#include "PreferencesAccessibilityTest.moc"
