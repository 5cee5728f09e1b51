#pragma once

/// The program's fonts. The font files carry neutral family names; the widgets ask for "DS-Digital", "Space Age",
/// "Tessmar_KuHei" and, where the system has none, "Arial" and "微软雅黑". One table maps the wanted names to the
/// registered ones. GUI thread, after the application object is made and before the first font is used: a family that
/// was used earlier stays wrong.

/// Enters the table into QFont's substitutions.
void substituteFontFamilies();

/// Registers the compiled-in fonts in order: segment, wide, Hei, then the plain Latin one in two weights.
/// One that can't be opened is left out.
void registerApplicationFonts();
