#include "monitor/graphs/RowListView.h"

#include "monitor/graphs/Ovryn_BaseInfoRow.h"

#include <QPainter>

RowListView::RowListView(int quantityCount, int rowsPerHeight, QWidget *parent)
    : QWidget(parent), rowCount(rowsPerHeight)
{
    for (int i = 0; i < quantityCount; ++i) {
        auto *entry = new Ovryn_BaseInfoRow(this);
        connect(entry, SIGNAL(onChecked(bool)), this, SLOT(onChecked(bool)));
        rows.append(entry);
    }
}

int RowListView::selectOption() const
{
    int mask = 0;
    for (int i = 0; i < rows.size(); ++i) {
        if (rows.at(i)->isChecked())
            mask |= 1 << i;
    }
    return mask;
}

void RowListView::setSelectOption(int mask)
{
    for (int i = 0; i < rows.size(); ++i)
        rows.at(i)->setChecked((mask & (1 << i)) != 0);
}

void RowListView::onChecked(bool)
{
    emit isHaveChecked(selectOption() != 0);
}

void RowListView::setRowTitle(int position, const QString &title)
{
    rows.at(position)->setText(title);
}

void RowListView::setRowValues(int position, const NvMonitorValue &value, const QString &suffix)
{
    rows.at(position)->setValues(QString::number(value.currentValue) + suffix,
                                 QString::number(value.maxValue) + suffix, QString::number(value.minValue) + suffix);
}

void RowListView::resizeEvent(QResizeEvent *)
{
    const int margin = width() / 20;
    const int rowHeight = height() / rowCount;
    for (int i = 0; i < rows.size(); ++i)
        rows.at(i)->setGeometry(margin, i * rowHeight, width() - 2 * margin, rowHeight);
    drawBackground();
}

void RowListView::drawBackground()
{
    background = QPixmap(size());
    background.fill(QColor(0, 0, 0, 0));
    QPainter painter(&background);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(255, 0, 0, 255), 1.5));
    const int rowHeight = height() / rowCount;
    for (int i = 1; i < rowCount; ++i)
        painter.drawLine(0, rowHeight * i, width(), rowHeight * i);
}

void RowListView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, background);
}
