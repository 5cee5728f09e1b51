#include <QDirIterator>
#include <QFile>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QImage>
#include <QRawFont>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

#include <cmath>

/// The compiled-in images and fonts: present, of the size that the geometry needs, and complete for the
/// texts of the sources.
class TestResources : public QObject
{
    Q_OBJECT

private slots:
    void imageSize_data();
    void imageSize();
    void windowShape_data();
    void windowShape();
    void familyOfFont_data();
    void familyOfFont();
    void readoutFitsTheHole_data();
    void readoutFitsTheHole();
    void chineseFaceShowsEveryText();
    void everyNamedResourceExists();
};

namespace
{

/// String literals of the folder's C++ files, in order of appearance; comments are left out.
QStringList literalsOf(const QString &folder)
{
    // Comments and character literals come first, so that a quote inside them opens no text.
    static const QRegularExpression token(R"re(//[^\n]*|/\*.*?\*/|'(?:\\.|[^'\\\n])+'|"((?:\\.|[^"\\\n])*)")re",
                                          QRegularExpression::DotMatchesEverythingOption);
    QStringList literals;
    QDirIterator files(folder, {"*.cpp", "*.h"}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly)) {
            qWarning() << "cannot read" << file.fileName();
            return {};
        }
        auto matches = token.globalMatch(QString::fromUtf8(file.readAll()));
        while (matches.hasNext()) {
            const QString literal = matches.next().captured(1);
            if (!literal.isEmpty()) {
                literals.append(literal);
            }
        }
    }
    return literals;
}

QString familyOf(const QString &path)
{
    const int id = QFontDatabase::addApplicationFont(path);
    return QFontDatabase::applicationFontFamilies(id).value(0);
}

} // namespace

void TestResources::imageSize_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("size");
    const auto row = [](const char *name, int width, int height) {
        QTest::newRow(name) << QString::fromLatin1(name) << QSize(width, height);
    };
    row("BKImage", 1020, 680);
    row("maskBKImage", 1020, 680);
    row("SettingBKImage", 470, 440);
    row("centerLogo", 240, 36);
    row("logo", 200, 200);
    row("icon", 256, 256);
    row("messageBox/msgbkground", 420, 200);
    row("messageBox/unchecked", 18, 18);
    row("messageBox/hover_unchecked", 18, 18);
    row("messageBox/checked", 18, 18);
    row("messageBox/hover_checked", 18, 18);
    row("TopButton/first_off", 90, 24);
    row("TopButton/first_on", 90, 24);
    row("TopButton/second_off", 90, 24);
    row("TopButton/second_on", 90, 24);
    row("hightPerformanceSwitch/hps_off", 80, 20);
    row("hightPerformanceSwitch/hps_on", 80, 20);
    row("hightPerformanceSwitch/hps_over", 80, 20);
    row("lcdSwitch/lcd_off", 92, 26);
    row("lcdSwitch/lcd_off_hover", 92, 26);
    row("lcdSwitch/lcd_on", 92, 26);
    row("lcdSwitch/lcd_on_hover", 92, 26);
    row("slider/background_slider", 24, 19);
    row("slider/disable_background_slider", 24, 19);
    row("slider/void_slider", 263, 11);
    row("slider/full_slider", 263, 11);
    row("slider/disable_slider", 263, 11);
}

void TestResources::imageSize()
{
    QFETCH(QString, name);
    QFETCH(QSize, size);
    const QImage image(":/images/images/" + name + ".png");
    QCOMPARE(image.size(), size);
    QVERIFY(image.hasAlphaChannel());
}

void TestResources::windowShape_data()
{
    QTest::addColumn<QPoint>("at");
    QTest::addColumn<bool>("inside");
    QTest::newRow("cut corner at the top left") << QPoint(8, 20) << false;
    QTest::newRow("cut corner at the bottom right") << QPoint(980, 660) << false;
    QTest::newRow("below the rail") << QPoint(1010, 300) << false;
    QTest::newRow("settings button") << QPoint(1005, 71) << true;
    QTest::newRow("close button's lower right corner") << QPoint(1014, 140) << true;
    QTest::newRow("middle of the gauge") << QPoint(510, 417) << true;
    QTest::newRow("adjust button's right end") << QPoint(949, 139) << true;
    QTest::newRow("middle mark") << QPoint(510, 24) << true;
}

void TestResources::windowShape()
{
    QFETCH(QPoint, at);
    QFETCH(bool, inside);
    const QImage glass(":/images/images/BKImage.png");
    const QImage mask(":/images/images/maskBKImage.png");
    QCOMPARE(glass.pixelColor(at).alpha() > 0, inside);
    QCOMPARE(mask.pixelColor(at).alpha() > 0, inside);
}

void TestResources::familyOfFont_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("family");
    QTest::newRow("Chinese face") << "kuhei.TTF"
                                  << "Ovryn Hei";
    QTest::newRow("wide face") << "SpaceAge.ttf"
                               << "Ovryn Wide";
    QTest::newRow("segment face") << "DS-Digital.TTF"
                                  << "Ovryn Segment";
    QTest::newRow("text face") << "OvrynSans.ttf"
                               << "Ovryn Sans";
    QTest::newRow("text face, bold") << "OvrynSans-Bold.ttf"
                                     << "Ovryn Sans";
}

void TestResources::familyOfFont()
{
    QFETCH(QString, file);
    QFETCH(QString, family);
    QCOMPARE(familyOf(":/font/font/" + file), family);
}

void TestResources::readoutFitsTheHole_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("clock") << "2012 MHz";
    QTest::newRow("temperature") << QStringLiteral("100 °C");
    QTest::newRow("memory of a large card") << "49152 MB";
}

/// The gauge writes its value into a chord of its hole, at a third of the hole's radius.
void TestResources::readoutFitsTheHole()
{
    QFETCH(QString, text);
    const double holeRadius = 128.0;
    const int pixelSize = static_cast<int>(holeRadius / 3.0);
    const int chord = static_cast<int>(2.0 * std::sqrt(holeRadius * holeRadius - pixelSize * pixelSize));

    QFont font(familyOf(":/font/font/DS-Digital.TTF"));
    font.setPixelSize(pixelSize);
    font.setWeight(QFont::Bold);
    const QFontMetrics metrics(font);
    QVERIFY2(metrics.horizontalAdvance(text) <= chord, qPrintable(QString::number(metrics.horizontalAdvance(text))));
    QVERIFY(metrics.height() <= pixelSize);

    const QRawFont face(QString(":/font/font/DS-Digital.TTF"), pixelSize);
    for (const QChar character : text) {
        QVERIFY2(face.supportsCharacter(character), qPrintable(QString(character)));
    }
}

void TestResources::chineseFaceShowsEveryText()
{
    const QRawFont face(QString(":/font/font/kuhei.TTF"), 16);
    QVERIFY(face.isValid());
    QStringList texts = literalsOf(OVRYN_SOURCE_FOLDER);
    QVERIFY(!texts.isEmpty());
    QFile updateLog(OVRYN_CHINESE_UPDATE_LOG);
    QVERIFY(updateLog.open(QIODevice::ReadOnly));
    texts.append(QString::fromUtf8(updateLog.readAll()));
    QString missing;
    for (const QString &text : qAsConst(texts)) {
        for (const QChar character : text) {
            if (character.isPrint() && !face.supportsCharacter(character) && !missing.contains(character)) {
                missing.append(character);
            }
        }
    }
    QVERIFY2(
        missing.isEmpty(),
        qPrintable("have them in resources/font/characters.txt or the update log and run make_fonts.py: " + missing));
}

/// An image named wrongly in a source shows as nothing at run time; here it shows by name.
void TestResources::everyNamedResourceExists()
{
    static const QRegularExpression name(R"re(:/?((?:images/images|font/font)/[\w/-]+\.\w+))re");
    QStringList missing;
    for (const QString &literal : literalsOf(OVRYN_SOURCE_FOLDER)) {
        auto matches = name.globalMatch(literal);
        while (matches.hasNext()) {
            const QString path = ":/" + matches.next().captured(1);
            if (!QFile::exists(path)) {
                missing.append(path);
            }
        }
    }
    QVERIFY2(missing.isEmpty(), qPrintable(missing.join(' ')));
}

QTEST_MAIN(TestResources)
#include "TestResources.moc"
