#pragma once

#include <array>
#include <csignal>

/// What a session and a terminal end their processes with.
constexpr std::array<int, 3> kEndSignals = {SIGTERM, SIGINT, SIGHUP};
