#include "e2e/AdjustTest.h"

#include <QTest>

/// The adjust page with bad files and drivers: saved values beyond every range, broken curves, and a driver that
/// refuses.
class TestAdjustBadInput : public AdjustTest
{
    Q_OBJECT

private slots:
    void savedNumbersOutOfRange();
    void brokenCurves();
    void driverThatRefusesEveryWrite();
};

void TestAdjustBadInput::savedNumbersOutOfRange()
{
    // One card for each kind of number; all are applied while the window is built.
    const QList<QPair<QByteArray, QByteArray>> cards = {
        {"288191351", R"(GpuFreClock="2147483647" FanSpeedLevel="2147483647" Voltage="2147483647"
                         MemoryFreClock="2147483647" Power="2147483647" Temperature="2147483647" FanMode="1")"},
        {"288256887", R"(GpuFreClock="0" FanSpeedLevel="0" Voltage="0" MemoryFreClock="0" Power="0" Temperature="0"
                         FanMode="1" LinkOfPowerWithTemperature="1")"},
        {"288322423", R"(GpuFreClock="-2147483648" FanSpeedLevel="-2147483648" Voltage="-2147483648"
                         MemoryFreClock="-2147483648" Power="-2147483648" Temperature="-2147483648" FanMode="-7")"},
        {"288387959", R"(GpuFreClock="99999999999999" FanSpeedLevel="many" Voltage="" MemoryFreClock="0x10"
                         Power="1e3" Temperature="83.5" FanMode="automatic" Nodes="0,0|100,100|")"}};
    QByteArray sections;
    QList<QByteArray> scene;
    for (const auto &card : cards) {
        sections += cardSection(card.first, card.second);
        scene << cardAt(50, card.first);
    }
    InstalledProgram program(screen);
    program.useScenario(sceneOf(scene));
    program.writeConfig(configWith(sections));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);

    // Everything is cut to the card's range: the driver refuses nothing.
    const QJsonObject high = settings(program, 0);
    QCOMPARE(high.value(QStringLiteral("graphicsOffsetKHz")).toInt(), 1200000);
    QCOMPARE(high.value(QStringLiteral("memoryOffsetKHz")).toInt(), 1000000);
    QCOMPARE(high.value(QStringLiteral("powerLimitPercent")).toInt(), 120);
    QCOMPARE(high.value(QStringLiteral("temperatureLimitC")).toInt(), 92);
    QCOMPARE(high.value(QStringLiteral("voltageOffset_uV")).toInt(), 100000);
    QCOMPARE(coolerWrites(program, 0), QStringList{QStringLiteral("cooler 100% policy 1")});
    const QJsonObject low = settings(program, 1);
    QCOMPARE(low.value(QStringLiteral("graphicsOffsetKHz")).toInt(), -200000);
    QCOMPARE(low.value(QStringLiteral("memoryOffsetKHz")).toInt(), -1000000);
    QCOMPARE(low.value(QStringLiteral("powerLimitPercent")).toInt(), 50);
    QCOMPARE(low.value(QStringLiteral("temperatureLimitC")).toInt(), 60);
    QCOMPARE(low.value(QStringLiteral("voltageOffset_uV")).toInt(), 0);
    QCOMPARE(coolerWrites(program, 1), QStringList{QStringLiteral("cooler 20% policy 1")});

    const AdjustPageRobot robot = robotFor(program, window);
    openPage(program, window, robot);
    robot.press(robot.parts.autoButton);
    robot.type(RowGpuClock, QStringLiteral("1700"), QStringLiteral("Tab"));
    QVERIFY(writesOfApply(program, robot, 6).contains(QStringLiteral("graphics 93000 kHz")));
    closeByButton(program, window);
    QCOMPARE(program.cardSections().size(), cards.size());
    QCOMPARE(savedAdjustment(program, "GpuFreClock"), QStringLiteral("1700"));
    // negative numbers keep the card's own values
    QCOMPARE(savedAdjustment(program, "GpuFreClock", 2), QStringLiteral("1607"));
    QCOMPARE(savedAdjustment(program, "Power", 2), QStringLiteral("100"));
}

void TestAdjustBadInput::brokenCurves()
{
    // At 65 degrees, where the default curve that replaces a broken one has 70 percent.
    struct Curve
    {
        const char *what;
        QByteArray text;
        int percent;
    };
    QByteArray endless;
    for (int i = 0; i < 20000; ++i)
        endless += "0,0|";
    const QList<Curve> curves = {{"none", "", 70},
                                 {"bars alone", "|||||", 70},
                                 {"one node", "0,0|", 70},
                                 {"falling", "0,0|50,60|60,40|100,100|", 70},
                                 {"going back", "0,0|50,40|40,60|100,100|", 70},
                                 {"off the scale", "0,0|50,400|100,100|", 70},
                                 {"negative", "0,0|-5,10|100,100|", 70},
                                 {"without its first node", "10,10|100,100|", 70},
                                 {"without its last node", "0,0|90,90|", 70},
                                 {"words", "a,b|c,d|e,f", 70},
                                 {"three fields", "0,0,0|100,100,100|", 70},
                                 {"broken parts between good ones", "0,0|7|60,10|70,30|,,|100,100", 20},
                                 {"very long", endless + "100,100|", 65}};
    QByteArray sections;
    QList<QByteArray> scene;
    for (int i = 0; i < curves.size(); ++i) {
        const QByteArray board = QByteArray::number(0x20000000 + i);
        sections += cardSection(board, "FanMode=\"2\" Nodes=\"" + curves.at(i).text + '"');
        scene << cardAt(65, board);
    }
    InstalledProgram program(screen);
    program.useScenario(sceneOf(scene));
    program.writeConfig(configWith(sections));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    for (int i = 0; i < curves.size(); ++i) {
        QTRY_VERIFY_WITH_TIMEOUT(!coolerWrites(program, i).isEmpty(), kPatienceMs);
        QCOMPARE(QString::fromLatin1(curves.at(i).what) + ": " + coolerWrites(program, i).first(),
                 QString::fromLatin1(curves.at(i).what) +
                     QStringLiteral(": cooler %1% policy 1").arg(curves.at(i).percent));
    }
    closeByButton(program, window);
    for (int i = 0; i < curves.size(); ++i)
        QCOMPARE(coolerWrites(program, i).last(), QStringLiteral("cooler 0% policy 32"));
}

void TestAdjustBadInput::driverThatRefusesEveryWrite()
{
    QList<QByteArray> faults;
    for (const char *operation :
         {"NvAPI_GPU_SetPstates20", "NvAPI_GPU_SetCoolerLevels", "NvAPI_GPU_ClientPowerPoliciesSetStatus",
          "NvAPI_GPU_ClientThermalPoliciesSetStatus", "NvAPI_DriverEntry_B23B70EE", "NvAPI_I2CWrite",
          "NvAPI_I2CWriteEx"})
        faults << R"({ "operation": ")" + QByteArray(operation) + R"(", "status": -1 })";
    InstalledProgram program(screen);
    program.useScenario(sceneOf({kSteadyCard}, faults));
    program.writeConfig(configWith(cardSection(kUsualBoard, R"(GpuFreClock="1700" FanSpeedLevel="80" Power="60"
                                                              FanMode="2" Nodes="")")));
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    const AdjustPageRobot robot = robotFor(program, window);
    openPage(program, window, robot);

    QTRY_VERIFY_WITH_TIMEOUT(coolerWrites(program, 0).size() > 4, kPatienceMs); // the curve's thread keeps trying
    const int before = program.journal().size();
    const auto wasOrdered = [&](const QString &write) {
        return QTest::qWaitFor([&] { return writesTo(program.journal(), 0, before, kMainThread).contains(write); },
                               kPatienceMs);
    };
    robot.press(robot.parts.defaultButton);
    QVERIFY(wasOrdered(QStringLiteral("entry 1")));
    program.clickIn(window, layout.highPerformanceButton.center());
    QVERIFY(wasOrdered(QStringLiteral("graphics 126000 kHz")));
    // The last step, so that only the reading after it can set the row back to the card's value.
    robot.press(robot.parts.manualButton);
    robot.type(RowGpuClock, QStringLiteral("1800"), QStringLiteral("Tab"));
    answerApply(program, robot, true);
    QVERIFY(wasOrdered(QStringLiteral("graphics 193000 kHz")));
    closeByButton(program, window);
    QCOMPARE(savedAdjustment(program, "GpuFreClock"),
             QStringLiteral("1607")); // the card's value, not the wanted one
    QCOMPARE(savedAdjustment(program, "Power"), QStringLiteral("100"));
}

int main(int argc, char **argv)
{
    return runProgramTest<TestAdjustBadInput>(argc, argv);
}

#include "TestAdjustBadInput.moc"
