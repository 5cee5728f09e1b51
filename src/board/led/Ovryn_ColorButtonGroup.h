#pragma once

#include <QList>
#include <QObject>

class Ovryn_ColorButton;

/// Rules which of its colour buttons are selected: one in single mode, up to a limit in multiple mode, in order of
/// selection. It does not own the buttons; one that goes is forgotten. GUI thread.
class Ovryn_ColorButtonGroup : public QObject
{
    Q_OBJECT

public:
    enum Mode
    {
        Single = 0,
        Multiple = 1,
    };

    explicit Ovryn_ColorButtonGroup(QObject *parent = nullptr);

    void addButton(Ovryn_ColorButton *button); ///< null and known ones are ignored; it comes in unchecked
    [[nodiscard]] QList<Ovryn_ColorButton *> selectedButtons() const { return selected; } ///< oldest first
    [[nodiscard]] int mode() const { return selectionMode; }
    void setMode(int newMode); ///< a value of Mode; others are ignored
    void setLimit(int most);   ///< for multiple mode; 0 and less count as 1
    /// Asks for a change; the rules may refuse it. A button that isn't a member is ignored.
    void setButtonChecked(Ovryn_ColorButton *button, bool wanted);

private slots:
    void forget(QObject *button);

private:
    void setInSingleMode(Ovryn_ColorButton *button, bool wanted);
    void setInMultipleMode(Ovryn_ColorButton *button, bool wanted);

    QList<Ovryn_ColorButton *> buttons;
    /// In order of selection. In single mode a member may be checked and not be in here: the first one, where
    /// nothing was selected as the mode was set.
    QList<Ovryn_ColorButton *> selected;
    qint32 limit = 1;
    qint32 selectionMode = Single;
};
