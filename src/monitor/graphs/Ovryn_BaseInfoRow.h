#pragma once

#include <QRect>
#include <QString>
#include <QWidget>

class QCheckBox;

/// Where everything of a row lies, in row pixels. Integer divisions truncate.
struct InfoRowLayout
{
    static constexpr int valueSlots = 5; ///< texts beside a title

    QRect nameRect;
    QRect valueRect;
    QRect checkRect;

    [[nodiscard]] int slotWidth() const { return valueRect.width() / valueSlots; }
    [[nodiscard]] QRect slotRect(int slot) const;
    [[nodiscard]] QRect checkBoxRect() const;  ///< check and name column, as the box's own text is the title
    [[nodiscard]] QRect loneTitleRect() const; ///< of the title when no check box stands before it
    [[nodiscard]] int valueFontPixels() const;
};
InfoRowLayout infoRowLayoutFor(QSize row);

/// A title with the current, highest and lowest value of one quantity; with a check box as an entry of a
/// list, without one as the caption of a graph. Owned by its parent widget, GUI thread.
class Ovryn_BaseInfoRow : public QWidget
{
    Q_OBJECT

public:
    explicit Ovryn_BaseInfoRow(QWidget *parent = nullptr);

    void setText(QString text);
    void setValues(QString currentValue, QString maxValue, QString minValue); ///< repaints at once
    [[nodiscard]] bool isChecked() const;
    void setChecked(bool checked);
    void setCheckBoxVisible(bool visible);

    [[nodiscard]] QString titleText() const { return title; }
    [[nodiscard]] QString currentValueText() const { return currentText; }
    [[nodiscard]] QString maxValueText() const { return maxText; }
    [[nodiscard]] QString minValueText() const { return minText; }

signals:
    void onChecked(bool checked);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private slots:
    void toggled(bool checked);

private:
    InfoRowLayout rects;
    QString title;
    QString currentText;
    QString maxText;
    QString minText;
    QCheckBox *checkBox;
    bool checkBoxVisible = true; ///< as asked for, whether or not the row itself is on the screen
};
