#include "device/NvGpuControl.h"

#include "support/RawDriver.h"

#include <QtTest>

using Statuses = std::vector<int>;
using Operations = std::vector<Operation>;

/// The I2C transport: the record, the ladder over plain and extended calls, and the data that moves.
class TestDeviceI2c : public QObject
{
    Q_OBJECT

private slots:
    void ladder_data();
    void ladder();
    void knownVersions_data();
    void knownVersions();
    void missingEntries_data();
    void missingEntries();
    void writeRecord_data();
    void writeRecord();
    void readMovesData();
    void deviceThatIsNotThere();
    void addressedCard();
    void frameWithoutCard_data();
    void frameWithoutCard();
};

void TestDeviceI2c::ladder_data()
{
    QTest::addColumn<bool>("reading");
    QTest::addColumn<Statuses>("plain");    // statuses of the plain calls in turn
    QTest::addColumn<Statuses>("extended"); // of the extended calls
    QTest::addColumn<QStringList>("calls"); // "3" is a plain call at version 3, "3x" an extended one
    QTest::addColumn<bool>("result");
    struct Path
    {
        const char *name;
        Statuses plain;
        Statuses extended;
        const char *calls;
        bool result;
    };
    // clang-format off
    const Path paths[] = {
        {"taken at once",                                    {0},              {},               "3",           true},
        {"version 2",                                        {-9, 0},          {},               "3 2",         true},
        {"version 1 by two unknown versions",                {-9, -9, 0},      {},               "3 2 1",       true},
        {"all versions unknown",                             {-9, -9, -9},     {},               "3 2 1",       false},
        {"version 1 fails",                                  {-9, -9, -1},     {},               "3 2 1",       false},
        {"version 2 fails, extended takes it",               {-9, -1},         {0},              "3 2 2x",      true},
        {"version 2 fails, extended wants version 1",        {-9, -1},         {-9, 0},          "3 2 2x 1x",   true},
        {"version 2 fails, extended knows nothing",          {-9, -1},         {-9, -9},         "3 2 2x 1x",   false},
        {"version 2 fails, extended fails at version 1",     {-9, -1},         {-9, -1},         "3 2 2x 1x",   false},
        {"version 2 fails, extended fails",                  {-9, -1},         {-1},             "3 2 2x",      false},
        {"plain fails, extended takes it",                   {-1},             {0},              "3 3x",        true},
        {"plain fails, extended wants version 2",            {-1},             {-9, 0},          "3 3x 2x",     true},
        {"extended unknown twice, plain version 1 takes it", {-1, 0},          {-9, -9},         "3 3x 2x 1",   true},
        {"extended unknown twice, plain version 1 fails",    {-1, -1},         {-9, -9},         "3 3x 2x 1",   false},
        {"extended unknown twice, version 1 unknown",        {-1, -9},         {-9, -9},         "3 3x 2x 1",   false},
        {"extended fails at version 2, then takes it",       {-1},             {-9, -1, 0},      "3 3x 2x 2x",  true},
        {"extended fails at version 2, then wants 1",        {-1},             {-9, -1, -9, 0},  "3 3x 2x 2x 1x", true},
        {"extended fails at version 2, then 1 fails",        {-1},             {-9, -1, -9, -1}, "3 3x 2x 2x 1x", false},
        {"extended fails twice at version 2",                {-1},             {-9, -1, -1},     "3 3x 2x 2x",  false},
        {"both fail, extended takes it the second time",     {-1},             {-1, 0},          "3 3x 3x",     true},
        {"both fail, extended then wants version 1",         {-1},             {-1, -9, 0},      "3 3x 3x 1x",  true},
        {"both fail, extended then fails at version 1",      {-1},             {-1, -9, -1},     "3 3x 3x 1x",  false},
        {"both fail, extended then knows nothing",           {-1},             {-1, -9, -9},     "3 3x 3x 1x",  false},
        {"everything fails",                                 {-1},             {-1, -1},         "3 3x 3x",     false},
        {"any other failure counts alike",                   {-104},           {-5, -10},        "3 3x 3x",     false},
        {"a positive status is a failure",                   {7},              {0},              "3 3x",        true},
    };
    // clang-format on
    for (const bool reading : {false, true}) {
        for (const Path &path : paths)
            QTest::addRow("%s: %s", reading ? "read" : "write", path.name)
                << reading << path.plain << path.extended << QString(path.calls).split(' ') << path.result;
    }
}

void TestDeviceI2c::ladder()
{
    QFETCH(bool, reading);
    QFETCH(Statuses, plain);
    QFETCH(Statuses, extended);
    QFETCH(QStringList, calls);
    QFETCH(bool, result);
    RawDriver driver;
    driver.answersInTurn(reading ? Operation::NvAPI_I2CRead : Operation::NvAPI_I2CWrite, plain);
    driver.answersInTurn(reading ? Operation::NvAPI_I2CReadEx : Operation::NvAPI_I2CWriteEx, extended);
    NvGpuControl gpu;
    driver.forgetCalls();
    quint8 data[2] = {0xAA, 0x55};
    QCOMPARE(reading ? gpu.i2cRead(0x9E, 0, 1, data, 2) : gpu.i2cWrite(0xAC, 0, 0, data, 2), result);

    QStringList made;
    for (const QString &line : driver.rawCalls()) {
        const QString operation = line.section(' ', 0, 0);
        QVERIFY2(operation.startsWith(reading ? "I2CRead" : "I2CWrite"), qPrintable(line));
        const bool isExtended = operation.endsWith("Ex");
        QCOMPARE(line.contains(" words=0,0"), isExtended);
        made << line.section(' ', 2, 2).mid(2, 1) + (isExtended ? "x" : "");
    }
    QCOMPARE(made, calls);
    if (reading)
        QCOMPARE(data[0], quint8(result ? 0x19 : 0xAA));
}

void TestDeviceI2c::knownVersions_data()
{
    QTest::addColumn<quint32>("known");
    QTest::addColumn<QStringList>("calls");
    const QString start = "I2CWrite gpu0 ";
    const QString middle = " addr=AC reg=5A regSize=1 size=2 ";
    const QString newest = start + "0x3002C" + middle + "speed=FFFF/6 port=1/1 data=AA 55";
    const QString second = start + "0x20024" + middle + "speed=FFFF/6 data=AA 55";
    const QString first = start + "0x10020" + middle + "speed=FFFF data=AA 55";
    QTest::newRow("0x3002C") << 0x3002Cu << QStringList{newest};
    QTest::newRow("0x20024") << 0x20024u << QStringList{newest + " -> -9", second};
    QTest::newRow("0x10020") << 0x10020u << QStringList{newest + " -> -9", second + " -> -9", first};
}

void TestDeviceI2c::knownVersions()
{
    QFETCH(quint32, known);
    QFETCH(QStringList, calls);
    RawDriver driver;
    driver.knows(Operation::NvAPI_I2CWrite, {known});
    driver.knows(Operation::NvAPI_I2CRead, {known});
    NvGpuControl gpu;
    driver.forgetCalls();
    quint8 data[2] = {0xAA, 0x55};
    QVERIFY(gpu.i2cWrite(0xAC, 0x5A, 1, data, 2));
    QCOMPARE(driver.rawCalls(), calls);
    QVERIFY(gpu.i2cRead(0x9E, 0, 1, data, 2));
    QCOMPARE(data[0], quint8(0x19));
    QCOMPARE(driver.versionsTried(Operation::NvAPI_I2CRead).size(), calls.size());
}

void TestDeviceI2c::missingEntries_data()
{
    QTest::addColumn<Operations>("missing");
    QTest::addColumn<bool>("result");
    QTest::addColumn<int>("calls");
    QTest::newRow("no extended calls, plain well")
        << Operations{Operation::NvAPI_I2CReadEx, Operation::NvAPI_I2CWriteEx} << true << 1;
    QTest::newRow("no plain calls") << Operations{Operation::NvAPI_I2CRead, Operation::NvAPI_I2CWrite} << true << 1;
    QTest::newRow("neither") << Operations{Operation::NvAPI_I2CRead, Operation::NvAPI_I2CWrite,
                                           Operation::NvAPI_I2CReadEx, Operation::NvAPI_I2CWriteEx}
                             << false << 0;
}

void TestDeviceI2c::missingEntries()
{
    QFETCH(Operations, missing);
    QFETCH(bool, result);
    QFETCH(int, calls);
    RawDriver driver;
    for (const Operation operation : missing)
        driver.lacks(operation);
    NvGpuControl gpu;
    quint8 data[2] = {0xAA, 0x55};
    driver.forgetCalls();
    QCOMPARE(gpu.i2cWrite(0xAC, 0, 0, data, 2), result);
    QCOMPARE(driver.rawCalls().size(), calls);
    driver.forgetCalls();
    QCOMPARE(gpu.i2cRead(0x9E, 0, 1, data, 2), result);
    QCOMPARE(driver.rawCalls().size(), calls);
}

void TestDeviceI2c::writeRecord_data()
{
    QTest::addColumn<quint8>("address");
    QTest::addColumn<quint8>("reg");
    QTest::addColumn<quint32>("regSize");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("call");
    QTest::newRow("no register") << quint8(0xAC) << quint8(0) << 0u << QByteArray::fromHex("010203")
                                 << "addr=AC reg=00 regSize=0 size=3 speed=FFFF/6 port=1/1 data=01 02 03";
    QTest::newRow("register as given") << quint8(0xA0) << quint8(0xFE) << 1u << QByteArray::fromHex("FF")
                                       << "addr=A0 reg=FE regSize=1 size=1 speed=FFFF/6 port=1/1 data=FF";
    QTest::newRow("register size as given") << quint8(0xA0) << quint8(1) << 4u << QByteArray::fromHex("00")
                                            << "addr=A0 reg=01 regSize=4 size=1 speed=FFFF/6 port=1/1 data=00";
}

void TestDeviceI2c::writeRecord()
{
    QFETCH(quint8, address);
    QFETCH(quint8, reg);
    QFETCH(quint32, regSize);
    QFETCH(QByteArray, data);
    QFETCH(QString, call);
    RawDriver driver;
    NvGpuControl gpu;
    driver.forgetCalls();
    QVERIFY(gpu.i2cWrite(address, reg, regSize, reinterpret_cast<quint8 *>(data.data()), quint32(data.size())));
    QCOMPARE(driver.rawCalls(), QStringList{"I2CWrite gpu0 0x3002C " + call});
}

void TestDeviceI2c::readMovesData()
{
    RawDriver driver;
    driver.card().i2cReplies[0x44] = QByteArray::fromHex("DEADBEEF");
    NvGpuControl gpu;
    driver.forgetCalls();
    quint8 data[5] = {1, 1, 1, 1, 1};
    QVERIFY(gpu.i2cRead(0x44, 0x10, 1, data, 4));
    QCOMPARE(QByteArray(reinterpret_cast<char *>(data), 5), QByteArray::fromHex("DEADBEEF01"));
    QCOMPARE(driver.rawCalls(),
             QStringList{"I2CRead gpu0 0x3002C addr=44 reg=10 regSize=1 size=4 speed=FFFF/6 port=1/1"});
}

void TestDeviceI2c::deviceThatIsNotThere()
{
    RawDriver driver;
    NvGpuControl gpu;
    driver.forgetCalls();
    quint8 data[2] = {0xAA, 0x55};
    QCOMPARE(gpu.i2cWrite(0x42, 0, 0, data, 2), false);
    QCOMPARE(driver.rawCalls().size(), 3); // plain, extended, extended once more
    driver.forgetCalls();
    QCOMPARE(gpu.i2cRead(0x42, 0, 1, data, 2), false);
    QCOMPARE(driver.rawCalls().size(), 3);
    QCOMPARE(data[0], quint8(0xAA));
}

void TestDeviceI2c::addressedCard()
{
    RawDriver driver;
    driver.cards.resize(2);
    driver.card(1).i2cReplies[0x9E] = QByteArray::fromHex("3300");
    NvGpuControl gpu;
    gpu.setCurrentGpu(1);
    int degrees = 0;
    QVERIFY(gpu.readBoardSensor(0x9E, degrees));
    QCOMPARE(degrees, 0x33);
}

void TestDeviceI2c::frameWithoutCard_data()
{
    QTest::addColumn<int>("dataSize");
    QTest::newRow("no data") << 0;
    QTest::newRow("seven colours") << 21;
}

/// The frame is made and given back all the same, which the leak check of a sanitized run sees.
void TestDeviceI2c::frameWithoutCard()
{
    QFETCH(int, dataSize);

    RawDriver driver;
    driver.cards.clear();
    NvGpuControl gpu;
    QVERIFY(gpu.isReady());
    driver.forgetCalls();
    const std::vector<quint8> data(std::size_t(dataSize), 0x5A);
    QCOMPARE(gpu.i2cWriteFramed(data.empty() ? nullptr : data.data(), dataSize, 2, 0x32, 3, true), false);
    QCOMPARE(driver.rawCalls(), QStringList());
}

QTEST_APPLESS_MAIN(TestDeviceI2c)
#include "TestDeviceI2c.moc"
