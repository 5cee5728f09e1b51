#pragma once

#include <QComboBox>

/// A combo box that looks where the mouse is when its list closes. The list has the mouse while it is open, so the
/// box is never told that the pointer has left it, and would stay lit after a choice.
class SettledComboBox : public QComboBox
{
public:
    using QComboBox::QComboBox;

    void hidePopup() override;
};
