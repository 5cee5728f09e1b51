#include "e2e/AdjustTest.h"

#include <QTest>

const QByteArray kSteadyCard = R"({ "thermal": { "pinnedC": 50 }, "load": { "kind": "constant", "percent": 90 } })";

QByteArray cardAt(int celsius, const QByteArray &subSystemId)
{
    return R"({ "thermal": { "pinnedC": )" + QByteArray::number(celsius) + R"( }, "pci": { "subSystemId": )" +
           subSystemId + " } }";
}

QByteArray sceneOf(const QList<QByteArray> &cards, const QList<QByteArray> &faults)
{
    return "{ \"cards\": [" + cards.join(", ") + "], \"faults\": [" + faults.join(", ") + "] }";
}

QByteArray cardSection(const QByteArray &subSystemId, const QByteArray &adjustAttributes)
{
    return "<GPU GpuName=\"GeForce GTX 1070 Ti\" SubSystemId=\"" + subSystemId + "\"><AdjustModule " +
           adjustAttributes + "/></GPU>";
}

QByteArray configWith(const QByteArray &cardSections)
{
    return QByteArray(kQuietConfig).replace("<GpuSettings/>", "<GpuSettings>" + cardSections + "</GpuSettings>");
}

const QByteArray kUsualBoard = QByteArray::number(0x111D7377u);

const QString kFanToDriver = QStringLiteral("cooler 0% policy 32");

QString savedAdjustment(const InstalledProgram &program, const char *attribute, int card)
{
    return program.cardSections()
        .value(card)
        .firstChildElement(QStringLiteral("AdjustModule"))
        .attribute(QLatin1String(attribute));
}

QJsonObject readings(const InstalledProgram &program, int card)
{
    return program.cardState(card).value(QStringLiteral("readings")).toObject();
}

QJsonObject settings(const InstalledProgram &program, int card)
{
    return program.cardState(card).value(QStringLiteral("settings")).toObject();
}

QStringList coolerWrites(const InstalledProgram &program, int card, int from)
{
    return writesTo(program.journal(), card, from).filter(QStringLiteral("cooler"));
}

AdjustPageRobot AdjustTest::robotFor(const InstalledProgram &program, qint64 window) const
{
    return AdjustPageRobot(screen, program, window, layout.pagePanel);
}

QRect AdjustTest::gaugeHole(qint64 window) const
{
    return onScreen(window, QRect(layout.gaugeShown.center() - QPoint(110, 50), QSize(220, 100)));
}

void AdjustTest::openPage(InstalledProgram &program, qint64 window, const AdjustPageRobot &robot)
{
    program.clickIn(window, layout.adjustButton.center());
    pressBoxButton(program, true);
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(robot.isShown(), kPatienceMs);
}

void AdjustTest::answerApply(InstalledProgram &program, const AdjustPageRobot &robot, bool yes)
{
    robot.press(robot.parts.applyButton);
    pressBoxButton(program, yes);
    QTRY_VERIFY_WITH_TIMEOUT(program.otherWindows().isEmpty(), kPatienceMs);
}

QStringList AdjustTest::writesOfApply(InstalledProgram &program, const AdjustPageRobot &robot, int howMany)
{
    const int before = program.journal().size();
    answerApply(program, robot, true);
    QStringList writes;
    (void)QTest::qWaitFor(
        [&] {
            writes = writesTo(program.journal(), 0, before, kMainThread);
            return writes.size() >= howMany;
        },
        kPatienceMs);
    return writes;
}
