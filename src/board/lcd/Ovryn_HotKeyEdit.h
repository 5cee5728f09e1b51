#pragma once

#include <QLineEdit>
#include <QMap>

/// The field in which a key of the hot key is chosen: a press of a key in its table replaces the text by the key's
/// name, every other key does nothing. All codes are virtual-key codes. GUI thread.
class Ovryn_HotKeyEdit : public QLineEdit
{
    Q_OBJECT

public:
    /// In modifier mode the field takes Shift, Ctrl and Alt and starts with Ctrl; otherwise it takes an ordinary key
    /// and starts with 0.
    explicit Ovryn_HotKeyEdit(bool modifierMode, QWidget *parent = nullptr);

    /// Shows the key with that code. False, and nothing changes, when it isn't in the field's table.
    bool setKey(quint32 code);
    [[nodiscard]] quint32 key() const { return keyCode; } ///< code of the key shown

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    bool modifierMode;   ///< which table holds
    quint32 keyCode = 0; ///< the code shown
    QMap<quint32, QString> normalKeys;
    QMap<quint32, QString> modifierKeys;
};
