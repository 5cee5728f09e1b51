#pragma once

#include "ui/Ovryn_LanguageTable.h"

#include <QDialog>
#include <QPoint>

class QPushButton;
class QTextEdit;

/// Shows what changed from version to version, from a text file beside the program. A missing file leaves
/// the box empty. A local object for one exec().
class Ovryn_UpdateLogWidget : public QDialog
{
    Q_OBJECT

public:
    Ovryn_UpdateLogWidget(int language, QWidget *parent);

public slots:
    void onBtnCloseClick();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void build();
    void loadText(LanguageType language);

    QWidget *verticalLayoutWidget = nullptr;
    QTextEdit *textEdit = nullptr;
    QPushButton *pushButton = nullptr;
    QPoint dragOffset;    ///< global position of the press less pos()
    QPoint pressPosition; ///< global
    bool dragging = false;
    bool moving = false; ///< the drag has left the start distance
};
