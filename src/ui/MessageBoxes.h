#pragma once

#include "ui/Ovryn_LanguageTable.h"

#include <QString>

class QWidget;

/// \file
/// The program's own boxes by one call, over the middle of the parent's window. They block until the user has
/// answered; events are handled meanwhile.

/// A question with the buttons yes and no. True for yes; Escape counts as no.
[[nodiscard]] bool ask(const QString &question, LanguageType language, QWidget *parent);

/// A message with one button.
void tell(const QString &message, LanguageType language, QWidget *parent);
