#pragma once

#include "app/MainDialogLayout.h"
#include "board/led/HueRing.h"
#include "board/led/LedPageLayout.h"
#include "board/led/Ovryn_ColorPaletteBox.h"
#include "e2e/InstalledProgram.h"
#include "e2e/VirtualScreen.h"

/// The LED page of a running program and the palette beside it, as a user's hands find them. Rectangles and
/// positions are pixels of the main window, unless a name says screen.
class LedPageHands
{
public:
    LedPageHands(const VirtualScreen &screen, const InstalledProgram &program, qint64 window,
                 const MainDialogLayout &dialog);

    /// True once the page has slid in and the palette stands in its place beside it.
    [[nodiscard]] bool stands() const;

    [[nodiscard]] QRect placeOf(const QRect &part) const;  ///< of one of `parts`
    [[nodiscard]] QPoint ringPoint(double hue) const;      ///< in the middle of the ring, on the screen
    [[nodiscard]] QColor colorAt(QPoint ringPoint) const;  ///< what the ring chooses there
    [[nodiscard]] QPoint sliderPoint(double ratio) const;  ///< 0 is white, 1 is black, on the screen
    [[nodiscard]] QRect numberBox(const char *name) const; ///< of the RGB box
    void press(const QRect &part) const;                   ///< one of `parts`, near its left edge
    void typeInto(const QRect &box, const QString &number, const QString &endKey) const;

    const LedPageLayout parts;

private:
    [[nodiscard]] QPoint onScreen(QPoint position) const;

    const VirtualScreen &screen;
    const InstalledProgram &program;
    const qint64 window;
    const QRect page;
    const QRect palettePlace;
    const HueRing ring;
    Ovryn_ColorPaletteBox palette; ///< one of the same size, for its geometry
};

/// A frame for the LED controller as the journal writes it: from the bytes between size and checksum.
[[nodiscard]] QString ledFrame(const char *body, bool closing = false);

/// The frames that the LED controller of a card was sent from a line of the journal on, with " -> -1" behind one
/// that failed. Only first attempts count, those of the plain call at the newest record.
[[nodiscard]] QStringList ledFrames(const QList<QJsonObject> &journal, int card = 0, int from = 0);
