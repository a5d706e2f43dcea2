#include "Views/SettingCard.h"

#include "Design/DesignSystem.h"
#include "Views/Drawing.h"

#include <QPainter>
#include <QVBoxLayout>

namespace torvane {

namespace {

constexpr double radius = 10;
constexpr int sidePadding = 14;

} // namespace

SettingCard::SettingCard(QWidget* content, QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(sidePadding, 0, sidePadding, 0);
    layout->setSpacing(0);
    layout->addWidget(content);
}

void SettingCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    drawRoundedRect(painter, rect(), radius, Palette::surface, Palette::line);
}

} // namespace torvane
