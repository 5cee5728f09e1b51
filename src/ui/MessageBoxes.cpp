#include "ui/MessageBoxes.h"

#include "ui/Ovryn_MessageBox.h"

bool ask(const QString &question, LanguageType language, QWidget *parent)
{
    Ovryn_MessageBox box(Ovryn_MessageBox::TwoButtons, QString(), question, language, parent,
                         Qt::WindowFlags(Ovryn_MessageBox::usualWindowFlags));
    return box.exec() == Ovryn_MessageBox::Yes;
}

void tell(const QString &message, LanguageType language, QWidget *parent)
{
    Ovryn_MessageBox box(0, QString(), message, language, parent,
                         Qt::WindowFlags(Ovryn_MessageBox::usualWindowFlags));
    box.exec();
}
