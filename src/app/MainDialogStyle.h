#pragma once

#include <QList>
#include <QString>

class QPushButton;

/// Looks of the main dialog's own widgets: style sheets and captions' fonts.
namespace MainDialogStyle
{

/// A page button that is only its caption; lit while its page is open.
QString textButton();

/// A small picture button: <name>.png, <name>_hover.png and <name>_press.png of the folder "buttons".
QString pictureButton(const QString &name);

/// LED and LCD buttons on the plates <name>_off.png and <name>_on.png of the folder "TopButton".
QString slotButton(const QString &name);

/// The high-performance switch, by its state.
QString highPerformanceSwitch();

/// Three quarters of a button's height in pixels; the family is left alone when empty.
void setCaptionFonts(const QList<QPushButton *> &buttons, const QString &family);

} // namespace MainDialogStyle
