#pragma once

#include "board/led/Ovryn_ColorButton.h"
#include "board/led/Ovryn_LEDControlWidget.h"
#include "device/NvGpuControl.h"
#include "support/CheckedDriver.h"
#include "support/NamedChild.h"
#include "ui/ModifySpinBox.h"

#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include <memory>

inline bool operator==(const LedModuleInfo &a, const LedModuleInfo &b)
{
    return a.LedMode == b.LedMode && a.CheckedColorButtonStatic == b.CheckedColorButtonStatic &&
           a.CheckedColorButtonDynamic == b.CheckedColorButtonDynamic && a.Interval == b.Interval &&
           a.Colors == b.Colors;
}

constexpr quint8 kLedAddress = 0xA0;

/// One card with its LED page, used as a user does. The page's pauses are short.
class LedPageWorld
{
public:
    static constexpr QSize kPageSize{382, 394}; ///< as in the main dialog
    /// The pauses of construction and of the sleep frame, of a drag and of the worker.
    static constexpr LedTimings kTimings{0, 0, 0, 10, 1};

    CheckedDriver driver; ///< first, since the device object needs it
    std::unique_ptr<NvGpuControl> control;
    std::unique_ptr<Ovryn_LEDControlWidget> page;

    void open(const LedTimings &timings = kTimings)
    {
        connectCard();
        show(new Ovryn_LEDControlWidget(control.get(), nullptr, timings));
    }
    void open(const LedModuleInfo &saved, const LedTimings &timings = kTimings)
    {
        connectCard();
        show(new Ovryn_LEDControlWidget(saved, control.get(), nullptr, timings));
    }
    /// Without saved colours.
    void openInMode(LedMode mode, const LedTimings &timings = kTimings)
    {
        LedModuleInfo saved;
        saved.LedMode = int(mode);
        open(saved, timings);
    }

    void setControllerType(quint8 type)
    {
        driver.edit(0, [type](simulated::Card &card) { card.led.emplace(type); });
    }
    void loseController()
    {
        driver.edit(0, [](simulated::Card &card) { card.led.reset(); });
    }
    void setTemperature(int degrees)
    {
        driver.edit(0, [degrees](simulated::Card &card) { card.state.temperatureC = degrees; });
    }

    [[nodiscard]] QRadioButton *radio(const char *name) const { return find<QRadioButton>(name); }
    [[nodiscard]] ModifySpinBox *spin() const { return find<ModifySpinBox>("spinInterval"); }
    [[nodiscard]] QPushButton *reset() const { return find<QPushButton>("ResetDynamicColors"); }
    [[nodiscard]] Ovryn_ColorButton *preset(int i) const
    {
        return find<Ovryn_ColorButton>(qPrintable(QStringLiteral("preset%1").arg(i)));
    }
    [[nodiscard]] Ovryn_ColorButton *custom(int i) const
    {
        return find<Ovryn_ColorButton>(qPrintable(QStringLiteral("custom%1").arg(i)));
    }

    void choose(const char *radioName) const
    {
        QTest::mouseClick(radio(radioName), Qt::LeftButton, Qt::NoModifier,
                          QPoint(10, radio(radioName)->height() / 2));
    }
    /// A real click, waited for.
    static void click(Ovryn_ColorButton *button)
    {
        QSignalSpy clicked(button, SIGNAL(onMouseClick(Ovryn_ColorButton *)));
        QTest::mouseClick(button, Qt::LeftButton);
        QTRY_COMPARE(clicked.size(), 1);
    }

    [[nodiscard]] LedModuleInfo info() const
    {
        LedModuleInfo out;
        page->getLedModuleInfo(out);
        return out;
    }
    [[nodiscard]] QString checkedRadio() const
    {
        QStringList names;
        for (const QRadioButton *button : page->findChildren<QRadioButton *>()) {
            if (button->isChecked())
                names << button->objectName();
        }
        return names.join(QLatin1Char(' '));
    }
    /// Whether colours, interval and Reset can be used; fails the test where they differ.
    [[nodiscard]] bool colorControlsEnabled() const
    {
        int enabled = int(spin()->isEnabled()) + int(reset()->isEnabled());
        for (const Ovryn_ColorButton *button : page->findChildren<Ovryn_ColorButton *>())
            enabled += int(button->isEnabled());
        if (enabled != 0 && enabled != 16)
            QTest::qFail("some of the colour controls are enabled", __FILE__, __LINE__);
        return enabled == 16;
    }
    [[nodiscard]] QStringList frames() const { return driver.frames(kLedAddress); }
    /// The frames since the last call.
    QStringList takeFrames()
    {
        const QStringList sent = frames();
        driver.forgetCalls();
        return sent;
    }

private:
    template <typename Widget>
    [[nodiscard]] Widget *find(const char *name) const
    {
        return namedChild<Widget>(*page, name);
    }
    void connectCard()
    {
        page.reset();
        control = std::make_unique<NvGpuControl>();
        control->setCurrentGpu(0);
        driver.forgetCalls();
    }
    void show(Ovryn_LEDControlWidget *newPage)
    {
        page.reset(newPage);
        for (Ovryn_ColorButton *button : page->findChildren<Ovryn_ColorButton *>())
            button->setClickDelay(1);
        page->resize(kPageSize);
        page->show();
    }
};
