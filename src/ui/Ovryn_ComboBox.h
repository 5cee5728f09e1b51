#pragma once

#include "ui/SettledComboBox.h"

/// The card selector of the main dialog: a transparent box with a list of its own style. A box with one entry opens
/// no list.
class Ovryn_ComboBox : public SettledComboBox
{
    Q_OBJECT

public:
    explicit Ovryn_ComboBox(QWidget *parent = nullptr);

    void showPopup() override;
    void hidePopup() override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool popupOpen = false;
};
