#pragma once

#include <QIcon>
#include <QString>

/// The look of the LED page's widgets; GUI thread.
namespace LedPageStyle
{

QString page(); ///< radios, caption, number box and reset button

/// A circular arrow for Reset: bright, and grey for a disabled button.
QIcon resetIcon(int size);

} // namespace LedPageStyle
