#pragma once

#include "board/LcdJournal.h"
#include "board/lcd/Ovryn_HotKeyEdit.h"
#include "board/lcd/Ovryn_LCDControllorWidget.h"
#include "device/NvGpuControl.h"
#include "platform/NativeKeyCode.h"
#include "support/CheckedDriver.h"
#include "support/FakeHotKey.h"
#include "support/ModalAnswer.h"
#include "support/NamedChild.h"
#include "ui/ModifySpinBox.h"

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include <memory>

inline bool operator==(const LcdModuleInfo &a, const LcdModuleInfo &b)
{
    return a.AutoSwitch == b.AutoSwitch && a.SwitchTime == b.SwitchTime && a.ModifierKey == b.ModifierKey &&
           a.NormalKey == b.NormalKey && a.EnableLcd == b.EnableLcd;
}

/// One card with its LCD page, used as a user does. The worker's pauses are short.
class LcdPageWorld
{
public:
    static constexpr QSize kPageSize{382, 394}; ///< as in the main dialog
    static constexpr quint32 kIntervalMs = 5;
    static constexpr int kOff = 0xF0; ///< command of the frame that switches the LCD off

    CheckedDriver driver; ///< first, since the device object needs it
    FakeHotKey hotKeys;
    std::unique_ptr<NvGpuControl> control;
    std::unique_ptr<Ovryn_LCDControllorWidget> page;

    void open(quint32 intervalMs = kIntervalMs)
    {
        connectCard();
        show(new Ovryn_LCDControllorWidget(control.get(), nullptr, intervalMs));
    }
    void open(const LcdModuleInfo &saved, quint32 intervalMs = kIntervalMs)
    {
        connectCard();
        show(new Ovryn_LCDControllorWidget(saved, control.get(), nullptr, intervalMs));
    }
    /// A page whose buttons have gone: nothing is left to apply.
    void openClean(const LcdModuleInfo &saved = {}, quint32 intervalMs = kIntervalMs)
    {
        open(saved, intervalMs);
        cancel();
    }
    void close() { page.reset(); }

    // ---- the controls ----
    [[nodiscard]] QRadioButton *automatic() const { return find<QRadioButton>("rdbAutoSwitch"); }
    [[nodiscard]] QRadioButton *manual() const { return find<QRadioButton>("rdbManualSwitch"); }
    [[nodiscard]] ModifySpinBox *spin() const { return find<ModifySpinBox>("spinSwitchTime"); }
    [[nodiscard]] Ovryn_HotKeyEdit *modifierKey() const { return find<Ovryn_HotKeyEdit>("hotKeyModifier"); }
    [[nodiscard]] Ovryn_HotKeyEdit *normalKey() const { return find<Ovryn_HotKeyEdit>("hotKeyNormal"); }
    [[nodiscard]] QCheckBox *lcdSwitch() const { return find<QCheckBox>("CbLCD"); }
    [[nodiscard]] QPushButton *confirmButton() const { return find<QPushButton>("btnConfirm"); }
    [[nodiscard]] QPushButton *cancelButton() const { return find<QPushButton>("btnCancel"); }
    [[nodiscard]] Ovryn_SendNvInfoToLCDThread *worker() const
    {
        return page->findChild<Ovryn_SendNvInfoToLCDThread *>();
    }

    // ---- the hands ----
    static void clickLeft(QAbstractButton *button)
    {
        QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(8, button->height() / 2));
    }
    void cancel() const { QTest::mouseClick(cancelButton(), Qt::LeftButton); }
    /// Apply, answered with yes or no; false when the question did not come as it should.
    [[nodiscard]] bool apply(bool yes = true) const
    {
        ModalAnswer answer({yes ? QStringLiteral("msgBoxYesBtn") : QStringLiteral("msgBoxNoBtn")});
        QTest::mouseClick(confirmButton(), Qt::LeftButton);
        return answer.problems().isEmpty() && answer.texts().size() == 1;
    }
    static void press(Ovryn_HotKeyEdit *field, quint32 virtualKey)
    {
        QKeyEvent event(QEvent::KeyPress, 0, Qt::NoModifier, 0, nativeKeyFor(virtualKey), 0);
        QApplication::sendEvent(field, &event);
    }
    /// Ctrl and a letter or digit, wherever the focus is; false when nobody has registered it.
    [[nodiscard]] bool pressHotKey(char key) { return hotKeys.press(quint32(key), GlobalHotKeys::Control); }

    // ---- what can be seen ----
    /// "auto manual spin modifier normal", those that can be used.
    [[nodiscard]] QString enabledControls() const
    {
        QStringList names;
        const QList<QPair<QWidget *, QString>> controls = {{automatic(), QStringLiteral("auto")},
                                                           {manual(), QStringLiteral("manual")},
                                                           {spin(), QStringLiteral("spin")},
                                                           {modifierKey(), QStringLiteral("modifier")},
                                                           {normalKey(), QStringLiteral("normal")}};
        for (const auto &part : controls) {
            if (part.first->isEnabled())
                names << part.second;
        }
        return names.join(QLatin1Char(' '));
    }
    /// Whether Apply and Cancel show; fails the test where they differ.
    [[nodiscard]] bool isDirty() const
    {
        if (confirmButton()->isVisible() != cancelButton()->isVisible())
            QTest::qFail("one of the two buttons shows", __FILE__, __LINE__);
        return confirmButton()->isVisible();
    }
    /// What the controls show, as settings.
    [[nodiscard]] LcdModuleInfo shown() const
    {
        return {automatic()->isChecked(), quint32(spin()->value()), modifierKey()->key(), normalKey()->key(),
                lcdSwitch()->isChecked()};
    }
    [[nodiscard]] LcdModuleInfo info() const
    {
        LcdModuleInfo out;
        page->getLcdModuleInfo(out);
        return out;
    }
    [[nodiscard]] QList<int> commands() const { return lcdCommands(driver); }
    /// The digits and letters that are held with Ctrl, and nothing else is: "1K".
    [[nodiscard]] QString registeredKeys() const
    {
        QString keys;
        for (quint32 modifiers = 0; modifiers < 16; ++modifiers) {
            for (quint32 key = 0; key < 256; ++key) {
                if (!hotKeys.holds(key, modifiers))
                    continue;
                keys += modifiers == GlobalHotKeys::Control ? QString(QChar(key)) : QStringLiteral(" other ");
            }
        }
        return keys;
    }

    /// The seconds of a page that the worker was told, found by driving it by hand; 0 when the pages stand still.
    /// For a page whose LCD is off, so that the worker's own loop is over, and whose worker has the usual pause.
    [[nodiscard]] int toldSwitchSeconds()
    {
        Ovryn_SendNvInfoToLCDThread *idle = worker();
        if (!idle->wait(10000))
            QTest::qFail("the worker goes on with its LCD off", __FILE__, __LINE__);
        idle->setEnableLCD(true);
        const auto framesOfThePage = [&] {
            driver.forgetCalls();
            do
                idle->sendFrameOnce();
            while (commands().last() == commands().first() && commands().size() < 40);
            return commands().size() - 1;
        };
        framesOfThePage(); // the page that stands began before
        const int seconds = framesOfThePage();
        idle->setEnableLCD(false);
        return seconds == 39 ? 0 : seconds;
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
    void show(Ovryn_LCDControllorWidget *newPage)
    {
        page.reset(newPage);
        page->resize(kPageSize);
        page->show();
    }
};

Q_DECLARE_METATYPE(LcdModuleInfo)
