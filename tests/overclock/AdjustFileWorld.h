#pragma once

#include "config/Ovryn_ConfigFile.h"
#include "overclock/AdjustPageWorld.h"
#include "simulated/ScenarioReader.h"
#include "support/ModalAnswer.h"

#include <QTemporaryDir>

/// An adjust page with a settings file between two runs of it. The card is the first of the built-in scene, one of
/// the maker's own: 1607 and 4004 MHz, 1050 mV, targets of 100 percent and 83 degrees, a fan of 20 to 100 percent
/// that the driver controls.
class AdjustFileWorld : public AdjustPageWorld
{
public:
    explicit AdjustFileWorld(const simulated::Scenario &scene = simulated::builtInScenario()) : AdjustWorld(scene) {}

    /// As the main dialog does it: with the card's saved values where the file has some.
    void openFromFile()
    {
        Ovryn_ConfigFile file(filePath());
        AdjustModuleInfo values;
        if (file.load() && file.getAdjustModule(kName, kBoard, values))
            open(values);
        else
            open();
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
        save(parameters());
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

    void move(AdjustRowIndex index, int value) const { slider(index)->setValue(value); }
    void apply() const
    {
        ModalAnswer answers({"msgBoxYesBtn"});
        click("btnApply");
        QCOMPARE(answers.problems(), QStringList());
    }

private:
    const QString kName = QStringLiteral("GeForce GTX 1070 Ti");
    static constexpr quint32 kBoard = 0x111D7377;

    [[nodiscard]] QString filePath() const { return folder.filePath(QStringLiteral("config.xml")); }

    QTemporaryDir folder;
};
