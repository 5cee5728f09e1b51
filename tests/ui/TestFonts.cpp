#include "ui/Fonts.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QTest>

/// The families that the widgets ask for come out as the compiled-in ones.
class TestFonts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void registered_data();
    void registered();
    void orderOfRegistering();
    void resolved_data();
    void resolved();
};

void TestFonts::initTestCase()
{
    substituteFontFamilies();
    registerApplicationFonts();
}

void TestFonts::registered_data()
{
    QTest::addColumn<QString>("family");
    QTest::newRow("segment") << "Ovryn Segment";
    QTest::newRow("wide") << "Ovryn Wide";
    QTest::newRow("Hei") << "Ovryn Hei";
    QTest::newRow("sans") << "Ovryn Sans";
}

void TestFonts::registered()
{
    QFETCH(QString, family);
    QVERIFY(QFontDatabase().families().contains(family));
}

/// The toolkit numbers the fonts as they come.
void TestFonts::orderOfRegistering()
{
    QCOMPARE(QFontDatabase::applicationFontFamilies(0), QStringList("Ovryn Hei"));
    QCOMPARE(QFontDatabase::applicationFontFamilies(1), QStringList("Ovryn Wide"));
    QCOMPARE(QFontDatabase::applicationFontFamilies(2), QStringList("Ovryn Segment"));
}

void TestFonts::resolved_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QString>("real");
    QTest::newRow("segment readouts") << "DS-Digital"
                                      << "Ovryn Segment";
    QTest::newRow("wide captions") << "Space Age"
                                   << "Ovryn Wide";
    QTest::newRow("Chinese captions") << "Tessmar_KuHei"
                                      << "Ovryn Hei";
    // The system of the tests has neither of the two.
    QTest::newRow("Arial where the system has none") << "Arial"
                                                     << "Ovryn Sans";
    QTest::newRow("微软雅黑 where the system has none") << "微软雅黑"
                                                        << "Ovryn Hei";
}

void TestFonts::resolved()
{
    QFETCH(QString, wanted);
    QTEST(QFontInfo(QFont(wanted)).family(), "real");
}

QTEST_MAIN(TestFonts)
#include "TestFonts.moc"
