#pragma once

#include "ui/Ovryn_LanguageTable.h"

#include <QString>

class Ovryn_MessageBox;
class QWidget;

/// \file
/// The program's usual message boxes, each by one call, over the middle of the parent's window. They block until the
/// user has chosen; events are handled meanwhile.

/// A question with the buttons yes and no. True for yes; Escape counts as no.
[[nodiscard]] bool ask(const QString &question, LanguageType language, QWidget *parent);

/// A message with one button, to be changed before its exec().
[[nodiscard]] Ovryn_MessageBox messageBox(const QString &message, LanguageType language, QWidget *parent);

/// The same, shown at once.
void tell(const QString &message, LanguageType language, QWidget *parent);
