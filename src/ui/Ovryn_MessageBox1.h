#pragma once

#include "ui/Ovryn_MessageBox.h"

#include <QPixmap>

/// The message box with a background picture, whose size it takes: the prompt of the high-performance mode.
class Ovryn_MessageBox1 : public Ovryn_MessageBox
{
    Q_OBJECT

public:
    Ovryn_MessageBox1(int flags, QString title, QString text, int language, QWidget *parent,
                      Qt::WindowFlags windowFlags);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QPixmap background;
};
