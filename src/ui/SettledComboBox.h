#pragma once

#include <QComboBox>

/// A combo box that checks the mouse position when its list closes. The open list gets all mouse events, so the box
/// never notices that the pointer has left it, and would stay highlighted after a choice.
class SettledComboBox : public QComboBox
{
public:
    using QComboBox::QComboBox;

    void hidePopup() override;
};
