#pragma once

#include <QHash>
#include <QKeySequence>
#include <QObject>
#include <QPair>

#include <memory>
#include <vector>

class Ovryn_WinEventFilter;

/// A hot key that works while any application has the focus. It asks GlobalHotKeys::current() for the key and tells
/// nobody when that refuses. GUI thread.
///
/// Setting another key adds to what is registered: the earlier keys go on firing, and stay the system's until the
/// process ends unless they are set once more and then unset.
class Ovryn_GlobalShortCut : public QObject
{
    Q_OBJECT

public:
    explicit Ovryn_GlobalShortCut(QObject *parent = nullptr);
    ~Ovryn_GlobalShortCut() override; ///< unregisters the key set last

    /// Registers `key`, taken for a Qt::Key, with a modifier: that of Qt::Key_Shift, Qt::Key_Control, Qt::Key_Meta
    /// or Qt::Key_Alt, and Ctrl for everything else.
    void setShortcut(int modifier, int key);
    void unsetShortcut(); ///< unregisters the key set last

    /// The object that is told of this pair, null when it isn't registered here.
    [[nodiscard]] Ovryn_GlobalShortCut *registeredFor(quint32 virtualKey, quint32 modifierFlags) const;

signals:
    void activated(); ///< a registered key was pressed

private:
    using KeyPair = QPair<quint32, quint32>; ///< virtual-key code, bits of GlobalHotKeys::Modifier

    /// Takes `key` and `modifiers` from the sequence and translates them.
    KeyPair pairOfSequence();

    QHash<KeyPair, Ovryn_GlobalShortCut *> registered; ///< also what the system refused
    Ovryn_WinEventFilter *eventFilter = nullptr;       ///< the filter installed last; before the first, not installed
    QKeySequence keySequence;                          ///< set last
    quint32 key = 0;                                   ///< of the sequence, a Qt::Key
    quint32 modifiers = 0;                             ///< of the sequence, Qt::KeyboardModifier bits
    std::vector<std::unique_ptr<Ovryn_WinEventFilter>> filters; ///< all that were made; each stays installed
};
