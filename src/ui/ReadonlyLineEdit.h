#pragma once

#include <QLineEdit>

/// A line that shows a value: it can't be edited, has no context menu, and dragging selects nothing.
class ReadonlyLineEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit ReadonlyLineEdit(QWidget *parent = nullptr);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
};
