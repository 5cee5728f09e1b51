#include "simulated/StateFile.h"

#include "simulated/Hex.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace simulated
{
namespace
{

using nlohmann::ordered_json;

constexpr std::chrono::milliseconds kLeastStateInterval(100);

double oneDecimal(double value)
{
    return std::round(value * 10.0) / 10.0;
}

ordered_json readingsOf(const Card &card)
{
    const CardState &state = card.state;
    return {
        {"loadPercent", oneDecimal(state.loadPercent)},
        {"graphicsKHz", state.graphicsKHz},
        {"memoryKHz", state.memoryKHz},
        {"voltage_uV", std::lround(state.voltage_uV)},
        {"powerW", oneDecimal(state.powerW)},
        {"temperatureC", oneDecimal(state.temperatureC)},
        {"fanPercent", oneDecimal(state.fanPercent)},
        {"fanRpm", card.fanRpm()},
        {"memoryUsedKB", state.memoryUsedKB},
        {"powerLimited", state.powerLimited},
        {"temperatureLimited", state.temperatureLimited},
    };
}

ordered_json settingsOf(const Card &card)
{
    const CardSettings &settings = card.settings;
    ordered_json coolers = ordered_json::array();
    for (const CardSettings::Cooler &cooler : settings.coolers)
        coolers.push_back({{"policy", cooler.policy}, {"manualPercent", cooler.manualPercent}});
    return {
        {"graphicsOffsetKHz", settings.graphicsOffsetKHz},
        {"memoryOffsetKHz", settings.memoryOffsetKHz},
        {"voltageOffset_uV", settings.voltageOffset_uV},
        {"overVoltage_uV", settings.overVoltage_uV},
        {"powerLimitPercent", settings.powerLimit / 1000.0},
        {"temperatureLimitC", settings.temperatureLimit256 / 256.0},
        {"temperaturePriority", settings.temperaturePriority},
        {"coolers", coolers},
    };
}

ordered_json ledOf(const LedController &led)
{
    ordered_json colours = ordered_json::array();
    for (std::size_t i = 0; i + 2 < led.shown.colours.size(); i += 3)
        colours.push_back({led.shown.colours[i], led.shown.colours[i + 1], led.shown.colours[i + 2]});
    return {
        {"type", led.type},
        {"effect", led.shown.effect},
        {"level", led.shown.level},
        {"interval", led.shown.interval},
        {"closing", led.shown.closing},
        {"colours", colours},
        {"accepted", led.acceptedFrames},
        {"refused", led.refusedFrames},
        {"frame", hexBytes(led.lastFrame)},
    };
}

ordered_json lcdOf(const LcdController &lcd)
{
    const LcdController::Frame &shown = lcd.shown;
    return {
        {"command", shown.command},
        {"sequence", shown.sequence},
        {"memoryTotalKB", shown.memoryTotalKB},
        {"memoryUsedKB", shown.memoryUsedKB},
        {"baseClockMHz", shown.baseClockMHz},
        {"currentClockMHz", shown.currentClockMHz},
        {"thermalLimitC", shown.thermalLimitC},
        {"temperatureC", shown.temperatureC},
        {"fanMaxRpm", shown.fanMaxRpm},
        {"fanRpm", shown.fanRpm},
        {"fanFlag", shown.fanFlag},
        {"modelDigits", shown.modelDigits},
        {"modelTi", shown.modelTi},
        {"accepted", lcd.acceptedFrames},
        {"refused", lcd.refusedFrames},
        {"frame", hexBytes(lcd.lastFrame)},
    };
}

} // namespace

bool StateFile::isDue(bool evenIfRecent) const
{
    if (path.empty())
        return false;
    return evenIfRecent || !written || std::chrono::steady_clock::now() - writtenAt >= kLeastStateInterval;
}

void StateFile::write(const std::string &text)
{
    written = true;
    writtenAt = std::chrono::steady_clock::now();
    const std::string besides = path + ".new";
    {
        std::ofstream stream(besides, std::ios::out | std::ios::trunc | std::ios::binary);
        stream << text << '\n';
    }
    std::error_code ignored; // a state that cannot be written now is written next time
    std::filesystem::rename(besides, path, ignored);
}

std::string stateText(const std::vector<Card> &cards, qint64 timeMs)
{
    ordered_json list = ordered_json::array();
    for (const Card &card : cards) {
        ordered_json entry;
        entry["name"] = card.parameters.name;
        entry["subSystemId"] = hexWord(card.parameters.pci.subSystemId);
        entry["readings"] = readingsOf(card);
        entry["settings"] = settingsOf(card);
        entry["led"] = card.led ? ledOf(*card.led) : ordered_json();
        entry["lcd"] = card.lcd ? lcdOf(*card.lcd) : ordered_json();
        list.push_back(entry);
    }
    const ordered_json state = {{"t", timeMs}, {"cards", list}};
    return state.dump(1, ' ', false, ordered_json::error_handler_t::replace);
}

} // namespace simulated
