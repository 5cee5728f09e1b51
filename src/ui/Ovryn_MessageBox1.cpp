#include "ui/Ovryn_MessageBox1.h"

#include <QPainter>

Ovryn_MessageBox1::Ovryn_MessageBox1(int boxFlags, QString title, QString text, int language, QWidget *parent,
                                     Qt::WindowFlags windowFlags)
    : Ovryn_MessageBox(boxFlags, title, text, language, parent, windowFlags),
      background(QStringLiteral(":/images/images/messageBox/msgbkground.png"))
{
    resize(background.size());
}

void Ovryn_MessageBox1::paintEvent(QPaintEvent *)
{
    QPainter(this).drawPixmap(0, 0, background);
}
