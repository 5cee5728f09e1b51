#include "ui/PageFrame.h"

#include "ui/Fonts.h"
#include "ui/PaintedTexts.h"

#include <QImage>
#include <QPainter>
#include <QTest>

class TestPageFrame : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { substituteFontFamilies(); }
    void titlePixelSize_data();
    void titlePixelSize();
    void family_data();
    void family();
    void cutCorner_data();
    void cutCorner();
    void paintedAt_data();
    void paintedAt();
    void titleStaysInItsRectangle();
    void titleHasItsFont_data();
    void titleHasItsFont();
    void fontOfTheVersion();
    void emptySizeGivesNoPicture();
};

void TestPageFrame::titlePixelSize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("bandHeight");
    QTest::addColumn<int>("pixels");
    QTest::newRow("narrow page: a twelfth of the width") << QSize(120, 400) << 40 << 10;
    QTest::newRow("both divisions truncate") << QSize(143, 400) << 40 << 11;
    QTest::newRow("wide page: the band limits") << QSize(600, 400) << 40 << 26;
    QTest::newRow("a draw goes to the band") << QSize(240, 400) << 30 << 20;
}

void TestPageFrame::titlePixelSize()
{
    QFETCH(QSize, size);
    QFETCH(int, bandHeight);
    QTEST(PageFrame::titlePixelSize(size, bandHeight), "pixels");
}

void TestPageFrame::family_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("family");
    QTest::newRow("Chinese") << 0 << "微软雅黑";
    QTest::newRow("English") << 1 << "Arial";
    QTest::newRow("any other number") << 9 << "Arial";
}

void TestPageFrame::family()
{
    QFETCH(int, language);
    QTEST(PageFrame::fontFamily(language), "family");
}

void TestPageFrame::cutCorner_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<bool>("inside");
    QTest::newRow("top left") << QPointF(1, 1) << true;
    QTest::newRow("top right") << QPointF(199, 1) << true;
    QTest::newRow("bottom left") << QPointF(1, 99) << true;
    QTest::newRow("the corner itself") << QPointF(199, 99) << false;
    QTest::newRow("just above the cut") << QPointF(188, 94) << true;
    QTest::newRow("just below the cut") << QPointF(192, 96) << false;
}

void TestPageFrame::cutCorner()
{
    QFETCH(QPointF, point);
    QTEST(PageFrame::cutCornerPath(QSize(200, 100)).contains(point), "inside");
}

void TestPageFrame::paintedAt_data()
{
    QTest::addColumn<bool>("rule");
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<QColor>("colour");
    // Two layers of alpha 60 make 60 + 60 * (255 - 60) / 255 = 106.
    const QColor glass(252, 10, 53, 60);
    const QColor band(252, 10, 53, 106);
    QTest::newRow("page is glass") << true << QPoint(100, 70) << glass;
    QTest::newRow("band is twice the glass") << true << QPoint(100, 8) << band;
    QTest::newRow("no rule: band to its last row") << false << QPoint(100, 19) << band;
    QTest::newRow("no rule: glass right under it") << false << QPoint(100, 20) << glass;
    QTest::newRow("cut corner stays clear") << true << QPoint(198, 98) << QColor(0, 0, 0, 0);
}

void TestPageFrame::paintedAt()
{
    QFETCH(bool, rule);
    QFETCH(QPoint, point);
    QFETCH(QColor, colour);
    const QImage image = PageFrame::background(QSize(200, 100), 20, QRect(), QString(), 10, kLanguageEnglish,
                                               rule ? PageFrame::BandRule::Drawn : PageFrame::BandRule::LeftOut)
                             .toImage();
    const QColor painted = image.pixelColor(point);
    QVERIFY2(qAbs(painted.alpha() - colour.alpha()) <= 1, qPrintable(painted.name(QColor::HexArgb)));
    if (colour.alpha() > 0) {
        // Premultiplied storage costs a few steps of a colour at a low alpha.
        QVERIFY(qAbs(painted.red() - colour.red()) <= 4);
        QVERIFY(qAbs(painted.green() - colour.green()) <= 4);
        QVERIFY(qAbs(painted.blue() - colour.blue()) <= 4);
    }
}

void TestPageFrame::titleStaysInItsRectangle()
{
    const QSize size(300, 200);
    const QRect titleRect(60, 0, 200, 40);
    const auto paint = [&](const QString &title) {
        return PageFrame::background(size, 40, titleRect, title, 20, kLanguageEnglish).toImage();
    };
    const QImage bare = paint(QString());
    const QImage titled = paint(QStringLiteral("LCD Control"));
    int changed = 0;
    int leftmost = size.width();
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            if (bare.pixel(x, y) != titled.pixel(x, y)) {
                ++changed;
                leftmost = qMin(leftmost, x);
                QVERIFY(titleRect.contains(x, y));
            }
    QVERIFY(changed > 100);
    QVERIFY2(leftmost - titleRect.left() < 5, "the title stands at the left of its rectangle");
}

void TestPageFrame::titleHasItsFont_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("otherFamily");
    QTest::addColumn<QString>("title");
    QTest::newRow("Chinese") << 0 << QStringLiteral("微软雅黑") << "Arial" << QStringLiteral("灯效 LED");
    QTest::newRow("English") << 1 << "Arial" << QStringLiteral("微软雅黑") << "Light";
}

void TestPageFrame::titleHasItsFont()
{
    QFETCH(int, language);
    QFETCH(QString, family);
    QFETCH(QString, otherFamily);
    QFETCH(QString, title);
    const QSize size(300, 200);
    const QRect place(60, 0, 200, 40);
    const auto titledIn = [&](const QString &fontFamily, int weight, int pixels) {
        QImage image = PageFrame::background(size, 40, place, QString(), 20, language).toImage();
        QFont font(fontFamily);
        font.setPixelSize(pixels);
        font.setWeight(weight);
        QPainter painter(&image);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter, title);
        return image;
    };
    const QImage shown = PageFrame::background(size, 40, place, title, 20, language).toImage();
    QCOMPARE(shown, titledIn(family, 63, 20));
    if (language == 1) // the Chinese font has one face for both
        QVERIFY(shown != titledIn(family, 50, 20));
    QVERIFY(shown != titledIn(otherFamily, 63, 20));
    QVERIFY(shown != titledIn(family, 63, 21));
}

void TestPageFrame::fontOfTheVersion()
{
    PaintedTexts device(QSize(300, 40));
    QPainter painter(&device);
    PageFrame::paintBandVersion(painter, QFont(QStringLiteral("DS-Digital")), 39, QRect(200, 0, 100, 39),
                                QStringLiteral("388.13"));
    painter.end();
    QVERIFY2(device.texts == QList<PaintedText>({{"388.13", "DS-Digital", 19, 50, false}}),
             qPrintable(described(device.texts)));
}

void TestPageFrame::emptySizeGivesNoPicture()
{
    QVERIFY(PageFrame::background(QSize(0, 0), 0, QRect(), QStringLiteral("x"), 0, kLanguageChinese).isNull());
}

QTEST_MAIN(TestPageFrame)
#include "TestPageFrame.moc"
