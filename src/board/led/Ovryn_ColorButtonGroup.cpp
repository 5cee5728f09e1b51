#include "board/led/Ovryn_ColorButtonGroup.h"

#include "board/led/Ovryn_ColorButton.h"

#include <algorithm>

Ovryn_ColorButtonGroup::Ovryn_ColorButtonGroup(QObject *parent) : QObject(parent) {}

void Ovryn_ColorButtonGroup::addButton(Ovryn_ColorButton *button)
{
    if (button == nullptr || buttons.contains(button))
        return;
    button->changeChecked(false);
    button->group = this;
    buttons.append(button);
    connect(button, SIGNAL(destroyed(QObject *)), this, SLOT(forget(QObject *)));
}

void Ovryn_ColorButtonGroup::forget(QObject *button)
{
    // Only the address counts: the button's own part is gone by now.
    const auto isIt = [button](const Ovryn_ColorButton *member) {
        return member == button;
    };
    buttons.erase(std::remove_if(buttons.begin(), buttons.end(), isIt), buttons.end());
    selected.erase(std::remove_if(selected.begin(), selected.end(), isIt), selected.end());
}

void Ovryn_ColorButtonGroup::setLimit(int most)
{
    limit = std::max(1, most);
}

void Ovryn_ColorButtonGroup::setMode(int newMode)
{
    if (newMode != Single && newMode != Multiple)
        return;
    selectionMode = newMode;
    if (newMode == Multiple)
        return;
    if (selected.isEmpty()) {
        if (!buttons.isEmpty())
            buttons.first()->changeChecked(true); // shown as selected, while no colour is: frames fall back to red
        return;
    }
    while (selected.size() > 1)
        selected.takeFirst()->changeChecked(false);
}

void Ovryn_ColorButtonGroup::setButtonChecked(Ovryn_ColorButton *button, bool wanted)
{
    if (!buttons.contains(button))
        return;
    if (selectionMode == Multiple)
        setInMultipleMode(button, wanted);
    else
        setInSingleMode(button, wanted);
}

void Ovryn_ColorButtonGroup::setInMultipleMode(Ovryn_ColorButton *button, bool wanted)
{
    if (!wanted) {
        if (selected.size() > 1) { // the last colour can't be cleared
            selected.removeOne(button);
            button->changeChecked(false);
        }
        return;
    }
    if (selected.contains(button))
        return;
    if (selected.size() >= limit)
        selected.takeFirst()->changeChecked(false);
    selected.append(button);
    button->changeChecked(true);
}

void Ovryn_ColorButtonGroup::setInSingleMode(Ovryn_ColorButton *button, bool wanted)
{
    const bool isSelected = selected.contains(button);
    if (wanted == isSelected)
        return;
    if (isSelected) {
        // It stays in `selected`: its colour is the one shown until another is chosen.
        const auto checkedCount = std::count_if(buttons.cbegin(), buttons.cend(),
                                                [](const Ovryn_ColorButton *member) { return member->isChecked(); });
        if (checkedCount > 1)
            button->changeChecked(false);
        return;
    }
    for (Ovryn_ColorButton *member : qAsConst(buttons))
        member->changeChecked(false);
    button->changeChecked(true);
    selected = {button};
}
