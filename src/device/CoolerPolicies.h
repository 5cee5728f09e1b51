#pragma once

#include <QtGlobal>

#include <array>

/// \file
/// Who sets the level of a fan, as the driver numbers it.

constexpr qint32 kCoolerPolicyManual = 1; ///< a level that a program gave
constexpr qint32 kCoolerPolicyPerformance = 2;
constexpr qint32 kCoolerPolicyDiscreteTemperature = 4;
constexpr qint32 kCoolerPolicyContinuousTemperature = 8;
constexpr qint32 kCoolerPolicyDefault = 0x20; ///< the driver's own control

/// All of them; the driver takes no other number.
constexpr std::array<qint32, 5> kCoolerPolicies = {kCoolerPolicyManual, kCoolerPolicyPerformance,
                                                   kCoolerPolicyDiscreteTemperature,
                                                   kCoolerPolicyContinuousTemperature, kCoolerPolicyDefault};
