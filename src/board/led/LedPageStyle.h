#pragma once

#include <QIcon>
#include <QString>

/// The look of the LED page's widgets; GUI thread.
namespace LedPageStyle
{

QString page(); ///< radios, caption, number box and reset button

/// An arrow that runs round, for Reset: bright, and grey for a disabled button.
QIcon resetIcon(int size);

} // namespace LedPageStyle
