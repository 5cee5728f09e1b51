#pragma once

/// Has the window painted larger where the system's setting for a screen says so, on each screen as its own setting
/// is.
///
/// On Windows, which otherwise stretches a finished picture or leaves the window tiny on a dense screen. Elsewhere
/// nothing happens: there the toolkit makes the scale of a screen's size in millimetres, which is often wrong by a
/// little, and no line would lie on a pixel. To be called before the application object is made.
void followScreenScaling();
