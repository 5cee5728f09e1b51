#pragma once

#include <QString>

/// The style sheets of the LCD page's widgets, one for each kind. The page's own sheet has the fields' font alone.
namespace LcdPageStyle
{

QString radio();
QString keyField();
QString switchTime();
QString lcdSwitch(); ///< a check box without a text: a picture for each state

} // namespace LcdPageStyle
