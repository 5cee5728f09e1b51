#pragma once

#include "device/NvGpuControl.h"
#include "overclock/Ovryn_OverClockingWidget.h"
#include "overclock/Ovryn_SliderWidget.h"
#include "overclock/StockCard.h"
#include "support/CheckedDriver.h"
#include "support/NamedChild.h"
#include "support/RawDriver.h"
#include "ui/ModifySpinBox.h"

#include <QCheckBox>
#include <QPushButton>
#include <QSlider>
#include <QtTest>

#include <memory>

/// The card of StockCard.h, as one that behaves.
inline void makeStock(CheckedDriver &driver)
{
    driver.edit(0, [](simulated::Card &card) {
        simulated::CardParameters parameters = card.parameters;
        parameters.clocks.baseKHz = kStockGpuMHz * 1000;
        parameters.clocks.memoryKHz = kStockMemoryMHz * 1000;
        parameters.clocks.graphicsOffsetKHz = {true, kGpuOffsetKHz.lowest, kGpuOffsetKHz.highest};
        parameters.clocks.memoryOffsetKHz = {true, kMemoryOffsetKHz.lowest, kMemoryOffsetKHz.highest};
        parameters.voltage.full_uV = kStockMillivolt * 1000 + 500;
        parameters.voltage.offset_uV = {true, kVoltageOffsetMicrovolt.lowest, kVoltageOffsetMicrovolt.highest};
        parameters.power.minimum = kPowerLimitPercent.lowest * 1000;
        parameters.power.standard = kDefaultPowerPercent * 1000;
        parameters.power.maximum = kPowerLimitPercent.highest * 1000;
        parameters.thermal.minimumC = kTargetRangeC.lowest;
        parameters.thermal.standardC = kDefaultTargetC;
        parameters.thermal.maximumC = kTargetRangeC.highest;
        parameters.thermal.pinnedC = kGpuTemperatureC;
        parameters.fan.minimumPercent = kFanRangePercent.lowest;
        parameters.fan.maximumPercent = kFanRangePercent.highest;
        card = simulated::Card(parameters);
        card.settings.powerLimit = kStockPowerPercent * 1000;
        card.settings.temperatureLimit256 = kStockTargetC * 256;
        card.settings.coolers = {{kCoolerPolicyManual, kStockFanPercent}};
    });
}

/// A raw card is made like this already.
inline void makeStock(RawDriver &) {}

/// One card with its adjust page, used as a user does. A test edits `driver` first, and then opens the page. The
/// page's pauses are short unless a test sets others.
///
/// With a CheckedDriver the card takes what it is ordered; with a RawDriver it keeps its values whatever is written,
/// and its records may be hostile.
template <class Driver>
class AdjustWorld
{
public:
    static constexpr QSize kPageSize{382, 394}; ///< as in the main dialog

    AdjustTimings timings{1, 5};

    Driver driver;     ///< first, since the device object needs it
    QStringList watch; ///< what the page said of its fan: "on" or "off", and how many orders the fan had got by then
    std::unique_ptr<NvGpuControl> control;
    std::unique_ptr<Ovryn_OverClockingWidget> page; ///< last, since its end is watched

    AdjustWorld() { makeStock(driver); }
    explicit AdjustWorld(const simulated::Scenario &scene) : driver(scene) {}

    template <class Change>
    void editCard(const Change &change)
    {
        driver.edit(0, change);
    }

    /// Without saved values, shown.
    void open()
    {
        connectCard();
        show(new Ovryn_OverClockingWidget(control.get(), nullptr, timings, noteWatch()));
    }
    void open(const AdjustModuleInfo &saved)
    {
        connectCard();
        show(new Ovryn_OverClockingWidget(saved, control.get(), nullptr, timings, noteWatch()));
    }
    /// A page that has no card, shown.
    void openWithoutCard() { show(new Ovryn_OverClockingWidget(nullptr, nullptr, timings)); }

    template <typename Widget>
    [[nodiscard]] Widget *find(const char *name) const
    {
        return namedChild<Widget>(*page, name);
    }
    [[nodiscard]] QPushButton *button(const char *name) const { return find<QPushButton>(name); }
    [[nodiscard]] QCheckBox *linkBox() const { return find<QCheckBox>("LinkCheckBox"); }
    [[nodiscard]] Ovryn_SliderWidget *row(AdjustRowIndex index) const
    {
        return find<Ovryn_SliderWidget>(kAdjustRows[index].objectName);
    }
    [[nodiscard]] QSlider *slider(AdjustRowIndex index) const { return row(index)->template findChild<QSlider *>(); }
    [[nodiscard]] ModifySpinBox *numberBox(AdjustRowIndex index) const
    {
        return row(index)->template findChild<ModifySpinBox *>();
    }

    void click(const char *name) const { QTest::mouseClick(button(name), Qt::LeftButton); }
    void clickLink() const { QTest::mouseClick(linkBox(), Qt::LeftButton, Qt::NoModifier, QPoint(13, 13)); }
    /// Types a number into a row's box and ends the edit.
    void type(AdjustRowIndex index, int number) const
    {
        ModifySpinBox *box = numberBox(index);
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, QString::number(number));
        QTest::keyClick(box, Qt::Key_Enter);
    }

    /// The values of the rows from top to bottom.
    [[nodiscard]] QVector<int> rowValues() const
    {
        QVector<int> values;
        for (int index = 0; index < AdjustRowCount; ++index)
            values << row(static_cast<AdjustRowIndex>(index))->value();
        return values;
    }
    /// The names of Apply, Cancel and Default that can be seen.
    [[nodiscard]] QStringList visibleButtons() const
    {
        QStringList names;
        for (const char *name : {"btnApply", "btnCancel", "btnDefault"}) {
            if (button(name)->isVisible())
                names << QLatin1String(name);
        }
        return names;
    }
    /// The caption of the fan mode that is checked.
    [[nodiscard]] QString fanMode() const
    {
        QString captions;
        for (const char *name : {"btnFanAuto", "btnFanManual", "btnFanUserDefined"}) {
            if (button(name)->isChecked())
                captions += button(name)->text();
        }
        return captions;
    }
    [[nodiscard]] AdjustModuleInfo parameters() const
    {
        AdjustModuleInfo out;
        page->getParameter(out);
        return out;
    }

    /// What the card was ordered, in order; see `StandInDriver::orders`.
    [[nodiscard]] QStringList orders() const { return driver.orders(); }
    [[nodiscard]] QStringList fanOrders() const { return driver.orders().filter(QRegularExpression("^fan ")); }
    [[nodiscard]] QStringList ordersBesideFan() const
    {
        QStringList list;
        for (const QString &order : driver.orders()) {
            if (!order.startsWith("fan "))
                list << order;
        }
        return list;
    }
    [[nodiscard]] QStringList distinctFanOrders() const
    {
        QStringList list = fanOrders();
        list.removeDuplicates();
        return list;
    }

protected:
    FanWatch noteWatch()
    {
        return [this](bool followsCurve) {
            watch << QStringLiteral("%1 after %2").arg(followsCurve ? "on" : "off").arg(fanOrders().size());
        };
    }

private:
    void connectCard()
    {
        control = std::make_unique<NvGpuControl>();
        control->setCurrentGpu(0);
        driver.forgetCalls();
    }
    void show(Ovryn_OverClockingWidget *newPage)
    {
        page.reset(newPage);
        page->resize(kPageSize);
        page->show();
        page->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(page.get())); // the number boxes end their edits at a change of focus
    }
};

using AdjustPageWorld = AdjustWorld<CheckedDriver>;
using RawAdjustWorld = AdjustWorld<RawDriver>;

/// The values of a signal with one bool, in order.
inline QList<bool> told(const QSignalSpy &spy)
{
    QList<bool> values;
    for (const QVariantList &arguments : spy)
        values << arguments.at(0).toBool();
    return values;
}
