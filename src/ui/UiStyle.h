#pragma once

#include <QString>

class QPainter;
class QSize;

/// The style sheets and the dark glass that several widgets share. Free functions, GUI thread.
namespace UiStyle
{

QString messageBox();
QString settingPage();
QString settingList();  ///< for the list view of a combo box on the settings page
QString updateLog();    ///< the settings page's look, for the update log dialog
QString cardSelector(); ///< for Ovryn_ComboBox and its list
QString radioButtonIndicator();
QString smallCheckBoxIndicator(); ///< the red one of the side pages, 14 by 14 pixels
QString radioButtons();           ///< indicator and text of the side pages' radios
QString numberBoxes();            ///< for every ModifySpinBox below a widget
QString numberBoxButtons();       ///< its arrows, for a box that is wide enough; the page sets their width
QString actionButton();           ///< Apply, Cancel and Default of the side pages

/// The glass of the message boxes and of the update log dialog: dark, round corners, red edge.
void paintDialogGlass(QPainter &painter, QSize size);

/// Gives the tool tips of the whole program its colours. After the application object is made.
void colorToolTips();

} // namespace UiStyle
