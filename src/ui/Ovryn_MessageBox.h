#pragma once

#include "ui/Ovryn_LanguageTable.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QPushButton;

/// The modal box of the program: dark glass with a red edge, one or two buttons and optionally the check box "Don't
/// show again.". A local object for one exec(), which returns a Result, or 0 when Escape closed it.
class Ovryn_MessageBox : public QDialog
{
    Q_OBJECT

public:
    /// Bits of `flags`; 0 is a box with one button.
    enum Flag
    {
        TwoButtons = 1,
        DontShowAgain = 0x1000
    };

    enum Result
    {
        No = 2,
        Yes = 3,
        Confirm = 4, ///< the only button of a box with one
        YesDontShowAgain = 6,
        ConfirmDontShowAgain = 7
    };

    /// Window flags that the program's own boxes pass: no buttons of the system, a title only (0x2001000).
    static constexpr Qt::WindowFlags::Int usualWindowFlags = Qt::CustomizeWindowHint | Qt::WindowTitleHint;

    /// The box stays on top of everything when it has no parent. A text too long for 320 by 160 makes it grow.
    Ovryn_MessageBox(int flags, QString title, QString text, int language, QWidget *parent,
                     Qt::WindowFlags windowFlags);

    void setYesText(QString text); ///< caption of the first button

public slots:
    void onBtnYesClicked();
    void onBtnNoClicked();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void build(const QString &text, LanguageType language);
    void growToText();

    int flags;
    int offsetX = 0; ///< pixels from the centred position
    int offsetY = 0;
    QLabel *infoLabel = nullptr;
    QCheckBox *dontShowAgainBox = nullptr; ///< null without the flag
    QPushButton *yesButton = nullptr;
    QPushButton *noButton = nullptr; ///< null in a box with one button
};
