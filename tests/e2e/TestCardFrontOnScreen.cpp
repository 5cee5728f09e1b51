#include "board/led/LedPageLayout.h"
#include "e2e/CardFrontTest.h"
#include "simulated/front/FrontLayout.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <memory>

using namespace cardfront;

/// The window "Card front" on the screen, with a state file that the test writes.
class TestCardFrontOnScreen : public CardFrontTest
{
    Q_OBJECT

private slots:
    void init();
    void lightsFollowTheFile();
    void lightsBreathe();
    void windowGrowsWithTheCards();
    void programsLightsAreShown();
    void noFileNamed();

private:
    void write(const QByteArray &text) const;

    std::unique_ptr<QTemporaryDir> folder;
};

namespace
{

QByteArray stateOf(const QByteArrayList &leds)
{
    QByteArrayList cards;
    for (const QByteArray &led : leds)
        cards << "{\"name\":\"GeForce GTX 1070 Ti\",\"readings\":{},\"lcd\":null,\"led\":" + led + "}";
    return "{\"t\":1,\"cards\":[" + cards.join(',') + "]}";
}

QByteArray steady(const QByteArray &colour)
{
    return R"({"effect":0,"level":50,"interval":2,"colours":[[)" + colour + "]]}";
}

} // namespace

void TestCardFrontOnScreen::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
}

/// As the driver does it: a new file takes the place of the old one.
void TestCardFrontOnScreen::write(const QByteArray &text) const
{
    const QByteArray besides = folder->filePath(QStringLiteral("new")).toLocal8Bit();
    QFile file(QString::fromLocal8Bit(besides));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), qint64(text.size()));
    file.close();
    QCOMPARE(
        std::rename(besides.constData(), folder->filePath(QStringLiteral("state.json")).toLocal8Bit().constData()),
        0);
}

void TestCardFrontOnScreen::lightsFollowTheFile()
{
    QVERIFY(startFront({folder->filePath(QStringLiteral("state.json"))})); // which is not there yet
    const qint64 window = waitForFront();
    QVERIFY(window != 0);
    QCOMPARE(screen.geometryOf(window).size(), windowSize(0));
    write(stateOf({steady("255,0,0")}));
    QVERIFY2(becomes(window, 0, false, is(QColor(255, 0, 0))), qPrintable(seen.name()));
    write(stateOf({steady("0,127,255")}));
    QVERIFY2(becomes(window, 0, false, is(QColor(0, 127, 255))), qPrintable(seen.name()));
    write("{\"cards\":[{\"na"); // a broken file leaves what was
    write(stateOf({steady("255,255,0")}).chopped(1));
    QVERIFY(look(window, 0, false));
    QCOMPARE(seen, QColor(0, 127, 255));
    write(stateOf({R"({"effect":0,"level":0,"interval":10,"colours":[]})"}));
    QVERIFY2(becomes(window, 0, false, [](const QColor &colour) { return colour.value() < 80; }),
             qPrintable(seen.name()));
    QCOMPARE(front->state(), QProcess::Running);
}

void TestCardFrontOnScreen::lightsBreathe()
{
    write(stateOf({R"({"effect":1,"level":50,"interval":4,"colours":[[0,255,0]]})"}));
    QVERIFY(startFront({folder->filePath(QStringLiteral("state.json"))}));
    const qint64 window = waitForFront();
    QVERIFY(window != 0);
    // without a word from anybody it goes up and down again
    QVERIFY2(becomes(window, 0, false, [](const QColor &colour) { return colour.green() > 180; }),
             qPrintable(seen.name()));
    QVERIFY2(becomes(window, 0, false, [](const QColor &colour) { return colour.green() < 120; }),
             qPrintable(seen.name()));
    QVERIFY2(becomes(window, 0, false, [](const QColor &colour) { return colour.green() > 180; }),
             qPrintable(seen.name()));
}

void TestCardFrontOnScreen::windowGrowsWithTheCards()
{
    write(stateOf({steady("255,0,0")}));
    QVERIFY(startFront({folder->filePath(QStringLiteral("state.json"))}));
    const qint64 window = waitForFront();
    QVERIFY(window != 0);
    QVERIFY2(becomes(window, 0, false, is(QColor(255, 0, 0))), qPrintable(seen.name()));
    write(stateOf({steady("255,0,0"), steady("0,0,255")}));
    QTRY_COMPARE_WITH_TIMEOUT(screen.geometryOf(window).size(), windowSize(2), kPatienceMs);
    QVERIFY2(becomes(window, 1, false, is(QColor(0, 0, 255))), qPrintable(seen.name()));
    QVERIFY(look(window, 0, false));
    QCOMPARE(seen, QColor(255, 0, 0));
}

void TestCardFrontOnScreen::programsLightsAreShown()
{
    InstalledProgram program(screen);
    program.writeConfig(kQuietConfig);
    QVERIFY(startFront({program.statePath()}));
    const qint64 window = waitForFront();
    QVERIFY(window != 0);
    const qint64 main = startedWindow(program);
    QVERIFY(main != 0);
    QTRY_COMPARE_WITH_TIMEOUT(screen.geometryOf(window).size(), windowSize(2), kPatienceMs); // the scene's cards
    QVERIFY(!screen.geometryOf(window).intersects(screen.geometryOf(main)));

    QVERIFY(look(window, 0, true));
    QVERIFY(seen.value() < 80);

    // The page's one chosen colour is red. Until the page has rolled in, a click meets another page or none.
    const LedPageLayout page = ledPageLayoutFor(layout.pagePanel.size());
    const auto clickRadio = [&](const QRect &radio) {
        program.clickIn(main, layout.pagePanel.topLeft() + QPoint(radio.left() + 10, radio.center().y()));
    };
    program.clickIn(main, layout.firstSlotButton.center());
    QVERIFY(QTest::qWaitFor(
        [&] {
            clickRadio(page.bright);
            return look(window, 0, true) && seen == QColor(255, 0, 0);
        },
        kPatienceMs));
    clickRadio(page.sleep);
    QVERIFY2(becomes(window, 0, true, [](const QColor &colour) { return colour.value() < 80; }),
             qPrintable(seen.name()));
    clickRadio(page.gradient);
    QVERIFY2(becomes(window, 0, true, [](const QColor &colour) { return colour.saturation() > 200; }),
             qPrintable(seen.name()));
    const QColor before = seen;
    QVERIFY2(becomes(window, 0, true, [&](const QColor &colour) { return colour != before; }),
             qPrintable(seen.name()));
    closeByButton(program, main);
    QCOMPARE(front->state(), QProcess::Running); // it shows what the cards did last
}

void TestCardFrontOnScreen::noFileNamed()
{
    QVERIFY(startFront({}));
    QVERIFY(front->waitForFinished(kPatienceMs));
    QCOMPARE(front->exitStatus(), QProcess::NormalExit);
    QCOMPARE(front->exitCode(), 2);
    QVERIFY(front->readAllStandardError().contains("Usage"));
}

int main(int argc, char **argv)
{
    return runProgramTest<TestCardFrontOnScreen>(argc, argv);
}

#include "TestCardFrontOnScreen.moc"
