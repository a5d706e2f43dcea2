#include "PopoverPlacement.h"
#include "PopoverWindow.h"
#include "Support/SizedContent.h"

#include <QApplication>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

using namespace torvane;

namespace {

constexpr int width = SizedContent::fixedWidth;

} // namespace

/// The window upon a screen that is too small for its content.
class PopoverScrollTest final : public QObject {
    Q_OBJECT

    const QRect m_badge{600, 4, 22, 22};
    std::unique_ptr<PopoverWindow> m_window;
    SizedContent* m_content = nullptr;

    QRect area() const { return QGuiApplication::primaryScreen()->availableGeometry(); }
    QScrollBar* bar() const { return m_window->findChild<QScrollArea*>()->verticalScrollBar(); }

    void open(int height) {
        auto content = std::make_unique<SizedContent>(height);
        m_content = content.get();
        m_window = std::make_unique<PopoverWindow>(std::move(content), m_badge, area(), X11::Desktop());
        m_window->open();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

private Q_SLOTS:
    void cleanup() { m_window.reset(); }

    void contentTallerThanTheScreenScrolls() {
        open(5000);
        QVERIFY(area().contains(m_window->geometry()));
        QCOMPARE(m_window->size(), QSize(width, area().height()));
        QCOMPARE(m_content->size(), QSize(width, 5000));
        QTest::keyClick(m_window->windowHandle(), Qt::Key_PageDown);
        QVERIFY(bar()->value() > 0);
        QTRY_COMPARE(m_content->y(), -bar()->value());
    }

    void theBarLiesOverTheContentsMarginAndMovesIt() {
        open(5000);
        QTRY_VERIFY(bar()->isVisible());
        const QRect place(bar()->mapTo(m_window.get(), QPoint()), bar()->size());
        const int breadth = bar()->sizeHint().width();
        QCOMPARE(place, QRect(width - breadth, 0, breadth, area().height()));
        bar()->setValue(bar()->maximum());
        QTRY_COMPARE(m_content->y(), area().height() - 5000);
    }

    void contentThatBecomesTallScrolls() {
        open(500);
        QVERIFY(!bar()->isVisible());
        m_content->setHeight(5000);
        QTRY_VERIFY(bar()->isVisible());
        QTRY_COMPARE(m_content->size(), QSize(width, 5000));
        m_content->setHeight(400);
        QTRY_COMPARE(m_window->geometry(), PopoverPlacement::place({width, 400}, m_badge, area()));
        QTRY_COMPARE(m_content->size(), QSize(width, 400));
        QVERIFY(!bar()->isVisible());
    }

    void whatComesToLieUnderARestingPointerIsHovered() {
        open(5000);
        QList<QWidget*> rows;
        for (int i = 0; i < 100; ++i) {
            rows.append(new QWidget(m_content));
            rows.last()->setGeometry(0, i * 50, width, 50);
            rows.last()->show();
        }
        QTest::mouseMove(rows[2], {100, 25});
        QTRY_VERIFY(rows[2]->underMouse());
        bar()->setValue(50);
        QTRY_VERIFY(rows[3]->underMouse());
        QVERIFY(!rows[2]->underMouse());
        rows[0]->move(0, 150);
        rows[0]->raise();
        m_content->updateGeometry(); // As a layout does that has moved its parts.
        QTRY_VERIFY(rows[0]->underMouse());
        QVERIFY(!rows[3]->underMouse());
    }
};

QTEST_MAIN(PopoverScrollTest)
#include "PopoverScrollTest.moc"
