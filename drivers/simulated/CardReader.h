#pragma once

#include "simulated/CardParameters.h"
#include "simulated/JsonNode.h"

namespace simulated
{

/// Reads one entry of "cards". Keys that are absent keep the defaults of CardParameters.
/// `copies` is how many such cards there are. Throws ScenarioError.
CardParameters readCard(const JsonNode &node, quint32 &copies);

} // namespace simulated
