#include "app/MainDialogTest.h"
#include "config/Ovryn_ConfigFile.h"
#include "support/ModalAnswer.h"

#include <QProcess>

/// When the main dialog asks about the high-performance mode. It asks once in a process, so each row is a process of
/// its own: this program, started for that row alone.
class TestMainDialogPrompt : public MainDialogTest
{
    Q_OBJECT

private slots:
    void asksWhen_data();
    void asksWhen();
    void answerIsKept_data();
    void answerIsKept();
    void notAskingCounts_data();
    void notAskingCounts();
};

namespace
{

const char *const kOwnProcess = "OVRYN_ROW_IN_THIS_PROCESS";

/// True in the process of the row. Elsewhere it starts that process and fails the test with it.
bool isProcessOfTheRow()
{
    if (qEnvironmentVariableIsSet(kOwnProcess))
        return true;
    QProcess row;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(kOwnProcess), QStringLiteral("1"));
    row.setProcessEnvironment(environment);
    row.setProcessChannelMode(QProcess::MergedChannels);
    row.start(QCoreApplication::applicationFilePath(),
              {QString::fromLatin1(QTest::currentTestFunction()) + QLatin1Char(':') +
               QString::fromLatin1(QTest::currentDataTag())});
    const bool ended = row.waitForFinished(60000);
    const QByteArray output = row.readAll();
    if (!ended || row.exitStatus() != QProcess::NormalExit || row.exitCode() != 0)
        QTest::qFail(output.constData(), __FILE__, __LINE__);
    return false;
}

QByteArray configWith(const char *notPrompt, const char *highPerformance = "0", const char *language = "lang_ch")
{
    return QByteArray("<OvrynParameter><GeneralSetting ApplyLastParamOnStart=\"1\" Language=\"") + language +
           "\"/><GpuSettings><GPU GpuName=\"GeForce GTX 1070 Ti\" SubSystemId=\"" + QByteArray::number(0x111D7377u) +
           "\"><AdjustModule EnableHighPerformance=\"" + highPerformance +
           "\"/></GPU></GpuSettings><OtherSetting NotPromptHPS=\"" + notPrompt + "\"/></OvrynParameter>";
}

bool isPromptOff()
{
    Ovryn_ConfigFile file;
    bool off = false;
    return file.load() && file.getNotPromptHPS(off) && off;
}

const char *const kChinese = "检测到GeForce GTX 1070 Ti，可激活高性能模式。";
const char *const kEnglish = "GeForce GTX 1070 Ti detected,unlock high performance mode via this button.";

} // namespace

void TestMainDialogPrompt::asksWhen_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<quint32>("subSystemId");
    QTest::addColumn<QStringList>("texts");

    const QByteArray card("GeForce GTX 1070 Ti");
    const QStringList chinese(QString::fromUtf8(kChinese));
    const QStringList none;
    const QByteArray fresh = configWith("0");
    // clang-format off
    QTest::newRow("nothing is known")            << fresh                             << card << 0x111D7377u << chinese;
    QTest::newRow("in English")                  << configWith("0", "0", "lang_en")   << card << 0x111D7377u
                                                 << QStringList(kEnglish);
    QTest::newRow("not to be asked again")       << configWith("1")                   << card << 0x111D7377u << none;
    QTest::newRow("the mode is on")              << configWith("0", "1")              << card << 0x111D7377u << none;
    QTest::newRow("lowest variant with the mode") << fresh                            << card << 0x11187377u << chinese;
    QTest::newRow("a lower variant")             << fresh                             << card << 0x11127377u << none;
    QTest::newRow("a variant that is none")      << fresh                             << card << 0x11177377u << none;
    QTest::newRow("another family")              << fresh                             << card << 0x211D7377u << none;
    QTest::newRow("another maker")               << fresh                             << card << 0x111D1043u << none;
    QTest::newRow("another card")                << fresh << QByteArray("GeForce GTX 1070") << 0x111D7377u << none;
    // clang-format on
}

void TestMainDialogPrompt::asksWhen()
{
    QFETCH(QByteArray, config);
    QFETCH(QByteArray, name);
    QFETCH(quint32, subSystemId);
    if (!isProcessOfTheRow())
        return;
    driver->card().fullName = name.toStdString();
    driver->card().subSystemId = subSystemId;
    writeConfig(config);
    OvrynDeck2 dialog(nullptr, kQuickPages);
    const ModalAnswer answer({QStringLiteral("msgBoxYesBtn")});
    dialog.afterShow();
    QTEST(answer.texts(), "texts");
    dialog.afterShow();
    QTEST(answer.texts(), "texts"); // once a run
    QCOMPARE(answer.problems(), QStringList());
}

void TestMainDialogPrompt::answerIsKept_data()
{
    QTest::addColumn<QString>("tick");
    QTest::addColumn<bool>("off");
    QTest::newRow("with the tick") << "msgBoxCheckBox" << true;
    QTest::newRow("without the tick") << QString() << false;
}

void TestMainDialogPrompt::answerIsKept()
{
    QFETCH(QString, tick);
    if (!isProcessOfTheRow())
        return;
    writeConfig(configWith("0"));
    OvrynDeck2 dialog(nullptr, kQuickPages);
    {
        const ModalAnswer answer({QStringLiteral("msgBoxYesBtn")}, tick);
        dialog.afterShow();
        QCOMPARE(answer.problems(), QStringList());
        QCOMPARE(answer.captions(), QStringList(QStringLiteral("确定"))); // its one button
    }
    QVERIFY(!isPromptOff()); // in memory until the close
    dialog.close();
    QTEST(isPromptOff(), "off");
}

void TestMainDialogPrompt::notAskingCounts_data()
{
    QTest::addColumn<QByteArray>("firstConfig");
    QTest::newRow("not to be asked again") << configWith("1");
    QTest::newRow("the mode is on") << configWith("0", "1");
}

/// The first card with the mode uses up the question for the run, also where no box is shown.
void TestMainDialogPrompt::notAskingCounts()
{
    QFETCH(QByteArray, firstConfig);
    if (!isProcessOfTheRow())
        return;
    const ModalAnswer answer({});
    writeConfig(firstConfig);
    {
        OvrynDeck2 dialog(nullptr, kQuickPages);
        dialog.afterShow();
    }
    writeConfig(configWith("0"));
    OvrynDeck2 dialog(nullptr, kQuickPages);
    dialog.afterShow();
    QCOMPARE(answer.texts(), QStringList());
}

QTEST_MAIN(TestMainDialogPrompt)
#include "TestMainDialogPrompt.moc"
