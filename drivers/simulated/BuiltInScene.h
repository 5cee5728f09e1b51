#pragma once

namespace simulated
{

/// The text of scenes/default-pair.json, put in by the build.
extern const char *const kBuiltInSceneText;

} // namespace simulated
