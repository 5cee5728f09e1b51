#include "app/CardDetection.h"
#include "device/MakersBoards.h"

#include <QTest>

class TestCardDetection : public QObject
{
    Q_OBJECT

private slots:
    void names_data();
    void names();
    void codes_data();
    void codes();
    void numbers();
    void highPerformance_data();
    void highPerformance();
};

namespace
{

quint32 makers(quint32 device)
{
    return device << 16 | kMakerSubSystemVendor;
}

} // namespace

void TestCardDetection::names_data()
{
    QTest::addColumn<QString>("gpuName");
    QTest::addColumn<quint32>("subSystemId");
    QTest::addColumn<QString>("displayName");

    // clang-format off
    QTest::newRow("family 1000, GTX 1070 Ti")        << "GeForce GTX 1070 Ti" << makers(0x111D) << "Ovryn 1070 Ti";
    QTest::newRow("family 1000 without GTX")         << "GeForce GT 1030"     << makers(0x111D) << "GT 1030";
    QTest::newRow("family 1000 without a brand")     << "Quadro P400"         << makers(0x111D) << "Quadro P400";
    QTest::newRow("family 1000, small letters")      << "geforce gtx 1060"    << makers(0x111D) << "geforce gtx 1060";
    QTest::newRow("family 1000, name ends in GTX")   << "GeForce GTX"         << makers(0x111D) << "Ovryn ";
    QTest::newRow("family 2000, GTX 1080")           << "GeForce GTX 1080"    << makers(0x2001) << "StormPIKE 1080";
    QTest::newRow("family 2000 without GTX")         << "GeForce RTX 2080"    << makers(0x2001) << "RTX 2080";
    QTest::newRow("another board of the maker")      << "GeForce GTX 1080"    << makers(0x3001) << "GTX 1080";
    QTest::newRow("foreign GTX 1080")                << "GeForce GTX 1080"    << 0x85AA1043u    << "GTX 1080";
    QTest::newRow("foreign without a brand")         << "TITAN X"             << 0x85AA1043u    << "TITAN X";
    QTest::newRow("empty name")                      << ""                    << 0x85AA1043u    << "";
    // clang-format on
}

void TestCardDetection::names()
{
    QFETCH(QString, gpuName);
    QFETCH(quint32, subSystemId);
    const GpuCardInfo card = identifyCard(gpuName, subSystemId);
    QTEST(card.displayName, "displayName");
    QCOMPARE(card.gpuName, gpuName);
    QCOMPARE(card.subSystemId, subSystemId);
}

void TestCardDetection::codes_data()
{
    QTest::addColumn<quint32>("subSystemId");
    QTest::addColumn<int>("family");
    QTest::addColumn<int>("series");
    QTest::addColumn<int>("model");
    QTest::addColumn<int>("variant");

    // clang-format off
    QTest::newRow("1308")                          << makers(0x1308) << 0x1000 << 0x300 << 0x00 << 8;
    QTest::newRow("111D")                          << makers(0x111D) << 0x1000 << 0x100 << 0x10 << 13;
    QTest::newRow("series 200 is unknown")         << makers(0x1211) << 0x1000 << 0x000 << 0x10 << 1;
    QTest::newRow("series 400")                    << makers(0x1472) << 0x1000 << 0x400 << 0x70 << 2;
    QTest::newRow("model 80 is unknown")           << makers(0x1182) << 0x1000 << 0x100 << 0x00 << 2;
    QTest::newRow("model 90 is unknown")           << makers(0x1198) << 0x1000 << 0x100 << 0x00 << 8;
    QTest::newRow("model A0")                      << makers(0x11AF) << 0x1000 << 0x100 << 0xA0 << 15;
    QTest::newRow("model D0")                      << makers(0x11DC) << 0x1000 << 0x100 << 0xD0 << 12;
    QTest::newRow("model E0 is unknown")           << makers(0x11E1) << 0x1000 << 0x100 << 0x00 << 1;
    QTest::newRow("variant 3 is unknown")          << makers(0x1113) << 0x1000 << 0x100 << 0x10 << 0;
    QTest::newRow("variant 7 is unknown")          << makers(0x1117) << 0x1000 << 0x100 << 0x10 << 0;
    QTest::newRow("family 2000, bit 0 set")        << makers(0x2003) << 0x2000 << 0     << 0    << 1;
    QTest::newRow("family 2000, bit 1 alone")      << makers(0x2FFE) << 0x2000 << 0     << 0    << 2;
    QTest::newRow("family 2000, neither")          << makers(0x2110) << 0x2000 << 0     << 0    << 0;
    QTest::newRow("another family, bit 0")         << makers(0x3111) << 0      << 0     << 0    << 1;
    QTest::newRow("another family, bit 1")         << makers(0x0112) << 0      << 0     << 0    << 2;
    QTest::newRow("foreign vendor")                << 0x111D1043u    << 0xFFFF << 0     << 0    << 0;
    // clang-format on
}

void TestCardDetection::codes()
{
    QFETCH(quint32, subSystemId);
    const GpuCardInfo card = identifyCard(QStringLiteral("GeForce GTX 1070 Ti"), subSystemId);
    QTEST(card.family, "family");
    QTEST(card.seriesCode, "series");
    QTEST(card.modelCode, "model");
    QTEST(card.variantCode, "variant");
}

void TestCardDetection::numbers()
{
    const auto detected = [](const char *name, quint32 id) {
        return identifyCard(QString::fromLatin1(name), id);
    };
    QList<GpuCardInfo> earlier;
    QStringList displayNames;
    QStringList gpuNames;
    // two boards of one display name but different subsystems, and a third that repeats the first
    for (const quint32 id : {makers(0x111D), makers(0x111E), makers(0x111D), makers(0x111D)}) {
        GpuCardInfo card = detected("GeForce GTX 1070 Ti", id);
        const GpuCardInfo plain = card;
        numberRepeatedCard(card, earlier);
        earlier.append(plain);
        displayNames << card.displayName;
        gpuNames << card.gpuName;
    }
    QCOMPARE(displayNames, QStringList({"Ovryn 1070 Ti", "Ovryn 1070 Ti 1", "Ovryn 1070 Ti 2", "Ovryn 1070 Ti 3"}));
    QCOMPARE(gpuNames, QStringList({"GeForce GTX 1070 Ti", "GeForce GTX 1070 Ti", "GeForce GTX 1070 Ti 1",
                                    "GeForce GTX 1070 Ti 2"}));
}

void TestCardDetection::highPerformance_data()
{
    QTest::addColumn<QString>("gpuName");
    QTest::addColumn<quint32>("subSystemId");
    QTest::addColumn<bool>("offered");

    // clang-format off
    QTest::newRow("1070 Ti, variant 13")         << "GeForce GTX 1070 Ti"   << makers(0x111D) << true;
    QTest::newRow("1070 Ti, variant 8")          << "GeForce GTX 1070 Ti"   << makers(0x1118) << true;
    QTest::newRow("1070 Ti, variant 2")          << "GeForce GTX 1070 Ti"   << makers(0x1112) << false;
    QTest::newRow("1070 Ti of family 2000")      << "GeForce GTX 1070 Ti"   << makers(0x211D) << false;
    QTest::newRow("foreign 1070 Ti")             << "GeForce GTX 1070 Ti"   << 0x111D1043u    << false;
    QTest::newRow("1080 of the maker")           << "GeForce GTX 1080"      << makers(0x111D) << false;
    QTest::newRow("a second, numbered 1070 Ti")  << "GeForce GTX 1070 Ti 1" << makers(0x111D) << false;
    // clang-format on
}

void TestCardDetection::highPerformance()
{
    QFETCH(QString, gpuName);
    QFETCH(quint32, subSystemId);
    QTEST(offersHighPerformance(identifyCard(gpuName, subSystemId)), "offered");
}

QTEST_APPLESS_MAIN(TestCardDetection)
#include "TestCardDetection.moc"
