#include "device/NvGpuControl.h"
#include "device/nvapi/NvApi.h"

#include "simulated/Call.h"
#include "support/CheckedDriver.h"

#include <QtTest>

#include <memory>

using namespace simulated;

/// The ways of an I2C transfer through record versions and calls, as the simulated driver's journal tells them:
/// here the driver's answers come from what it knows and what strikes it, not from a list of statuses.
class TestDeviceI2cLadder : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void ways_data();
    void ways();
    void attemptsCarryTheSameBytes();

private:
    void connectCard(const Scenario &scenario);

    std::unique_ptr<CheckedDriver> driver;
    std::unique_ptr<NvGpuControl> control;
};

namespace
{

constexpr int kAlways = 0;

/// Which calls of an operation fail with -1, whatever their record.
struct Broken
{
    int from = 0; ///< 0: none
    int count = kAlways;
};

struct Way
{
    const char *name;
    std::vector<int> plainKnows; ///< versions of the record
    std::vector<int> extendedKnows;
    Broken plain;
    Broken extended;
    const char *journal; ///< "3" is a plain call at version 3, "3x" an extended one, with what it answered
    bool result;
};

// clang-format off
const Way kWays[] = {
    // name                                            plain      extended   plain fails extended fails
    {"plain, version 3",                               {3},       {1, 2, 3}, {},     {},     "3:0",                    true},
    {"plain, version 2",                               {2},       {1, 2, 3}, {},     {},     "3:-9 2:0",               true},
    {"plain, version 1",                               {1},       {1, 2, 3}, {},     {},     "3:-9 2:-9 1:0",          true},
    {"plain, no version: extended isn't asked",        {},        {1, 2, 3}, {},     {},     "3:-9 2:-9 1:-9",         false},
    {"extended, version 3",                            {1, 2, 3}, {3},       {1},    {},     "3:-1 3x:0",              true},
    {"extended, version 2",                            {1, 2, 3}, {2},       {1},    {},     "3:-1 3x:-9 2x:0",        true},
    {"extended, version 1: plain has the last word",   {1, 2, 3}, {1},       {1},    {},     "3:-1 3x:-9 2x:-9 1:-1",  false},
    {"extended, no version: plain at version 1",       {1},       {},        {1, 1}, {},     "3:-1 3x:-9 2x:-9 1:0",   true},
    {"extended, no version, and plain none either",    {},        {},        {1, 1}, {},     "3:-1 3x:-9 2x:-9 1:-9",  false},
    {"version 2 plain fails, version 2 extended",      {2},       {2},       {2},    {},     "3:-9 2:-1 2x:0",         true},
    {"version 2 plain fails, version 1 extended",      {2},       {1},       {2},    {},     "3:-9 2:-1 2x:-9 1x:0",   true},
    {"version 2 plain fails, no version extended",     {2},       {},        {2},    {},     "3:-9 2:-1 2x:-9 1x:-9",  false},
    {"version 2 plain fails, extended fails",          {2},       {2},       {2},    {1},    "3:-9 2:-1 2x:-1",        false},
    {"version 1 plain fails: extended isn't asked",    {1},       {1},       {3},    {},     "3:-9 2:-9 1:-1",         false},
    {"extended takes version 3 the second time",       {3},       {3},       {1},    {1, 1}, "3:-1 3x:-1 3x:0",        true},
    {"extended, second time, wants version 1",         {3},       {1},       {1},    {1, 1}, "3:-1 3x:-1 3x:-9 1x:0",  true},
    {"extended, second time, knows none",              {3},       {},        {1},    {1, 1}, "3:-1 3x:-1 3x:-9 1x:-9", false},
    {"extended takes version 2 the second time",       {3},       {2},       {1},    {2, 1}, "3:-1 3x:-9 2x:-1 2x:0",  true},
    {"extended fails twice at version 2",              {3},       {2},       {1},    {2},    "3:-1 3x:-9 2x:-1 2x:-1", false},
    {"everything fails",                               {1, 2, 3}, {1, 2, 3}, {1},    {1},    "3:-1 3x:-1 3x:-1",       false},
};
// clang-format on

std::vector<quint32> versionWords(const std::vector<int> &versions)
{
    std::vector<quint32> words;
    for (const int version : versions)
        words.push_back(version == 3 ? kI2cInfoVersion3 : version == 2 ? kI2cInfoVersion2 : kI2cInfoVersion1);
    return words;
}

/// A card with LED controller and one board sensor.
Scenario boardCard()
{
    Scenario scenario;
    CardParameters card;
    card.ledControllerType = 3;
    card.boardSensors = {{0x9E, 0.8, {}}};
    scenario.cards.push_back(card);
    return scenario;
}

bool isExtended(Operation operation)
{
    return operation == Operation::NvAPI_I2CReadEx || operation == Operation::NvAPI_I2CWriteEx;
}

QString shown(const std::vector<Call> &calls)
{
    QStringList attempts;
    for (const Call &call : calls)
        attempts << QStringLiteral("%1%2:%3")
                        .arg(call.version.value_or(0) >> 16)
                        .arg(isExtended(call.operation) ? QStringLiteral("x") : QString())
                        .arg(call.status);
    return attempts.join(QLatin1Char(' '));
}

void breakCalls(CheckedDriver &driver, Operation operation, const Broken &broken)
{
    if (broken.from == 0)
        return;
    driver.fails(operation, NVAPI_ERROR, broken.from, broken.count);
}

} // namespace

void TestDeviceI2cLadder::connectCard(const Scenario &scenario)
{
    driver = std::make_unique<CheckedDriver>(scenario);
    control = std::make_unique<NvGpuControl>();
    control->setCurrentGpu(0);
}

void TestDeviceI2cLadder::cleanup()
{
    control.reset();
    driver.reset();
}

void TestDeviceI2cLadder::ways_data()
{
    QTest::addColumn<int>("way");
    QTest::addColumn<bool>("reading");
    for (const bool reading : {true, false}) {
        for (int i = 0; i < int(std::size(kWays)); ++i)
            QTest::addRow("%s: %s", reading ? "read" : "write", kWays[i].name) << i << reading;
    }
}

void TestDeviceI2cLadder::ways()
{
    QFETCH(int, way);
    QFETCH(bool, reading);
    const Way &row = kWays[way];
    connectCard(boardCard());
    const Operation plain = reading ? Operation::NvAPI_I2CRead : Operation::NvAPI_I2CWrite;
    const Operation extended = reading ? Operation::NvAPI_I2CReadEx : Operation::NvAPI_I2CWriteEx;
    driver->knows(plain, versionWords(row.plainKnows));
    driver->knows(extended, versionWords(row.extendedKnows));
    breakCalls(*driver, plain, row.plain);
    breakCalls(*driver, extended, row.extended);
    driver->forgetCalls();

    LedControllerState state;
    const bool result =
        reading ? control->readLedState(state) : control->i2cWriteFramed(nullptr, 0, 4, 0x32, 2, false);
    QCOMPARE(shown(driver->callRecords()), QString::fromLatin1(row.journal));
    QCOMPARE(result, row.result);
    // the device was reached exactly where the caller was told so
    if (reading)
        QCOMPARE(int(state.controllerType), row.result ? 3 : 0);
    else
        QCOMPARE(driver->card(0).led->acceptedFrames, row.result ? 1 : 0);
}

void TestDeviceI2cLadder::attemptsCarryTheSameBytes()
{
    connectCard(boardCard());
    driver->knows(Operation::NvAPI_I2CWrite, versionWords({1, 3}));
    driver->knows(Operation::NvAPI_I2CWriteEx, versionWords({1, 3}));
    breakCalls(*driver, Operation::NvAPI_I2CWrite, {1});
    breakCalls(*driver, Operation::NvAPI_I2CWriteEx, {1, 1});
    driver->forgetCalls();
    const quint8 red[] = {0xFF, 0, 0};
    QVERIFY(control->i2cWriteFramed(red, 3, 0, 0x32, 2, false));
    const std::vector<Call> calls = driver->callRecords();
    QCOMPARE(shown(calls), QStringLiteral("3:-1 3x:-1 3x:0"));
    for (const Call &call : calls) {
        QCOMPARE(QString::fromStdString(call.arguments.at("data").get<std::string>()),
                 QStringLiteral("08 00 32 02 FF 00 00 C4"));
        QCOMPARE(QString::fromStdString(call.arguments.at("address").get<std::string>()), QStringLiteral("0xA0"));
        QCOMPARE(call.arguments.at("regSize").get<int>(), 0);
        QCOMPARE(call.arguments.at("port").get<int>(), 1);
        QCOMPARE(call.arguments.at("speedKhz").get<int>(), 6);
    }
    QCOMPARE(driver->card(0).led->refusedFrames, 0); // none of the failed attempts reached the controller
}

QTEST_APPLESS_MAIN(TestDeviceI2cLadder)
#include "TestDeviceI2cLadder.moc"
