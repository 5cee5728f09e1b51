#include "ui/Ovryn_LanguageTable.h"

#include <QTest>

namespace
{

using Getter = QString (*)(const Ovryn_LanguageTable &);

struct Expected
{
    const char *name;
    Getter get;
    const char *english;
    const char *chinese;
};

#define TEXT(field)                                                                                                  \
#field, [](const Ovryn_LanguageTable &table) {                                                                   \
        return table.field;                                                                                          \
    }

// clang-format off
const Expected kExpected[] = {
    { TEXT(noCard), "No nvidia card found", "未发现英伟达显卡!" },

    { TEXT(mainDialog.adjust), "Adjust", "调节选项" },
    { TEXT(mainDialog.monitor), "Monitor", "监控窗口" },
    { TEXT(mainDialog.boardTemp), "Temp", "板卡温度" },
    { TEXT(mainDialog.display), "Display", "显示" },
    { TEXT(mainDialog.exit), "Exit", "退出" },
    { TEXT(mainDialog.exitQuestion), "Exit program?", "确定退出程序吗?" },
    { TEXT(mainDialog.adjustWarning),
      "Any improper adjustment may make system unstable,or damage the graphic card critically,continue?",
      "不正当的调节可能造成系统不稳定，严重可能损坏显卡，是否继续?" },
    { TEXT(mainDialog.updateTooOld),
      "New version detected,and your current version is not support for auto update, please go to our official "
      "website (" OVRYN_VENDOR_SITE ") to download the latest version.",
      "检测到新版本OvrynDeckII，但当前版本太旧，不支持自动更新到新版本，您可以前往官网(" OVRYN_VENDOR_SITE
      ")下载OvrynDeckII 最新版本。" },
    { TEXT(mainDialog.updateStartFailed), "Failed to initialize auto update.", "自动更新程序启动失败！" },
    { TEXT(mainDialog.updateUnfinished),
      "An update was interrupted, and a file can't be replaced now. Please close other programs and start OvrynDeck II "
      "again.",
      "更新被中断，有文件暂时无法替换。请关闭其他程序后重新启动OvrynDeck II。" },
    { TEXT(mainDialog.updateAsk), "New version detected ,update now?", "检测到OvrynDeck II 新版本，是否更新？" },
    { TEXT(mainDialog.updateLatest), "This is the latest version.", "当前OvrynDeckII为最新版本！" },
    { TEXT(mainDialog.highPerformance),
      "GeForce GTX 1070 Ti detected,unlock high performance mode via this button.",
      "检测到GeForce GTX 1070 Ti，可激活高性能模式。" },
    { TEXT(mainDialog.onOff), "On   Off", "开     关" },

    { TEXT(breathCircle.clock), "C L O C K", "核 心 频 率" },
    { TEXT(breathCircle.temp), "T E M P", "核 心 温 度" },
    { TEXT(breathCircle.memory), "M E M O R Y", "显 存 占 用" },
    { TEXT(breathCircle.preset), "Preset ", "预设 " },
    { TEXT(breathCircle.present), "Present ", "当前 " },
    { TEXT(breathCircle.dec), "Dec ", "减少 " },
    { TEXT(breathCircle.inc), "Inc ", "增加 " },

    { TEXT(setting.never), "None", "从不" },
    { TEXT(setting.oneWeek), "One week", "一周" },
    { TEXT(setting.oneMonth), "One month", "一个月" },
    { TEXT(setting.threeMonths), "Three months", "三个月" },
    { TEXT(setting.settings), "Settings", "设置选项" },
    { TEXT(setting.startup), "Startup", "软件启动" },
    { TEXT(setting.startOnBoot), "Automatically start OvrynDeck II when I log on to windows", "开机自启动软件" },
    { TEXT(setting.minimizeOnStart), "Minimize OvrynDeck II when it starts", "启动后自动最小化" },
    { TEXT(setting.applyLastSetting), "Apply last settings each time OvrynDeck II starts", "启动自动应用上次配置" },
    { TEXT(setting.language), "Language", "语言" },
    { TEXT(setting.monitorSetting), "Monitor setting", "监控窗体" },
    { TEXT(setting.liveUpdate), "Live update", "在线更新" },
    { TEXT(setting.updateFrequency), "Update check frequency", "软件检测更新频率" },
    { TEXT(setting.downloadAndInstall), "Download updates and install them", "自动下载更新并安装" },
    { TEXT(setting.downloadAndAsk), "Download updates but let me choose whether to install them",
      "自动下载更新但让我选择是否更新" },
    { TEXT(setting.notifyOnly), "Notify me but not download automatically ", "通知我但不自动下载" },
    { TEXT(setting.refreshFrequency), "Refresh frequency", "刷新频率" },
    { TEXT(setting.detectUpdate), "Detection Update", "检测更新" },
    { TEXT(setting.effects), "Effects", "界面效果" },
    { TEXT(setting.normal), "Normal", "普通" },
    { TEXT(setting.advanced), "Advanced", "高级" },
    { TEXT(setting.history), "History", "更新日志" },

    { TEXT(gpuFixedInfo.busWidth), "Bus Width", "显存位宽" },
    { TEXT(gpuFixedInfo.bandWidth), "Band Width", "显存带宽" },
    { TEXT(gpuFixedInfo.memType), "Mem Type", "显存类型" },
    { TEXT(gpuFixedInfo.memSize), "Mem Size", "显存容量" },
    { TEXT(gpuFixedInfo.gpuClock), "GPU Clock", "核心频率" },
    { TEXT(gpuFixedInfo.memClock), "Mem Clock", "显存频率" },
    { TEXT(gpuFixedInfo.customGpuClock), "Customized GPU  Clk", "自定义核心频率" },
    { TEXT(gpuFixedInfo.inc), "Inc", "增加" },
    { TEXT(gpuFixedInfo.dec), "Dec", "减少" },
    { TEXT(gpuFixedInfo.customMemClock), "Customized Mem Clk", "自定义显存频率" },
    { TEXT(gpuFixedInfo.biosVersion), "BIOS Version", "BIOS版本号" },
    { TEXT(gpuFixedInfo.title), "Card Info", "基本信息" },

    { TEXT(lcd.turnOnOff), "Turn on/off LCD", "开启/关闭LCD" },
    { TEXT(lcd.title), "LCD Control", "LCD控制设置" },
    { TEXT(lcd.autoSwitch), "Switch Automatically", "自动切换" },
    { TEXT(lcd.manualSwitch), "Switch Manually", "手动切换" },
    { TEXT(lcd.time), "Time:", "自动切换时间：" },
    { TEXT(lcd.hotkey), "Hotkey:", "快捷键：" },
    { TEXT(lcd.apply), "Apply", "确定" },
    { TEXT(lcd.cancel), "Cancel", "取消" },
    { TEXT(lcd.applyQuestion), "Apply these settings?", "确定应用当前修改吗?" },

    { TEXT(led.breathSingle), "Breath", "单色呼吸" },
    { TEXT(led.brightSingle), "Bright", "单色常亮" },
    { TEXT(led.breathMulti), "Breath", "呼吸" },
    { TEXT(led.brightMulti), "Bright", "常亮" },
    { TEXT(led.interval), "Interval", "切换间隔" },
    { TEXT(led.stateDisplay), "State-Display", "状态显示" },
    { TEXT(led.ledOff), "LED Off", "睡  眠" },
    { TEXT(led.gradient), "Gradient", "渐变" },
    { TEXT(led.reset), "Reset", "重置自定义颜色" },
    { TEXT(led.light), "Light", "灯效" },

    { TEXT(monitor.driverVersion), "Driver Version", "驱动版本" },
    { TEXT(monitor.gpuClock), "GPU Clock", "核心频率" },
    { TEXT(monitor.fanSpeed), "Fan Speed", "风扇转速" },
    { TEXT(monitor.temperature), "Temp", "温     度" },
    { TEXT(monitor.memoryClock), "Mem Clock", "显存频率" },
    { TEXT(monitor.memoryUsage), "Mem Usage", "显存使用率" },
    { TEXT(monitor.gpuUsage), "GPU Usage", "GPU使用率" },

    { TEXT(overClock.gpuClock), "GPU Clock(MHz)", "核心频率(MHz)" },
    { TEXT(overClock.fanSpeed), "Fanspeed(%)", "风扇转速(%)" },
    { TEXT(overClock.gpuVoltage), "GPU Voltage(mV)", "核心电压(mV)" },
    { TEXT(overClock.memClock), "Mem Clock(MHz)", "显存频率(MHz)" },
    { TEXT(overClock.targetPower), "Target Power(%)", "目标功耗(%)" },
    { TEXT(overClock.targetTemp), "Target Temp(C)", "最大温度(C)" },
    { TEXT(overClock.apply), "Apply", "应用" },
    { TEXT(overClock.cancel), "Cancel", "取消" },
    { TEXT(overClock.defaults), "Default", "默认" },
    { TEXT(overClock.applyQuestion), "Apply these settings ?", "确定应用当前设置？" },

    { TEXT(boardInfo.boardTemp), "Board Temp", "主板温度" },
    { TEXT(boardInfo.mem1), "Mem 1", "显存一" },
    { TEXT(boardInfo.mem2), "Mem 2", "显存二" },
    { TEXT(boardInfo.coreMos), "Core MOS", "核心MOS" },
    { TEXT(boardInfo.memMos), "Mem MOS", "显存MOS" },
};
// clang-format on

} // namespace

/// Every text of the interface in both languages, character by character.
class TestLanguageTable : public QObject
{
    Q_OBJECT

private slots:
    void text_data();
    void text();
    void number_data();
    void number();
    void startsInChinese();
    void everyTextIsListed();
};

void TestLanguageTable::text_data()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const Expected &row : kExpected)
        QTest::newRow(row.name) << index++;
}

void TestLanguageTable::text()
{
    QFETCH(int, index);
    const Expected &row = kExpected[index];
    Ovryn_LanguageTable table;
    QCOMPARE(row.get(table), QString::fromUtf8(row.chinese));
    table.setLanguage(kLanguageEnglish);
    QCOMPARE(row.get(table), QString::fromUtf8(row.english));
    table.setLanguage(kLanguageChinese);
    QCOMPARE(row.get(table), QString::fromUtf8(row.chinese));
}

void TestLanguageTable::number_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("exitText");
    QTest::newRow("0 is Chinese") << 0 << "退出";
    QTest::newRow("1 is English") << 1 << "Exit";
    QTest::newRow("2 is English too") << 2 << "Exit";
    QTest::newRow("-1 is English too") << -1 << "Exit";
}

void TestLanguageTable::number()
{
    QFETCH(int, number);
    QFETCH(QString, exitText);
    Ovryn_LanguageTable table;
    table.setLanguage(number);
    QCOMPARE(table.language(), number);
    QCOMPARE(table.mainDialog.exit, exitText);
}

void TestLanguageTable::startsInChinese()
{
    QCOMPARE(Ovryn_LanguageTable().language(), kLanguageChinese);
}

void TestLanguageTable::everyTextIsListed()
{
    const std::size_t inTheTable =
        (sizeof(QString) + sizeof(Lang_MainDialog) + sizeof(Lang_BreathCircle) + sizeof(Lang_Setting) +
         sizeof(Lang_GpuFixedInfo) + sizeof(Lang_LCD) + sizeof(Lang_LED) + sizeof(Lang_Monitor) +
         sizeof(Lang_OverClock) + sizeof(Lang_BoardInfo)) /
        sizeof(QString);
    QCOMPARE(std::size(kExpected), inTheTable);
}

QTEST_GUILESS_MAIN(TestLanguageTable)
#include "TestLanguageTable.moc"
