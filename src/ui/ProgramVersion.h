#pragma once

/// The program's own version, as the card information page shows it and as the update compares it with a newer one.
constexpr char kProgramVersion[] = "1.0.2.4";
