#include "app/EmptyPage.h"

#include "ui/PageFrame.h"

#include <QPainter>

EmptyPage::EmptyPage(QWidget *parent) : QWidget(parent) {}

void EmptyPage::paintEvent(QPaintEvent *)
{
    QPainter(this).drawPixmap(0, 0, background);
}

void EmptyPage::resizeEvent(QResizeEvent *)
{
    background = PageFrame::background(size(), height() / 10, QRect(), QString(), 1, kLanguageEnglish);
}
