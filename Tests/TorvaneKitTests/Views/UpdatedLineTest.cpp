#include "Views/UpdatedLine.h"

#include "Support/Clock.h"
#include "Support/PaintCounter.h"

using namespace torvane;
using namespace Qt::StringLiterals;

namespace {

qint64 shiftMs = 0;

/// Goes on as time does, from where the test has moved it.
QDateTime shiftedTime() {
    return QDateTime::currentDateTimeUtc().addMSecs(shiftMs);
}

bool isRed(const QColor& color) {
    return color.red() > color.blue() + 20;
}

/// Whether any of it is in the warning colour, which is the one that is not grey.
bool warns(UpdatedLine& line) {
    QImage image(line.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    line.render(&image, {}, {}, QWidget::DrawChildren);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (isRed(image.pixelColor(x, y)))
                return true;
        }
    }
    return false;
}

} // namespace

class UpdatedLineTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        shiftMs = 0;
        Clock::setSource(&shiftedTime);
        m_line = std::make_unique<UpdatedLine>();
        m_line->resize(200, 14);
    }

    void cleanup() {
        m_line.reset();
        Clock::setSource(nullptr);
    }

    void theAgeCountsOnByItself() {
        m_line->show();
        m_line->setTime(Clock::now().addMSecs(-59000));
        QCOMPARE(m_line->text(), u"Updated just now"_s);
        QTRY_COMPARE_WITH_TIMEOUT(m_line->text(), u"Updated 1m ago"_s, 60000);
    }

    void itCountsOnFromOneMinuteToTheNext() {
        m_line->show();
        m_line->setTime(Clock::now().addMSecs(-119500));
        QCOMPARE(m_line->text(), u"Updated 1m ago"_s);
        QTRY_COMPARE_WITH_TIMEOUT(m_line->text(), u"Updated 2m ago"_s, 60000);
        QCOMPARE(runningTimers(), 1);
    }

    void oldDataAreSetOffWithoutAPublish() {
        m_line->show();
        m_line->setTime(Clock::now().addMSecs(-600500));
        QCOMPARE(m_line->text(), u"Updated 10m ago"_s);
        QVERIFY(!warns(*m_line));
        QTRY_VERIFY_WITH_TIMEOUT(warns(*m_line), 60000);
        QCOMPARE(m_line->text(), u"Updated 10m ago"_s);
        m_line->setTime(Clock::now());
        QVERIFY(!warns(*m_line));
    }

    void hiddenItCostsNoTimer() {
        m_line->setTime(Clock::now());
        QCOMPARE(runningTimers(), 0);
        m_line->show();
        QCOMPARE(runningTimers(), 1);
        m_line->hide();
        QCOMPARE(runningTimers(), 0);
        m_line->setTime(Clock::now());
        QCOMPARE(runningTimers(), 0);
    }

    void shownAgainItSaysTheAgeOfThen() {
        m_line->setTime(Clock::now());
        m_line->show();
        m_line->hide();
        shiftMs = 125000;
        QCOMPARE(m_line->text(), u"Updated just now"_s);
        m_line->show();
        QCOMPARE(m_line->text(), u"Updated 2m ago"_s);
    }

    void withoutATimeThereIsNothingToCount() {
        m_line->show();
        m_line->setTime({});
        QCOMPARE(m_line->text(), u"Updated —"_s);
        QCOMPARE(runningTimers(), 0);
        m_line->setTime(Clock::now());
        QCOMPARE(m_line->text(), u"Updated just now"_s);
    }

    void aTimeToComeIsNow() {
        m_line->show();
        m_line->setTime(Clock::now().addDays(400));
        QCOMPARE(m_line->text(), u"Updated just now"_s);
        QCOMPARE(runningTimers(), 1);
    }

    void betweenTwoChangesNothingIsPainted() {
        m_line->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_line.get()));
        m_line->setTime(Clock::now().addSecs(-5));
        PaintCounter paints(*m_line);
        m_line->setTime(Clock::now().addSecs(-7));
        PaintCounter::settle();
        QCOMPARE(paints.count(), 0);
    }

private:
    int runningTimers() const {
        int count = 0;
        for (const QTimer* timer : m_line->findChildren<QTimer*>())
            count += timer->isActive() ? 1 : 0;
        return count;
    }

    std::unique_ptr<UpdatedLine> m_line;
};

QTEST_MAIN(UpdatedLineTest)
#include "UpdatedLineTest.moc"
