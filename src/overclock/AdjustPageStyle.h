#pragma once

#include <QIcon>
#include <QString>

/// The look of the adjust page's widgets. Style sheets for one widget each;
/// GUI thread.
namespace AdjustPageStyle
{

QString fanButton(); ///< the fan modes, where the checked one glows, and the button that opens the curve
QString linkBox();   ///< only the picture, in the middle of the box

/// A small fan curve: bright, and grey for a disabled button.
QIcon curveIcon(int size);

} // namespace AdjustPageStyle
