#include "ui/ModifySpinBox.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace
{

/// The second range holds the native virtual-key codes of the numeric pad's digits.
bool isDigitKey(int key)
{
    return (key >= 0x30 && key <= 0x39) || (key >= 0x60 && key <= 0x69);
}

} // namespace

ModifySpinBox::ModifySpinBox(QWidget *parent) : QSpinBox(parent)
{
    setContextMenuPolicy(Qt::NoContextMenu);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    lineEdit()->setAttribute(Qt::WA_InputMethodEnabled, false);
}

void ModifySpinBox::keyPressEvent(QKeyEvent *event)
{
    if (isDigitKey(event->key())) {
        if (lineEdit()->hasSelectedText())
            lineEdit()->backspace();
        // The digit counts as typed at the end, wherever the cursor is.
        if ((text() + event->text()).toLongLong() >= maximum()) {
            setValue(maximum());
            const int length = text().length();
            lineEdit()->setSelection(length, length); // the cursor goes to the end, where one more digit is refused
        }
        emit editChanging();
    }
    if (event->key() == Qt::Key_Enter && parentWidget() != nullptr) {
        parentWidget()->setFocus(); // losing the focus is what ends the edit
        return;
    }
    QSpinBox::keyPressEvent(event);
    if (event->key() == Qt::Key_Backspace)
        emit editChanging();
}
