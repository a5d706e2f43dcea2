#include "Badge/BadgeDrawing.h"
#include "Badge/StatusItemBadge.h"
#include "Support/StandInPanel.h"

#include <QDBusVariant>
#include <QFontDatabase>
#include <QSignalSpy>
#include <QTest>

#include <array>
#include <memory>

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int limitMs = 30000;
constexpr std::array sizes{16, 22, 24, 32, 48, 64, 66};

FigureOutline outlineOf(const QString& figure) {
    return figureOutline(figure, QFontDatabase::systemFont(QFontDatabase::GeneralFont));
}

QImage drawn(const QString& figure, int size) {
    return badgeImage(outlineOf(figure), badgeColors(), size);
}

/// How many pixels of the rectangle are of this colour, whole or smoothed to the same half of the way from the plate.
int pixelsLike(const QImage& image, const QRect& rectangle, const QColor& colour) {
    int count = 0;
    for (int y = rectangle.top(); y <= rectangle.bottom(); ++y) {
        for (int x = rectangle.left(); x <= rectangle.right(); ++x) {
            if (image.pixelColor(x, y).blue() * 2 > colour.blue() + badgeColors().plate.blue())
                ++count;
        }
    }
    return count;
}

} // namespace

class BadgeTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shortFiguresAreDrawnAtEverySize_data() {
        QTest::addColumn<QString>("figure");
        for (const char* figure : {"9", "148", "12.3", "0.12"})
            QTest::newRow(figure) << QString::fromLatin1(figure);
        QTest::newRow("a dash") << u"—"_s;
    }

    void shortFiguresAreDrawnAtEverySize() {
        QFETCH(QString, figure);
        for (const int size : sizes) {
            const BadgeLayout layout = badgeLayout(outlineOf(figure), size);
            const QRectF bounds = layout.figure.boundingRect();
            QVERIFY(!layout.figure.isEmpty());
            QVERIFY(bounds.left() > 0.99 && bounds.right() < size - 0.99);
            QVERIFY(bounds.top() > layout.mark.bottom() && bounds.bottom() < size);
            QVERIFY(std::abs(bounds.center().x() - size / 2.0) < 0.01);
            const QImage image = drawn(figure, size);
            QVERIFY(pixelsLike(image, bounds.toAlignedRect(), badgeColors().ink) > 0);
            QVERIFY(pixelsLike(image, layout.mark.toAlignedRect(), badgeColors().markDark) > 0);
        }
    }

    void theMarkLiesWithinTheSquareAndInItsMiddle() {
        for (const int size : sizes) {
            for (const QString& figure : {QString(), u"12.3"_s}) {
                const QRectF mark = badgeLayout(outlineOf(figure), size).mark;
                QVERIFY(mark.top() >= 1 && mark.bottom() <= size - 1);
                QVERIFY(mark.height() >= 6 && mark.width() >= 3);
                QCOMPARE(mark.center().x(), size / 2.0);
            }
        }
    }

    void digitsStandOnWholePixels() {
        for (const int size : sizes) {
            const QRectF seven = badgeLayout(outlineOf(u"7"_s), size).figure.boundingRect();
            QVERIFY(std::abs(seven.bottom() - std::round(seven.bottom())) < 0.01);
            QVERIFY(std::abs(seven.top() - std::round(seven.top())) < 0.01);
        }
    }

    void otherFiguresLookDifferent() {
        for (const int size : sizes) {
            QVERIFY(drawn(u"12.3"_s, size) != drawn(u"12.8"_s, size));
            QVERIFY(drawn(u"148"_s, size) != drawn(QString(), size));
            QCOMPARE(drawn(u"148"_s, size), drawn(u"148"_s, size));
            QCOMPARE(drawn(u"148"_s, size).size(), QSize(size, size));
        }
    }

    void whatCannotBeReadLeavesTheMarkAlone_data() {
        QTest::addColumn<QString>("figure");
        QTest::newRow("a long figure") << u"0.000123"_s;
        QTest::newRow("a figure with a unit") << u"12.34 gwei"_s;
        QTest::newRow("blanks") << u"   "_s;
        QTest::newRow("a text without end") << QString(100000, u'8');
        QTest::newRow("what cannot be drawn") << QString(QChar(0xd800)) + QChar(0) + u'\n';
    }

    void whatCannotBeReadLeavesTheMarkAlone() {
        QFETCH(QString, figure);
        for (const int size : sizes)
            QCOMPARE(drawn(figure, size), drawn(QString(), size));
    }

    void theSmallestSizesGiveUpFirst() {
        QVERIFY(badgeLayout(outlineOf(u"0.004"_s), 16).figure.isEmpty());
        QVERIFY(!badgeLayout(outlineOf(u"0.004"_s), 22).figure.isEmpty());
    }

    void theBadgeIsReadableOnAnyPanel() {
        const auto luminance = [](const QColor& colour) {
            const auto part = [](double value) {
                return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
            };
            return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
        };
        const BadgeColors colors = badgeColors();
        const double plate = luminance(colors.plate) + 0.05;
        QCOMPARE(colors.plate.alpha(), 255);                 // What lies behind cannot shine through.
        QVERIFY((luminance(colors.ink) + 0.05) / plate > 7); // WCAG 2.1, contrast (enhanced)
        QVERIFY((luminance(colors.markDark) + 0.05) / plate > 4.5);
        QCOMPARE(drawn(u"12.3"_s, 22).pixelColor(11, 0), colors.plate);
        QCOMPARE(drawn(u"12.3"_s, 22).pixelColor(0, 0).alpha() < 255, true);
    }

    void anEqualLookIsNeitherDrawnNorSent() {
        start();
        m_badge->show({u"12.3"_s, u"Ethereum gas"_s, u"12.3 gwei"_s});
        QVERIFY(m_panel->signalsSoFar().contains(u"NewIcon"_s));
        const qint64 picture = m_badge->images().at(0).cacheKey();
        m_badge->show({u"12.3"_s, u"Ethereum gas"_s, u"12.3 gwei"_s});
        QCOMPARE(m_panel->signalsSoFar(), QStringList());
        m_badge->show({u"12.3"_s, u"Base gas"_s, u"12.3 gwei"_s});
        QCOMPARE(m_panel->signalsSoFar(), (QStringList{u"NewTitle"_s, u"NewToolTip"_s}));
        QCOMPARE(m_badge->images().at(0).cacheKey(), picture);
        m_badge->show({u"12.4"_s, u"Base gas"_s, u"12.3 gwei"_s});
        QCOMPARE(m_panel->signalsSoFar(), QStringList{u"NewIcon"_s});
        QVERIFY(m_badge->images().at(0).cacheKey() != picture);
    }

    void thePanelHasThePicturesAndTheTexts() {
        start();
        m_badge->show({u"12.3"_s, u"Ethereum gas"_s, u"12.3 gwei"_s});
        QCOMPARE(m_panel->property(u"Title"_s), u"Ethereum gas: 12.3 gwei"_s);
        const auto toolTip = qdbus_cast<NotifierToolTip>(m_panel->property(u"ToolTip"_s));
        QCOMPARE(toolTip.title, u"Ethereum gas"_s);
        QCOMPARE(toolTip.text, u"12.3 gwei"_s);
        const auto icons = qdbus_cast<QList<NotifierPixmap>>(m_panel->property(u"IconPixmap"_s));
        QCOMPARE(icons.size(), qsizetype(sizes.size()));
        for (qsizetype i = 0; i < icons.size(); ++i) {
            QCOMPARE(icons[i].width, sizes[size_t(i)]);
            QCOMPARE(icons[i], notifierPixmaps({drawn(u"12.3"_s, icons[i].width)}).at(0));
        }
    }

    void beforeTheFirstLookTheMarkIsThere() {
        start();
        const auto icons = qdbus_cast<QList<NotifierPixmap>>(m_panel->property(u"IconPixmap"_s));
        QCOMPARE(icons, notifierPixmaps(m_badge->images()));
        QCOMPARE(m_badge->images().at(1), drawn(QString(), 22));
    }

    void theMenuRefreshesAndQuits() {
        start();
        QSignalSpy refresh(m_badge.get(), &StatusItemBadge::refreshRequested);
        QSignalSpy quit(m_badge.get(), &StatusItemBadge::quitRequested);
        choose(u"Refresh Now"_s);
        QTRY_COMPARE_WITH_TIMEOUT(refresh.size(), 1, limitMs);
        QVERIFY(quit.isEmpty());
        choose(u"Quit velisk"_s);
        QTRY_COMPARE_WITH_TIMEOUT(quit.size(), 1, limitMs);
        QCOMPARE(refresh.size(), 1);
    }

    void aClickIsHandedOn() {
        start();
        QSignalSpy activated(m_badge.get(), &StatusItemBadge::activated);
        m_panel->call(u"org.kde.StatusNotifierItem"_s, u"Activate"_s, {3, 4});
        QTRY_COMPARE_WITH_TIMEOUT(activated, QList<QVariantList>{{QPoint(3, 4)}}, limitMs);
    }

    void cleanup() {
        m_badge.reset();
        m_panel.reset();
        m_bus.reset();
    }

private:
    void start() {
        m_bus = std::make_unique<PrivateBus>();
        m_panel = std::make_unique<StandInPanel>(*m_bus);
        QVERIFY(m_panel->appear());
        m_badge = std::make_unique<StatusItemBadge>(m_bus->connect());
        QTRY_VERIFY_WITH_TIMEOUT(m_badge->isRegistered(), limitMs);
        m_panel->signalsSoFar();
    }

    /// Clicks the menu's entry of this label, as a panel does.
    void choose(const QString& label) {
        const QDBusMessage reply =
            m_panel->call(u"com.canonical.dbusmenu"_s, u"GetLayout"_s, {0, 1, QStringList{u"label"_s}});
        const auto root = qdbus_cast<MenuLayout>(reply.arguments().value(1));
        for (const QVariant& child : root.children) {
            const auto entry = qdbus_cast<MenuLayout>(child);
            if (entry.properties.value(u"label"_s) == label)
                m_panel->call(u"com.canonical.dbusmenu"_s, u"Event"_s,
                              {entry.id, u"clicked"_s, QVariant::fromValue(QDBusVariant(0)), 0U});
        }
    }

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<StandInPanel> m_panel;
    std::unique_ptr<StatusItemBadge> m_badge;
};

QTEST_MAIN(BadgeTest)
#include "BadgeTest.moc"
