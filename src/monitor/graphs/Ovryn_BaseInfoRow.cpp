#include "monitor/graphs/Ovryn_BaseInfoRow.h"

#include "ui/UiStyle.h"

#include <QCheckBox>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace
{
constexpr int kColumns = 12; ///< 1 for the check mark, 4 for the name, 1 free, 6 for the values
constexpr int kCheckBoxFontPixels = 14;
constexpr int kTitleFontPixels = 12;
constexpr int kTextFlags = Qt::AlignLeft | Qt::AlignVCenter;

const char kCheckBoxStyle[] =
    "QCheckBox{color:rgb(255,255,255);background-color:rgba(0,0,0,0);spacing:8px;outline:none;}";
} // namespace

InfoRowLayout infoRowLayoutFor(QSize row)
{
    const int width = row.width();
    const int height = row.height();
    return {QRect(width / kColumns, 0, width * 4 / kColumns, height),
            QRect(width * 6 / kColumns, 0, width * 6 / kColumns, height), QRect(0, 0, width / kColumns, height)};
}

QRect InfoRowLayout::slotRect(int slot) const
{
    return {valueRect.x() + slot * slotWidth(), valueRect.y(), slotWidth(), valueRect.height()};
}

QRect InfoRowLayout::checkBoxRect() const
{
    return {0, 0, checkRect.width() + nameRect.width(), nameRect.height()};
}

QRect InfoRowLayout::loneTitleRect() const
{
    return {nameRect.x() - checkRect.width(), 0, nameRect.width(), nameRect.height()};
}

int InfoRowLayout::valueFontPixels() const
{
    return std::max(1, static_cast<int>(slotWidth() / 2.4)); // a font of 0 pixels is none
}

Ovryn_BaseInfoRow::Ovryn_BaseInfoRow(QWidget *parent) : QWidget(parent), checkBox(new QCheckBox(this))
{
    checkBox->setStyleSheet(QString::fromLatin1(kCheckBoxStyle) + UiStyle::smallCheckBoxIndicator());
    connect(checkBox, SIGNAL(toggled(bool)), this, SLOT(toggled(bool)));
}

void Ovryn_BaseInfoRow::setText(QString text)
{
    title = std::move(text);
    checkBox->setText(title);
    repaint();
}

void Ovryn_BaseInfoRow::setValues(QString currentValue, QString maxValue, QString minValue)
{
    currentText = std::move(currentValue);
    maxText = std::move(maxValue);
    minText = std::move(minValue);
    repaint();
}

bool Ovryn_BaseInfoRow::isChecked() const
{
    return checkBox->isChecked();
}

void Ovryn_BaseInfoRow::setChecked(bool checked)
{
    checkBox->setChecked(checked);
}

void Ovryn_BaseInfoRow::setCheckBoxVisible(bool visible)
{
    checkBoxVisible = visible;
    checkBox->setVisible(visible);
    repaint();
}

void Ovryn_BaseInfoRow::resizeEvent(QResizeEvent *)
{
    rects = infoRowLayoutFor(size());
    QFont boxFont = font();
    boxFont.setPixelSize(kCheckBoxFontPixels);
    checkBox->setFont(boxFont);
    checkBox->setGeometry(rects.checkBoxRect());
}

void Ovryn_BaseInfoRow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setPen(QColor(255, 255, 255, 255));

    QFont valueFont(QStringLiteral("Arial"));
    valueFont.setPixelSize(rects.valueFontPixels());
    painter.setFont(valueFont);
    const QString texts[InfoRowLayout::valueSlots] = {currentText, QStringLiteral("MAX:"), maxText,
                                                      QStringLiteral("MIN:"), minText};
    for (int slot = 0; slot < InfoRowLayout::valueSlots; ++slot)
        painter.drawText(rects.slotRect(slot), kTextFlags, texts[slot]);

    if (!checkBoxVisible) {
        QFont titleFont = font();
        titleFont.setPixelSize(kTitleFontPixels);
        painter.setFont(titleFont);
        painter.drawText(rects.loneTitleRect(), kTextFlags, title);
    }
}

void Ovryn_BaseInfoRow::toggled(bool checked)
{
    emit onChecked(checked);
}
