#pragma once

#include <QSpinBox>

/// A number box for values that are applied later: typing beyond the maximum snaps to the maximum at once
/// instead of being refused, and the Enter key of the numeric pad ends the edit by giving the focus to the
/// parent. It has no input method and no context menu. GUI thread.
class ModifySpinBox : public QSpinBox
{
    Q_OBJECT

public:
    explicit ModifySpinBox(QWidget *parent = nullptr);

signals:
    void editChanging(); ///< a digit is about to be typed, or a backspace was

protected:
    void keyPressEvent(QKeyEvent *event) override;
};
