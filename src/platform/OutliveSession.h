#pragma once

/// For a helper process that must outlive the program it serves: the signals that a terminal or a session sends to
/// all of its processes don't reach it from now on. It ends by itself, or is killed.
///
/// A file of its own, without the toolkit: a helper that takes nothing else of this library stays small.
void outliveTheSession();
