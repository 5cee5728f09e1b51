#pragma once

#include <QString>

/// \file
/// Start of the program together with the user's session.

/// Makes the system start the program at `programPath` (absolute, with "/") at each log-on, or stops that.
///
/// On Windows a value of the machine's Run key, or of the user's own key where the user may not change the machine's;
/// elsewhere an entry in the user's autostart folder. Only an entry under the program's own name is replaced or removed.
/// A folder of that name is left as it is. Of a link only the link is removed, never its target. A failed write is not
/// reported and leaves the former entry. Any thread.
void setStartOnBoot(bool startOnBoot, const QString &programPath);
