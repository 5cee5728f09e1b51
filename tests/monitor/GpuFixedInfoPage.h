#pragma once

#include "monitor/information/Ovryn_GpuFixedInfo.h"
#include "ui/ReadonlyLineEdit.h"

#include <QLabel>
#include <QtTest>

inline constexpr QSize kPage(382, 394); ///< as in the main dialog

/// The widest of what cards tell.
inline NvInfo wideInfo()
{
    NvInfo info;
    info.memType = "GDDR5X";
    info.memSize = "24576MB";
    info.memBitWidth = "4096BIT";
    info.memBandWidth = "1008.4GB/s";
    info.gpuFreClock = "2607MHz";
    info.memFreClock = "10004MHz";
    info.customGpuFreClock = "Unknown";
    info.customMemFreClock = "10204MHz";
    info.gpuFreClockChanged = -1607;
    info.memFreClockChanged = 10204;
    info.biosVersion = "86.04.85.00.C1-WWWWWW";
    return info;
}

/// A shown page with its texts at hand.
struct GpuFixedInfoPage
{
    explicit GpuFixedInfoPage(LanguageType language = kLanguageEnglish, QSize size = kPage)
    {
        speak(language);
        widget.resize(size);
        widget.show();
        if (!QTest::qWaitForWindowExposed(&widget))
            qFatal("the page was not exposed");
    }

    void speak(LanguageType language)
    {
        Ovryn_LanguageTable table;
        table.setLanguage(language);
        widget.setLanguage(table.gpuFixedInfo, language);
    }

    QLabel *label(const char *name) const { return widget.findChild<QLabel *>(QLatin1String(name)); }
    ReadonlyLineEdit *line(const char *name) const
    {
        return widget.findChild<ReadonlyLineEdit *>(QLatin1String(name));
    }
    /// Text of a value, line or label.
    QString value(const char *name) const { return line(name) ? line(name)->text() : label(name)->text(); }

    Ovryn_GpuFixedInfo widget;
};

inline const char *const kLines[] = {"let_MemType",           "let_MemSize",          "let_MemBitWidth",
                                     "let_MemBandWidth",      "let_GpuFreClock",      "let_MemFreClock",
                                     "let_CustomGpuFreClock", "let_CustomMemFreClock"};
inline const char *const kValueLabels[] = {"lbl_GpuFreClockChangedValue", "lbl_MemFreClockChangedValue",
                                           "lbl_BiosVersionValue"};
inline const char *const kCaptions[] = {"lbl_MemType",           "lbl_MemSize",
                                        "lbl_MemBitWidth",       "lbl_MemBandWidth",
                                        "lbl_GpuFreClock",       "lbl_MemFreClock",
                                        "lbl_CustomGpuFreClock", "lbl_GpuFreClockChanged",
                                        "lbl_CustomMemFreClock", "lbl_MemFreClockChanged",
                                        "lbl_BiosVersion"};
