#pragma once

#include <QColor>
#include <QWidget>

#include <array>

class ModifySpinBox;
class QLabel;

/// Red, green and blue as numbers. GUI thread.
class Ovryn_rgbBox : public QWidget
{
    Q_OBJECT

public:
    explicit Ovryn_rgbBox(QWidget *parent = nullptr);

public slots:
    void setColor(QColor color); ///< emits nothing
    void rgbValueChanged();

signals:
    void colorChanged(QColor color); ///< an edit was ended

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QLabel *caption;
    std::array<ModifySpinBox *, 3> spins{}; ///< red, green, blue
};
