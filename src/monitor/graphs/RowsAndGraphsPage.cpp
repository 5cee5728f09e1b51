#include "monitor/graphs/RowsAndGraphsPage.h"

#include "monitor/graphs/GraphStackView.h"
#include "monitor/graphs/RowListView.h"
#include "ui/PageFrame.h"
#include "ui/Reds.h"

#include <QCheckBox>
#include <QPainter>

namespace
{
// The picture shows the view that a click leads to. The edge makes it a cell of the band, which is there without a
// picture too.
const char kTopRightStyle[] =
    "QCheckBox{background-color:rgba(0,0,0,0);border-left:1px solid rgba(@glass,110);outline:none;}"
    "QCheckBox::indicator{width:%1px;height:%2px;}"
    "QCheckBox::indicator:unchecked{image:url(:/images/images/monitor/graphs.png);}"
    "QCheckBox::indicator:unchecked:hover{image:url(:/images/images/monitor/graphs_hover.png);}"
    "QCheckBox::indicator:checked{image:url(:/images/images/monitor/rows.png);}"
    "QCheckBox::indicator:checked:hover{image:url(:/images/images/monitor/rows_hover.png);}";
} // namespace

RowsAndGraphsLayout rowsAndGraphsLayoutFor(QSize page)
{
    const int width = page.width();
    const int height = page.height();
    const int band = height / 10;
    return {band, QRect(width / 10 * 9, 0, width / 10, band), QRect(0, band, width, height - 2 * band),
            QRect(width / 20, 0, width, band), QRect(width / 3 * 2, 0, width / 3, band)};
}

RowsAndGraphsPage::RowsAndGraphsPage(RowListView *rows, GraphStackView *graphs, QWidget *parent)
    : QWidget(parent), rowsView(rows), monitorView(graphs), ckbTopRight(new QCheckBox(this))
{
    rowsView->setParent(this);
    monitorView->setParent(this);
    monitorView->hide();
    rowsView->show();
    ckbTopRight->setObjectName(QStringLiteral("ckbTopRight"));
    ckbTopRight->hide();

    connect(ckbTopRight, SIGNAL(clicked(bool)), this, SLOT(onTopRightCheckBoxClicked(bool)));
    connect(rowsView, SIGNAL(isHaveChecked(bool)), this, SLOT(isHaveChecked(bool)));
}

void RowsAndGraphsPage::onTopRightCheckBoxClicked(bool bChecked)
{
    if (bChecked) {
        monitorView->setSelectMask(rowsView->selectOption());
        monitorView->show();
        rowsView->hide();
    } else {
        monitorView->hide();
        rowsView->show();
    }
}

void RowsAndGraphsPage::isHaveChecked(bool bHave)
{
    ckbTopRight->setVisible(bHave);
}

void RowsAndGraphsPage::setTitle(const QString &newTitle, LanguageType newLanguage)
{
    title = newTitle;
    language = newLanguage;
    drawBackground();
    update();
}

void RowsAndGraphsPage::resizeEvent(QResizeEvent *)
{
    rects = rowsAndGraphsLayoutFor(size());
    ckbTopRight->setStyleSheet(Reds::inSheet(QString::fromLatin1(kTopRightStyle))
                                   .arg(rects.topRightRect.width() - 1)
                                   .arg(rects.topRightRect.height()));
    ckbTopRight->setGeometry(rects.topRightRect);
    rowsView->setGeometry(rects.viewRect);
    monitorView->setGeometry(rects.viewRect);
    drawBackground();
}

void RowsAndGraphsPage::drawBackground()
{
    background = PageFrame::background(size(), rects.bandHeight, rects.titleRect, title,
                                       PageFrame::titlePixelSize(size(), rects.bandHeight), language);
}

void RowsAndGraphsPage::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, background);
}
