#include "ui/MessageBoxes.h"

#include "ui/Ovryn_MessageBox.h"

bool ask(const QString &question, LanguageType language, QWidget *parent)
{
    Ovryn_MessageBox box(Ovryn_MessageBox::TwoButtons, QString(), question, language, parent,
                         Qt::WindowFlags(Ovryn_MessageBox::usualWindowFlags));
    return box.exec() == Ovryn_MessageBox::Yes;
}

Ovryn_MessageBox messageBox(const QString &message, LanguageType language, QWidget *parent)
{
    return Ovryn_MessageBox(0, QString(), message, language, parent,
                            Qt::WindowFlags(Ovryn_MessageBox::usualWindowFlags));
}

void tell(const QString &message, LanguageType language, QWidget *parent)
{
    Ovryn_MessageBox box = messageBox(message, language, parent);
    box.exec();
}
