#pragma once

#include <QPixmap>
#include <QWidget>

/// The glass of a side page with nothing on it: holds the place of a page in the roll.
class EmptyPage : public QWidget
{
    Q_OBJECT

public:
    explicit EmptyPage(QWidget *parent);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QPixmap background;
};
