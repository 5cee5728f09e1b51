#pragma once

#include "device/NvGpuControl.h"
#include "overclock/Ovryn_OverClockingWidget.h"
#include "overclock/Ovryn_SliderWidget.h"
#include "support/FakeDriver.h"
#include "support/NamedChild.h"
#include "ui/ModifySpinBox.h"

#include <QCheckBox>
#include <QPushButton>
#include <QSlider>
#include <QtTest>

#include <memory>

/// One simulated card with its adjust page, and the hands of a user. A test edits `driver` first, and then opens
/// the page. The page's pauses are short unless a test sets others.
///
/// The driver's card does not change by itself when it is written to; what counts is what it was told.
class AdjustPageWorld
{
public:
    static constexpr QSize kPageSize{382, 394}; ///< as in the main dialog

    AdjustTimings timings{1, 5};

    FakeDriver driver; ///< first, since the device object needs it
    std::unique_ptr<NvGpuControl> control;
    std::unique_ptr<Ovryn_OverClockingWidget> page;

    FakeCard &card() { return driver.card(); }

    /// Without saved values, shown.
    void open()
    {
        connectCard();
        show(new Ovryn_OverClockingWidget(control.get(), nullptr, timings));
    }
    void open(const AdjustModuleInfo &saved)
    {
        connectCard();
        show(new Ovryn_OverClockingWidget(saved, control.get(), nullptr, timings));
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
    [[nodiscard]] QSlider *slider(AdjustRowIndex index) const { return row(index)->findChild<QSlider *>(); }
    [[nodiscard]] ModifySpinBox *numberBox(AdjustRowIndex index) const
    {
        return row(index)->findChild<ModifySpinBox *>();
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

    /// Every call that changes the card, in order.
    [[nodiscard]] QStringList writes() const
    {
        return driver.calls().filter(QRegularExpression("GPU_Set|SetStatus|DriverEntry"));
    }
    /// The same without the fan's.
    [[nodiscard]] QStringList writesBesideFan() const
    {
        return driver.calls().filter(QRegularExpression("SetPstates|SetStatus|DriverEntry"));
    }
    [[nodiscard]] QStringList fanWrites() const { return driver.calls("NvAPI_GPU_SetCoolerLevels"); }
    [[nodiscard]] QStringList distinctFanWrites() const
    {
        QStringList calls = fanWrites();
        calls.removeDuplicates();
        return calls;
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

/// What a signal with one bool told, in order.
inline QList<bool> told(const QSignalSpy &spy)
{
    QList<bool> values;
    for (const QVariantList &arguments : spy)
        values << arguments.at(0).toBool();
    return values;
}
