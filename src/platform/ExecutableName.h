#pragma once

#include <QString>

/// The file name of a program: "OvrynUpdate.exe" for "OvrynUpdate" where programs have that suffix, the name itself
/// elsewhere.
[[nodiscard]] QString executableFileName(const QString &program);
