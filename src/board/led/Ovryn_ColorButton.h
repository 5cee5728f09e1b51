#pragma once

#include <QColor>
#include <QLabel>
#include <QPointer>
#include <QTimer>

class Ovryn_ColorButtonGroup;

/// A swatch. A single click asks for the opposite of `checked` and is acted on late, so that a double click can
/// cancel it. GUI thread.
class Ovryn_ColorButton : public QLabel
{
    Q_OBJECT

public:
    static constexpr int kClickDelayMs = 200;

    explicit Ovryn_ColorButton(QWidget *parent = nullptr);

    [[nodiscard]] QColor getColor() const { return color; }
    [[nodiscard]] bool isChecked() const { return checked; }

    void setClickDelay(int milliseconds) { clickTimer.setInterval(milliseconds); }

public slots:
    void setCheck(bool check); ///< through the group, whose rules may refuse it
    void setColor(QColor newColor);
    void onTimeOut();

signals:
    void onMouseClick(Ovryn_ColorButton *sender); ///< also when the group refused the change
    void onMouseDuobleClick(Ovryn_ColorButton *sender);
    void stateChanged(bool state); ///< the new value of `checked`

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    friend class Ovryn_ColorButtonGroup; // the one that decides over `checked` of its members

    enum State
    {
        Normal = 0,
        Pressed = 1,
        Hovered = 2,
    };

    void setState(State newState);
    void changeChecked(bool check); ///< past the group

    qint32 state = Normal;
    QColor color{255, 255, 255};
    bool checked = false;
    QTimer clickTimer;
    QPointer<Ovryn_ColorButtonGroup> group; ///< null until added
};
