#include "ui/Ovryn_LanguageTable.h"

#include <cstddef>
#include <iterator>

namespace
{

/// One text of a group. UTF-8.
template <typename Group>
struct TextRow
{
    QString Group::*field;
    const char *english;
    const char *chinese;
};

constexpr bool isFilled(const char *text)
{
    return text != nullptr && *text != '\0';
}

/// Every field of the group has a row, none has two, and no text is missing.
template <typename Group, std::size_t rowCount>
constexpr bool isComplete(const TextRow<Group> (&rows)[rowCount])
{
    if (rowCount * sizeof(QString) != sizeof(Group))
        return false;
    for (std::size_t i = 0; i < rowCount; ++i) {
        if (!isFilled(rows[i].english) || !isFilled(rows[i].chinese))
            return false;
        for (std::size_t j = i + 1; j < rowCount; ++j)
            if (rows[i].field == rows[j].field)
                return false;
    }
    return true;
}

template <typename Group, std::size_t rowCount>
void fill(Group &group, const TextRow<Group> (&rows)[rowCount], LanguageType language)
{
    for (const TextRow<Group> &row : rows)
        group.*row.field = QString::fromUtf8(language == kLanguageChinese ? row.chinese : row.english);
}

// Double blanks, blanks at the end and the blanks between letters are part of the texts: they are set
// wide, or a number follows them.
// clang-format off

constexpr TextRow<Ovryn_LanguageTable> kNoCardText[] = {
    // field                          English                   Chinese
    { &Ovryn_LanguageTable::noCard,   "No nvidia card found",   "未发现英伟达显卡!" },
};

constexpr TextRow<Lang_MainDialog> kMainDialogTexts[] = {
    // field                                English                             Chinese
    { &Lang_MainDialog::adjust,             "Adjust",                           "调节选项" },
    { &Lang_MainDialog::monitor,            "Monitor",                          "监控窗口" },
    { &Lang_MainDialog::boardTemp,          "Temp",                             "板卡温度" },
    { &Lang_MainDialog::display,            "Display",                          "显示" },
    { &Lang_MainDialog::exit,               "Exit",                             "退出" },
    { &Lang_MainDialog::exitQuestion,       "Exit program?",                    "确定退出程序吗?" },
    { &Lang_MainDialog::adjustWarning,      "Any improper adjustment may make system unstable,"
                                            "or damage the graphic card critically,continue?",
                                                                                "不正当的调节可能造成系统不稳定，"
                                                                                "严重可能损坏显卡，是否继续?" },
    { &Lang_MainDialog::updateTooOld,       "New version detected,and your current version is not support for auto "
                                            "update, please go to our official website (" OVRYN_VENDOR_SITE
                                            ") to download the latest version.",
                                                                                "检测到新版本OvrynDeckII，但当前版本太旧，"
                                                                                "不支持自动更新到新版本，您可以前往官网"
                                                                                "(" OVRYN_VENDOR_SITE ")"
                                                                                "下载OvrynDeckII 最新版本。" },
    { &Lang_MainDialog::updateStartFailed,  "Failed to initialize auto update.", "自动更新程序启动失败！" },
    { &Lang_MainDialog::updateAsk,          "New version detected ,update now?", "检测到OvrynDeck II 新版本，是否更新？" },
    { &Lang_MainDialog::updateLatest,       "This is the latest version.",      "当前OvrynDeckII为最新版本！" },
    { &Lang_MainDialog::updateUnfinished,   "An update was interrupted, and a file can't be replaced now. Please close other "
                                            "programs and start OvrynDeck II again.",
                                            "更新被中断，有文件暂时无法替换。请关闭其他程序后重新启动OvrynDeck II。" },
    { &Lang_MainDialog::highPerformance,    "GeForce GTX 1070 Ti detected,unlock high performance mode via this "
                                            "button.",
                                                                                "检测到GeForce GTX 1070 Ti，"
                                                                                "可激活高性能模式。" },
    { &Lang_MainDialog::onOff,              "On   Off",                         "开     关" },
};

constexpr TextRow<Lang_BreathCircle> kBreathCircleTexts[] = {
    // field                        English         Chinese
    { &Lang_BreathCircle::clock,    "C L O C K",    "核 心 频 率" },
    { &Lang_BreathCircle::temp,     "T E M P",      "核 心 温 度" },
    { &Lang_BreathCircle::memory,   "M E M O R Y",  "显 存 占 用" },
    { &Lang_BreathCircle::preset,   "Preset ",      "预设 " },
    { &Lang_BreathCircle::present,  "Present ",     "当前 " },
    { &Lang_BreathCircle::dec,      "Dec ",         "减少 " },
    { &Lang_BreathCircle::inc,      "Inc ",         "增加 " },
};

constexpr TextRow<Lang_Setting> kSettingTexts[] = {
    // field                            English                                      Chinese
    { &Lang_Setting::never,             "None",                                      "从不" },
    { &Lang_Setting::oneWeek,           "One week",                                  "一周" },
    { &Lang_Setting::oneMonth,          "One month",                                 "一个月" },
    { &Lang_Setting::threeMonths,       "Three months",                              "三个月" },
    { &Lang_Setting::settings,          "Settings",                                  "设置选项" },
    { &Lang_Setting::startup,           "Startup",                                   "软件启动" },
    { &Lang_Setting::startOnBoot,       "Automatically start OvrynDeck II when I log on to windows",
                                                                                     "开机自启动软件" },
    { &Lang_Setting::minimizeOnStart,   "Minimize OvrynDeck II when it starts",      "启动后自动最小化" },
    { &Lang_Setting::applyLastSetting,  "Apply last settings each time OvrynDeck II starts",
                                                                                     "启动自动应用上次配置" },
    { &Lang_Setting::language,          "Language",                                  "语言" },
    { &Lang_Setting::monitorSetting,    "Monitor setting",                           "监控窗体" },
    { &Lang_Setting::liveUpdate,        "Live update",                               "在线更新" },
    { &Lang_Setting::updateFrequency,   "Update check frequency",                    "软件检测更新频率" },
    { &Lang_Setting::downloadAndInstall,"Download updates and install them",         "自动下载更新并安装" },
    { &Lang_Setting::downloadAndAsk,    "Download updates but let me choose whether to install them",
                                                                                     "自动下载更新但让我选择是否更新" },
    { &Lang_Setting::notifyOnly,        "Notify me but not download automatically ", "通知我但不自动下载" },
    { &Lang_Setting::refreshFrequency,  "Refresh frequency",                         "刷新频率" },
    { &Lang_Setting::detectUpdate,      "Detection Update",                          "检测更新" },
    { &Lang_Setting::effects,           "Effects",                                   "界面效果" },
    { &Lang_Setting::normal,            "Normal",                                    "普通" },
    { &Lang_Setting::advanced,          "Advanced",                                  "高级" },
    { &Lang_Setting::history,           "History",                                   "更新日志" },
};

constexpr TextRow<Lang_GpuFixedInfo> kGpuFixedInfoTexts[] = {
    // field                                English                Chinese
    { &Lang_GpuFixedInfo::busWidth,         "Bus Width",           "显存位宽" },
    { &Lang_GpuFixedInfo::bandWidth,        "Band Width",          "显存带宽" },
    { &Lang_GpuFixedInfo::memType,          "Mem Type",            "显存类型" },
    { &Lang_GpuFixedInfo::memSize,          "Mem Size",            "显存容量" },
    { &Lang_GpuFixedInfo::gpuClock,         "GPU Clock",           "核心频率" },
    { &Lang_GpuFixedInfo::memClock,         "Mem Clock",           "显存频率" },
    { &Lang_GpuFixedInfo::customGpuClock,   "Customized GPU  Clk", "自定义核心频率" },
    { &Lang_GpuFixedInfo::inc,              "Inc",                 "增加" },
    { &Lang_GpuFixedInfo::dec,              "Dec",                 "减少" },
    { &Lang_GpuFixedInfo::customMemClock,   "Customized Mem Clk",  "自定义显存频率" },
    { &Lang_GpuFixedInfo::biosVersion,      "BIOS Version",        "BIOS版本号" },
    { &Lang_GpuFixedInfo::title,            "Card Info",           "基本信息" },
};

constexpr TextRow<Lang_LCD> kLcdTexts[] = {
    // field                    English                 Chinese
    { &Lang_LCD::turnOnOff,     "Turn on/off LCD",      "开启/关闭LCD" },
    { &Lang_LCD::title,         "LCD Control",          "LCD控制设置" },
    { &Lang_LCD::autoSwitch,    "Switch Automatically", "自动切换" },
    { &Lang_LCD::manualSwitch,  "Switch Manually",      "手动切换" },
    { &Lang_LCD::time,          "Time:",                "自动切换时间：" },
    { &Lang_LCD::hotkey,        "Hotkey:",              "快捷键：" },
    { &Lang_LCD::apply,         "Apply",                "确定" },
    { &Lang_LCD::cancel,        "Cancel",               "取消" },
    { &Lang_LCD::applyQuestion, "Apply these settings?", "确定应用当前修改吗?" },
};

constexpr TextRow<Lang_LED> kLedTexts[] = {
    // field                    English          Chinese
    { &Lang_LED::breathSingle,  "Breath",        "单色呼吸" },
    { &Lang_LED::brightSingle,  "Bright",        "单色常亮" },
    { &Lang_LED::breathMulti,   "Breath",        "呼吸" },
    { &Lang_LED::brightMulti,   "Bright",        "常亮" },
    { &Lang_LED::interval,      "Interval",      "切换间隔" },
    { &Lang_LED::stateDisplay,  "State-Display", "状态显示" },
    { &Lang_LED::ledOff,        "LED Off",       "睡  眠" },
    { &Lang_LED::gradient,      "Gradient",      "渐变" },
    { &Lang_LED::reset,         "Reset",         "重置自定义颜色" },
    { &Lang_LED::light,         "Light",         "灯效" },
};

constexpr TextRow<Lang_Monitor> kMonitorTexts[] = {
    // field                        English           Chinese
    { &Lang_Monitor::driverVersion, "Driver Version", "驱动版本" },
    { &Lang_Monitor::gpuClock,      "GPU Clock",      "核心频率" },
    { &Lang_Monitor::fanSpeed,      "Fan Speed",      "风扇转速" },
    { &Lang_Monitor::temperature,   "Temp",           "温     度" },
    { &Lang_Monitor::memoryClock,   "Mem Clock",      "显存频率" },
    { &Lang_Monitor::memoryUsage,   "Mem Usage",      "显存使用率" },
    { &Lang_Monitor::gpuUsage,      "GPU Usage",      "GPU使用率" },
};

constexpr TextRow<Lang_OverClock> kOverClockTexts[] = {
    // field                          English                  Chinese
    { &Lang_OverClock::gpuClock,      "GPU Clock(MHz)",        "核心频率(MHz)" },
    { &Lang_OverClock::fanSpeed,      "Fanspeed(%)",           "风扇转速(%)" },
    { &Lang_OverClock::gpuVoltage,    "GPU Voltage(mV)",       "核心电压(mV)" },
    { &Lang_OverClock::memClock,      "Mem Clock(MHz)",        "显存频率(MHz)" },
    { &Lang_OverClock::targetPower,   "Target Power(%)",       "目标功耗(%)" },
    { &Lang_OverClock::targetTemp,    "Target Temp(C)",        "最大温度(C)" },
    { &Lang_OverClock::apply,         "Apply",                 "应用" },
    { &Lang_OverClock::cancel,        "Cancel",                "取消" },
    { &Lang_OverClock::defaults,      "Default",               "默认" },
    { &Lang_OverClock::applyQuestion, "Apply these settings ?", "确定应用当前设置？" },
};

constexpr TextRow<Lang_BoardInfo> kBoardInfoTexts[] = {
    // field                      English       Chinese
    { &Lang_BoardInfo::boardTemp, "Board Temp", "主板温度" },
    { &Lang_BoardInfo::mem1,      "Mem 1",      "显存一" },
    { &Lang_BoardInfo::mem2,      "Mem 2",      "显存二" },
    { &Lang_BoardInfo::coreMos,   "Core MOS",   "核心MOS" },
    { &Lang_BoardInfo::memMos,    "Mem MOS",    "显存MOS" },
};

// clang-format on

static_assert(isComplete(kMainDialogTexts), "one row for each text");
static_assert(isComplete(kBreathCircleTexts), "one row for each text");
static_assert(isComplete(kSettingTexts), "one row for each text");
static_assert(isComplete(kGpuFixedInfoTexts), "one row for each text");
static_assert(isComplete(kLcdTexts), "one row for each text");
static_assert(isComplete(kLedTexts), "one row for each text");
static_assert(isComplete(kMonitorTexts), "one row for each text");
static_assert(isComplete(kOverClockTexts), "one row for each text");
static_assert(isComplete(kBoardInfoTexts), "one row for each text");

} // namespace

Ovryn_LanguageTable::Ovryn_LanguageTable()
{
    setLanguage(kLanguageChinese);
}

void Ovryn_LanguageTable::setLanguage(LanguageType language)
{
    number = language;
    fill(*this, kNoCardText, language);
    fill(mainDialog, kMainDialogTexts, language);
    fill(breathCircle, kBreathCircleTexts, language);
    fill(setting, kSettingTexts, language);
    fill(gpuFixedInfo, kGpuFixedInfoTexts, language);
    fill(lcd, kLcdTexts, language);
    fill(led, kLedTexts, language);
    fill(monitor, kMonitorTexts, language);
    fill(overClock, kOverClockTexts, language);
    fill(boardInfo, kBoardInfoTexts, language);
}
