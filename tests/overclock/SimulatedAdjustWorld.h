#pragma once

#include "config/Ovryn_ConfigFile.h"
#include "device/NvGpuControl.h"
#include "device/nvapi/NvApi.h"
#include "overclock/Ovryn_OverClockingWidget.h"
#include "overclock/Ovryn_SliderWidget.h"
#include "simulated/ScenarioReader.h"
#include "support/CheckedDriver.h"
#include "support/ModalAnswer.h"
#include "support/NamedChild.h"

#include <QPushButton>
#include <QSlider>
#include <QStringList>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/// A card that takes what it is told, with its adjust page, the hands of a user and a settings file between two runs
/// of the page. It is card 0 of the built-in scene, one of the maker's own: 1607 and 4004 MHz, 1050 mV, targets of
/// 100 percent and 83 degrees, a fan of 20 to 100 percent in the driver's hands. The page's pauses are short.
class SimulatedAdjustWorld
{
public:
    CheckedDriver driver;
    std::unique_ptr<NvGpuControl> control;
    std::unique_ptr<Ovryn_OverClockingWidget> page;
    QStringList watch; ///< what the page said of its fan: "on" or "off", and how many orders the card had got by then

    explicit SimulatedAdjustWorld(const simulated::Scenario &scene = simulated::builtInScenario()) : driver(scene)
    {
        NvApiLibrarySource source;
        source.load = [this] {
            return driver.queryInterface();
        };
        source.unload = [] {
        };
        setNvApiLibrarySource(source);
        control = std::make_unique<NvGpuControl>();
        control->setCurrentGpu(0);
    }
    ~SimulatedAdjustWorld()
    {
        page.reset();
        control.reset();
        setNvApiLibrarySource({});
    }
    Q_DISABLE_COPY_MOVE(SimulatedAdjustWorld)

    /// As the main dialog does it: with the card's saved values where the file has some.
    void open()
    {
        Ovryn_ConfigFile file(filePath());
        AdjustModuleInfo saved;
        if (file.load() && file.getAdjustModule(kName, kBoard, saved))
            show(new Ovryn_OverClockingWidget(saved, control.get(), nullptr, kTimings, noteWatch()));
        else
            show(new Ovryn_OverClockingWidget(control.get(), nullptr, kTimings, noteWatch()));
    }
    void save(const AdjustModuleInfo &values) const
    {
        Ovryn_ConfigFile file(filePath());
        QVERIFY(file.load());
        file.setAdjustModule(kName, kBoard, values);
        QVERIFY(file.save());
    }
    /// Ends the page as the main dialog does it: its values go to the file first.
    void close()
    {
        AdjustModuleInfo values;
        page->getParameter(values);
        save(values);
        page.reset();
    }
    /// What the settings file holds.
    [[nodiscard]] AdjustModuleInfo saved() const
    {
        AdjustModuleInfo values;
        Ovryn_ConfigFile file(filePath());
        file.load();
        file.getAdjustModule(kName, kBoard, values);
        return values;
    }

    /// Calls `from` to `from + count - 1` of the operation fail, counted from now on; a count of 0 means all from
    /// there.
    void fails(simulated::Operation operation, quint64 count, quint64 from = 1)
    {
        simulated::Fault fault;
        fault.operation = operation;
        fault.status = NVAPI_ERROR;
        fault.from = from;
        fault.count = count;
        driver.addFault(fault);
    }

    [[nodiscard]] Ovryn_SliderWidget *row(AdjustRowIndex index) const
    {
        return namedChild<Ovryn_SliderWidget>(*page, kAdjustRows[index].objectName);
    }
    [[nodiscard]] QSlider *slider(AdjustRowIndex index) const { return row(index)->findChild<QSlider *>(); }
    void move(AdjustRowIndex index, int value) const { slider(index)->setValue(value); }
    void click(const char *name) const { QTest::mouseClick(namedChild<QPushButton>(*page, name), Qt::LeftButton); }
    void apply() const
    {
        ModalAnswer answers({"msgBoxYesBtn"});
        click("btnApply");
        QCOMPARE(answers.problems(), QStringList());
    }

    /// What the card was ordered so far, "graphics 100000" in kHz, microvolts, thousandths of a percent, 1/256 of a
    /// degree, or "fan 40 policy 1" in percent.
    [[nodiscard]] QStringList orders() const
    {
        QStringList list;
        for (const simulated::Call &call : driver.calls())
            list += ordersOf(call);
        return list;
    }

    [[nodiscard]] QStringList fanOrders() const { return orders().filter(QStringLiteral("fan")); }

private:
    static constexpr AdjustTimings kTimings{1, 5};
    const QString kName = QStringLiteral("GeForce GTX 1070 Ti");
    static constexpr quint32 kBoard = 0x111D7377;

    static QStringList ordersOf(const simulated::Call &call)
    {
        using simulated::Operation;
        const auto number = [](const nlohmann::ordered_json &value) {
            return QString::number(value.get<qint64>());
        };
        QStringList list;
        if (call.operation == Operation::NvAPI_GPU_SetPstates20) {
            for (const auto &state : call.arguments["pstates"]) {
                for (const auto &clock : state["clocks"])
                    list << (clock["domain"] == 0 ? "graphics " : "memory ") + number(clock["delta_kHz"]);
                for (const auto &voltage : state["voltages"])
                    list << "voltage " + number(voltage["delta_uV"]);
            }
        } else if (call.operation == Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus) {
            list << "power " + number(call.arguments["entries"][0]["power"]);
        } else if (call.operation == Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus) {
            list << "temperature " + number(call.arguments["entries"][0]["temperature"]);
        } else if (call.operation == Operation::NvAPI_GPU_SetCoolerLevels) {
            const auto &level = call.arguments["levels"][0];
            list << "fan " + number(level["level"]) + " policy " + number(level["policy"]);
        }
        return list;
    }

    FanWatch noteWatch()
    {
        return [this](bool followsCurve) {
            watch << QStringLiteral("%1 after %2").arg(followsCurve ? "on" : "off").arg(fanOrders().size());
        };
    }

    [[nodiscard]] QString filePath() const { return folder.filePath(QStringLiteral("config.xml")); }
    void show(Ovryn_OverClockingWidget *newPage)
    {
        page.reset(newPage);
        page->resize(382, 394);
        page->show();
    }

    QTemporaryDir folder;
};
