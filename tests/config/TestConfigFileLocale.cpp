#include "config/ConfigFileTest.h"
#include "config/SampleConfig.h"

#include <QLocale>
#include <QtTest>

/// The file under a locale whose digits are not those of ASCII. The system's own locale is a Persian one here.
class TestConfigFileLocale : public ConfigFileTest
{
    Q_OBJECT

private slots:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void digits_data();
    void digits();
};

void TestConfigFileLocale::digits_data()
{
    QTest::addColumn<QString>("locale"); ///< that the program's own is set to
    QTest::newRow("Persian") << "fa_IR";
    QTest::newRow("Arabic") << "ar_EG";
    QTest::newRow("Burmese") << "my_MM";
    QTest::newRow("no locale but the system's") << "C";
}

void TestConfigFileLocale::digits()
{
    QFETCH(QString, locale);
    QLocale::setDefault(QLocale(locale));
    const QDate date(2031, 12, 4);
    QVERIFY(QLocale::system().toString(date, QStringLiteral("yyyy")) != QLatin1String("2031"));

    folder->write(kSampleConfig);
    Ovryn_ConfigFile file(folder->path());
    QVERIFY(file.load());
    QDate checked;
    QVERIFY(file.getLastCheckDate(checked));
    QCOMPARE(checked, QDate(2021, 2, 28)); // ASCII digits are read
    file.setLastStartDate(date);
    file.setMonitorModule(QStringLiteral("new"), 1234567, 89);
    QVERIFY(file.save());
    QCOMPARE(folder->section("LastStartDate").text(), QString("2031/12/04")); // and written
    QCOMPARE(folder->section("LastCheckDate").text(), QString("2021/02/28"));
    for (const char byte : folder->text())
        QVERIFY2(byte > 0, folder->text().constData());

    Ovryn_ConfigFile again(folder->path());
    QVERIFY(again.load());
    again.setLastCheckDate(QDate());
    QVERIFY(again.save());
    QCOMPARE(folder->section("LastStartDate").text(), QString("2031/12/04"));
    AdjustModuleInfo adjust;
    QVERIFY(again.getAdjustModule(QStringLiteral("GeForce GTX 1070 Ti"), 286094199, adjust));
    QCOMPARE(adjust.GpuFreClock, 1900);
    QCOMPARE(adjust.Nodes.value(1), QPoint(30, 40));
}

int main(int argc, char **argv)
{
    qputenv("LC_ALL", "fa_IR.UTF-8"); // before anything asks for the system's locale
    TestConfigFileLocale test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestConfigFileLocale.moc"
