#pragma once

#include "ui/Ovryn_LanguageTable.h"

#include <QPixmap>
#include <QRect>
#include <QString>
#include <QWidget>

class GraphStackView;
class QCheckBox;
class RowListView;

/// Where everything of such a page lies, in page pixels. Integer divisions truncate.
struct RowsAndGraphsLayout
{
    int bandHeight = 0;
    QRect topRightRect; ///< of the check box that switches the views
    QRect viewRect;     ///< of both views
    QRect titleRect;
    QRect versionRect; ///< of a text at the right of the band
};
RowsAndGraphsLayout rowsAndGraphsLayoutFor(QSize page);

/// A page with a header band that shows either a list of rows or the graphs of the ticked rows: what the
/// card's monitor page and its board temperatures share. The check box at the top right switches, and is
/// offered only while a row is ticked, so that the graphs are never on without one.
///
/// Owns both views. GUI thread.
class RowsAndGraphsPage : public QWidget
{
    Q_OBJECT

public:
    /// Takes both views as children and shows the rows.
    RowsAndGraphsPage(RowListView *rows, GraphStackView *graphs, QWidget *parent = nullptr);

public slots:
    void onTopRightCheckBoxClicked(bool bChecked);
    void isHaveChecked(bool bHave);

protected:
    void setTitle(const QString &newTitle, LanguageType newLanguage); ///< redraws the background
    [[nodiscard]] RowsAndGraphsLayout pageLayout() const { return rects; }

    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void drawBackground();

    RowListView *rowsView;
    GraphStackView *monitorView;
    QCheckBox *ckbTopRight;
    RowsAndGraphsLayout rects;
    QPixmap background;
    QString title;
    LanguageType language = kLanguageChinese;
};
