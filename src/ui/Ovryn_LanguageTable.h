#pragma once

#include <QString>

/// 0 is Chinese, every other number English. Pages keep it because their fonts follow it.
using LanguageType = int;
constexpr LanguageType kLanguageChinese = 0;
constexpr LanguageType kLanguageEnglish = 1;

/// Number of the `Language` value of config.xml: Chinese for "lang_ch", English for every other text.
inline LanguageType languageNumberOf(const QString &languageSetting)
{
    return languageSetting == QLatin1String("lang_ch") ? kLanguageChinese : kLanguageEnglish;
}

// One group of texts for each page, which gets it by value. The order of the fields is the order of the table.

struct Lang_MainDialog
{
    QString adjust;
    QString monitor;
    QString boardTemp;
    QString display;
    QString exit;
    QString exitQuestion;
    QString adjustWarning;
    QString updateTooOld; ///< carries the vendor's address
    QString updateStartFailed;
    QString updateAsk;
    QString updateLatest;
    QString updateUnfinished;
    QString highPerformance;
    QString onOff;
};

struct Lang_BreathCircle
{
    QString clock;
    QString temp;
    QString memory;
    QString preset;
    QString present;
    QString dec;
    QString inc;
};

struct Lang_Setting
{
    QString never;
    QString oneWeek;
    QString oneMonth;
    QString threeMonths;
    QString settings;
    QString startup;
    QString startOnBoot;
    QString minimizeOnStart;
    QString applyLastSetting;
    QString language;
    QString monitorSetting;
    QString liveUpdate;
    QString updateFrequency;
    QString downloadAndInstall;
    QString downloadAndAsk; ///< for a third update choice; no control shows it
    QString notifyOnly;
    QString refreshFrequency;
    QString detectUpdate;
    QString effects;
    QString normal;
    QString advanced;
    QString history;
};

struct Lang_GpuFixedInfo
{
    QString busWidth;
    QString bandWidth;
    QString memType;
    QString memSize;
    QString gpuClock;
    QString memClock;
    QString customGpuClock;
    QString inc;
    QString dec;
    QString customMemClock;
    QString biosVersion;
    QString title;
};

struct Lang_LCD
{
    QString turnOnOff;
    QString title;
    QString autoSwitch;
    QString manualSwitch;
    QString time;
    QString hotkey;
    QString apply;
    QString cancel;
    QString applyQuestion;
};

struct Lang_LED
{
    QString breathSingle;
    QString brightSingle;
    QString breathMulti;
    QString brightMulti;
    QString interval;
    QString stateDisplay;
    QString ledOff;
    QString gradient;
    QString reset;
    QString light;
};

struct Lang_Monitor
{
    QString driverVersion;
    QString gpuClock;
    QString fanSpeed;
    QString temperature;
    QString memoryClock;
    QString memoryUsage;
    QString gpuUsage;
};

struct Lang_OverClock
{
    QString gpuClock;
    QString fanSpeed;
    QString gpuVoltage;
    QString memClock;
    QString targetPower;
    QString targetTemp;
    QString apply;
    QString cancel;
    QString defaults;
    QString applyQuestion;
};

struct Lang_BoardInfo
{
    QString boardTemp;
    QString mem1;
    QString mem2;
    QString coreMos;
    QString memMos;
};

/// All texts of the interface in one language at a time. Made once, before the pages; GUI thread.
class Ovryn_LanguageTable
{
public:
    Ovryn_LanguageTable(); ///< Chinese

    void setLanguage(LanguageType language); ///< replaces every text; anything but 0 is English
    [[nodiscard]] LanguageType language() const { return number; }

    QString noCard; ///< shown when no card was found
    Lang_MainDialog mainDialog;
    Lang_BreathCircle breathCircle;
    Lang_Setting setting;
    Lang_GpuFixedInfo gpuFixedInfo;
    Lang_LCD lcd;
    Lang_LED led;
    Lang_Monitor monitor;
    Lang_OverClock overClock;
    Lang_BoardInfo boardInfo;

private:
    LanguageType number = kLanguageChinese;
};
