#pragma once

#include "device/DeviceRecords.h"

#include <QList>
#include <QPixmap>
#include <QWidget>

class Ovryn_BaseInfoRow;

/// A page of rows with check boxes, one quantity a row, parted by red lines: what the rows views of the
/// card's monitor page and of its board temperatures share. Bit i of a mask stands for row i.
///
/// Owned by its page, owns its rows. GUI thread.
class RowListView : public QWidget
{
    Q_OBJECT

public:
    /// `rowsPerHeight` rows would fill the height; `quantityCount` of them are there.
    RowListView(int quantityCount, int rowsPerHeight, QWidget *parent = nullptr);

    [[nodiscard]] int selectOption() const; ///< mask of the ticked rows
    void setSelectOption(int mask);         ///< bits that stand for no row are ignored

    [[nodiscard]] Ovryn_BaseInfoRow *row(int position) const { return rows.at(position); }

public slots:
    void onChecked(bool bChecked);

signals:
    void isHaveChecked(bool bHave); ///< after each tick: whether any row is ticked

protected:
    void setRowTitle(int position, const QString &title);
    void setRowValues(int position, const NvMonitorValue &value, const QString &suffix);

    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void drawBackground();

    const int rowCount; ///< that would fill the height
    QList<Ovryn_BaseInfoRow *> rows;
    QPixmap background;
};
