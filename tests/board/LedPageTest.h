#pragma once

#include "board/LedPageWorld.h"
#include "ui/Fonts.h"

#include <QTimer>

#include <memory>

/// What each test of the LED page finds.
class LedPageTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { substituteFontFamilies(); }
    void init() { world = std::make_unique<LedPageWorld>(); }
    void cleanup() { world.reset(); }

protected:
    /// Selects a custom button, so that the palette edits it, and forgets the frame.
    void bind(int custom)
    {
        LedPageWorld::click(world->custom(custom));
        world->driver.forgetCalls();
    }
    /// Whether a change of colour waits for its time to go out.
    [[nodiscard]] bool frameIsDue() const
    {
        return world->page->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly)->isActive();
    }

    std::unique_ptr<LedPageWorld> world;
};
