#include "support/ConnectWarnings.h"
#include "support/NamedChild.h"
#include "ui/Fonts.h"
#include "updater/UpdateWorld.h"
#include "updater/UpdaterTexts.h"
#include "updater/UpdaterWindow.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>

#include <memory>

using Stage = UpdateRun::Stage;

namespace
{

const QList<UpdateFailure> kFailures{
    UpdateFailure::NoKey,       UpdateFailure::NoServer,       UpdateFailure::NotSigned,
    UpdateFailure::BadManifest, UpdateFailure::OtherProduct,   UpdateFailure::NotNewer,
    UpdateFailure::NeedsHands,  UpdateFailure::Damaged,        UpdateFailure::DiskFull,
    UpdateFailure::ProgramRuns, UpdateFailure::ExchangeFailed, UpdateFailure::HalfDone};
const QList<Stage> kStages{Stage::Checking,   Stage::Fetching, Stage::Preparing, Stage::WaitingForProgram,
                           Stage::Exchanging, Stage::Done,     Stage::Failed};

bool hasChinese(const QString &text)
{
    return text.contains(QRegularExpression(QStringLiteral("\\p{Han}")));
}

/// The longest path that a manifest may have.
QString longestPath()
{
    return (QStringLiteral("a-folder-of-it/").repeated(7) + "the-longest.dll").leftJustified(120, 'x');
}

} // namespace

/// The updater's window, on an update that runs.
class TestUpdaterWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void connections();
    void textsAreInTheirLanguage_data();
    void textsAreInTheirLanguage();
    void everyFailureSaysWhatToDo_data();
    void everyFailureSaysWhatToDo();
    void progressText_data();
    void progressText();
    void showsEveryStage_data();
    void showsEveryStage();
    void showsTheProgress();
    void showsAFailure_data();
    void showsAFailure();
    void noTextIsCut_data();
    void noTextIsCut();
    void retryByTheKeyboard_data();
    void retryByTheKeyboard();
    void tabOrder();
    void escapeCancels();
    void closingCancels();
    void cancelButton();
    void closeAfterAFailure_data();
    void closeAfterAFailure();
    void cannotBeClosedInTheExchange();
    void everyControlHasAName_data();
    void everyControlHasAName();

private:
    static void languages()
    {
        QTest::addColumn<int>("language");
        QTest::newRow("English") << int(kLanguageEnglish);
        QTest::newRow("Chinese") << int(kLanguageChinese);
    }
    void makeWindow(LanguageType language = kLanguageEnglish) { makeWindow(current->site(), language); }
    void makeWindow(const UpdateSite &site, LanguageType language)
    {
        run = std::make_unique<UpdateRun>(site);
        window = std::make_unique<UpdaterWindow>(*run, language);
        closedWith = -1;
        connect(window.get(), &QDialog::finished, this, [this](int result) { closedWith = result; });
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }
    /// The quickest failure: this build knows no key.
    void makeFailedWindow(LanguageType language = kLanguageEnglish)
    {
        UpdateSite site = current->site();
        site.keys.clear();
        makeWindow(site, language);
        run->start();
        QCOMPARE(run->stage(), Stage::Failed);
    }
    template <typename Widget>
    Widget *child(const char *name)
    {
        return namedChild<Widget>(*window, name);
    }
    QPushButton *cancelButtonOfWindow() { return child<QPushButton>("btnCancel"); }
    QPushButton *retryButton() { return child<QPushButton>("btnRetry"); }
    [[nodiscard]] QString stageText() { return child<QLabel>("lblStage")->text(); }
    [[nodiscard]] QString detailText() { return child<QLabel>("lblDetail")->text(); }
    /// The first file of the new version comes to its half and no further.
    void stallTheFetch()
    {
        current->publish();
        HttpTurn stalls;
        stalls.sentBytes = current->offered.archive("OvrynDeck2").size() / 2;
        stalls.stalls = true;
        current->server.answerNext(current->archivePath("OvrynDeck2"), stalls);
    }

    std::unique_ptr<UpdateWorld> current;
    std::unique_ptr<UpdateRun> run;
    std::unique_ptr<UpdaterWindow> window;
    int closedWith = -1; ///< result of the dialog; -1 while it is open
};

void TestUpdaterWindow::initTestCase()
{
    substituteFontFamilies();
    registerApplicationFonts();
    QApplication::setFont(QFont(QStringLiteral("微软雅黑")));
}

void TestUpdaterWindow::init()
{
    current = std::make_unique<UpdateWorld>();
}

void TestUpdaterWindow::cleanup()
{
    window.reset();
    run.reset();
    current.reset();
}

void TestUpdaterWindow::connections()
{
    const ConnectWarnings warnings;
    makeWindow();
    QCOMPARE(warnings.list(), QStringList());
}

void TestUpdaterWindow::textsAreInTheirLanguage_data()
{
    languages();
}

void TestUpdaterWindow::textsAreInTheirLanguage()
{
    QFETCH(int, language);
    QStringList texts{UpdaterTexts::title(language),         UpdaterTexts::purpose(language),
                      UpdaterTexts::cancelCaption(language), UpdaterTexts::retryCaption(language),
                      UpdaterTexts::closeCaption(language),  UpdaterTexts::progressName(language)};
    for (const Stage stage : kStages)
        texts.append(UpdaterTexts::stage(stage, language));
    for (const UpdateFailure failure : kFailures)
        texts.append(UpdaterTexts::failure(failure, {}, language));
    for (const QString &text : qAsConst(texts)) {
        QVERIFY(!text.isEmpty());
        QVERIFY2(hasChinese(text) == (language == kLanguageChinese), qPrintable(text));
    }
    QCOMPARE(texts.removeDuplicates(), 0);
    QVERIFY(UpdaterTexts::failure(UpdateFailure::Damaged, "lib/a.so", language).contains("lib/a.so"));
}

void TestUpdaterWindow::everyFailureSaysWhatToDo_data()
{
    QTest::addColumn<int>("failure");
    for (const UpdateFailure failure : kFailures)
        QTest::newRow(qPrintable(UpdaterTexts::failure(failure, {}, kLanguageEnglish))) << int(failure);
}

void TestUpdaterWindow::everyFailureSaysWhatToDo()
{
    QFETCH(int, failure);
    const QString english = UpdaterTexts::failure(UpdateFailure(failure), {}, kLanguageEnglish);
    const QString chinese = UpdaterTexts::failure(UpdateFailure(failure), {}, kLanguageChinese);
    QVERIFY(english.contains(QRegularExpression("Please |Close other programs")));
    QVERIFY(chinese.contains(QRegularExpression("请")));
    QCOMPARE(english.contains("website"), chinese.contains("官网"));
    QCOMPARE(english.contains("try again"), chinese.contains("重试"));
}

void TestUpdaterWindow::progressText_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<qint64>("total");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("english");
    QTest::addColumn<QString>("chinese");
    constexpr qint64 kMegabyte = 1024 * 1024;
    QTest::newRow("nothing yet") << qint64(0) << 48 * kMegabyte << 0 << "0.0 of 48.0 MB"
                                 << "0.0 / 48.0 MB";
    QTest::newRow("seconds") << 25 * kMegabyte / 2 << 48 * kMegabyte << 9 << "12.5 of 48.0 MB, 9 s left"
                             << "12.5 / 48.0 MB，还剩9秒";
    QTest::newRow("almost two minutes") << kMegabyte << 48 * kMegabyte << 119 << "1.0 of 48.0 MB, 119 s left"
                                        << "1.0 / 48.0 MB，还剩119秒";
    QTest::newRow("two minutes") << kMegabyte << 48 * kMegabyte << 120 << "1.0 of 48.0 MB, 2 minutes left"
                                 << "1.0 / 48.0 MB，还剩2分钟";
    QTest::newRow("hours") << kMegabyte << 1024 * kMegabyte << 7200 << "1.0 of 1024.0 MB, 120 minutes left"
                           << "1.0 / 1024.0 MB，还剩120分钟";
}

void TestUpdaterWindow::progressText()
{
    QFETCH(qint64, bytes);
    QFETCH(qint64, total);
    QFETCH(int, seconds);
    QTEST(UpdaterTexts::progress(bytes, total, seconds, kLanguageEnglish), "english");
    QTEST(UpdaterTexts::progress(bytes, total, seconds, kLanguageChinese), "chinese");
}

void TestUpdaterWindow::showsEveryStage_data()
{
    languages();
}

void TestUpdaterWindow::showsEveryStage()
{
    QFETCH(int, language);
    current->publish();
    makeWindow(language);
    QStringList shown;
    QStringList expected;
    QList<Stage> cancellable;
    connect(run.get(), &UpdateRun::stageChanged, this, [&] {
        shown.append(stageText());
        expected.append(UpdaterTexts::stage(run->stage(), language));
        if (cancelButtonOfWindow()->isEnabled())
            cancellable.append(run->stage());
    });
    run->start();
    QTRY_COMPARE_WITH_TIMEOUT(closedWith, int(QDialog::Accepted), 60000);
    QCOMPARE(shown, expected);
    QCOMPARE(shown.size(), 6);
    QCOMPARE(cancellable,
             (QList<Stage>{Stage::Checking, Stage::Fetching, Stage::Preparing, Stage::WaitingForProgram}));
    QCOMPARE(window->windowTitle(), UpdaterTexts::title(language));
    QCOMPARE(child<QLabel>("lblTitle")->text(), UpdaterTexts::title(language));
    QCOMPARE(cancelButtonOfWindow()->text(), UpdaterTexts::cancelCaption(language));
}

void TestUpdaterWindow::showsTheProgress()
{
    stallTheFetch();
    makeWindow();
    auto *bar = child<QProgressBar>("progressBar");
    QCOMPARE(bar->maximum(), 0); // moves without end
    run->start();
    const int half = current->offered.archive("OvrynDeck2").size() / 2;
    QTRY_COMPARE_WITH_TIMEOUT(run->bytesFetched(), half, 60000);
    QVERIFY(bar->maximum() > 0);
    QVERIFY(bar->isVisible());
    QCOMPARE(bar->value(), int(half * qint64(bar->maximum()) / run->bytesToFetch()));
    QVERIFY(detailText().startsWith(UpdaterTexts::progress(half, run->bytesToFetch(), 0, kLanguageEnglish)));
}

void TestUpdaterWindow::showsAFailure_data()
{
    languages();
}

void TestUpdaterWindow::showsAFailure()
{
    QFETCH(int, language);
    current->publish();
    current->server.remove(current->archivePath("lib/changed.so"));
    makeWindow(language);
    QVERIFY(!retryButton()->isVisible());
    run->start();
    QTRY_COMPARE_WITH_TIMEOUT(run->stage(), Stage::Failed, 60000);
    QCOMPARE(stageText(), UpdaterTexts::stage(Stage::Failed, language));
    QCOMPARE(detailText(), UpdaterTexts::failure(UpdateFailure::NoServer, "lib/changed.so", language));
    QVERIFY(retryButton()->isVisible());
    QCOMPARE(retryButton()->text(), UpdaterTexts::retryCaption(language));
    QCOMPARE(cancelButtonOfWindow()->text(), UpdaterTexts::closeCaption(language));
    QVERIFY(cancelButtonOfWindow()->isEnabled());
    QVERIFY(!child<QProgressBar>("progressBar")->isVisible());
    QCOMPARE(closedWith, -1);
}

void TestUpdaterWindow::noTextIsCut_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("stage");
    QTest::addColumn<QString>("detail");
    for (const int language : {int(kLanguageEnglish), int(kLanguageChinese)}) {
        const QString name = language == kLanguageEnglish ? "English: " : "Chinese: ";
        for (const Stage stage : kStages)
            QTest::newRow(qPrintable(name + UpdaterTexts::stage(stage, kLanguageEnglish)))
                << language << UpdaterTexts::stage(stage, language)
                << UpdaterTexts::progress(1073741823, 1073741824, 119, language);
        for (const UpdateFailure failure : kFailures)
            QTest::newRow(qPrintable(name + UpdaterTexts::failure(failure, {}, kLanguageEnglish)))
                << language << UpdaterTexts::stage(Stage::Failed, language)
                << UpdaterTexts::failure(failure, longestPath(), language);
    }
}

void TestUpdaterWindow::noTextIsCut()
{
    QFETCH(int, language);
    QFETCH(QString, stage);
    QFETCH(QString, detail);
    if (stage == UpdaterTexts::stage(Stage::Failed, language))
        makeFailedWindow(language);
    else
        makeWindow(language);
    child<QLabel>("lblStage")->setText(stage);
    child<QLabel>("lblDetail")->setText(detail);
    window->layout()->activate();
    const QPushButton *lowest = cancelButtonOfWindow();
    int above = 0;
    for (const char *name : {"lblTitle", "lblStage", "lblDetail"}) {
        const auto *label = child<QLabel>(name);
        const QRect place = label->geometry();
        QVERIFY2(window->rect().contains(place), name);
        const QRect text = label->fontMetrics().boundingRect(QRect(QPoint(), place.size()),
                                                             Qt::TextWordWrap | Qt::AlignLeft, label->text());
        QVERIFY2(text.width() <= place.width() && text.height() <= place.height(),
                 qPrintable(QStringLiteral("%1: %2x%3 in %4x%5")
                                .arg(name)
                                .arg(text.width())
                                .arg(text.height())
                                .arg(place.width())
                                .arg(place.height())));
        QVERIFY2(place.top() >= above, name);
        above = place.bottom();
    }
    QVERIFY(above < lowest->geometry().top());
    for (const QPushButton *button : {cancelButtonOfWindow(), retryButton()}) {
        if (button->isVisible())
            QVERIFY(button->fontMetrics().horizontalAdvance(button->text()) < button->width());
        QVERIFY(window->rect().contains(button->geometry()) || !button->isVisible());
    }
}

void TestUpdaterWindow::retryByTheKeyboard_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Space") << int(Qt::Key_Space);
    QTest::newRow("Enter") << int(Qt::Key_Return);
}

void TestUpdaterWindow::retryByTheKeyboard()
{
    QFETCH(int, key);
    makeWindow();
    run->start(); // nothing is on the server
    QTRY_COMPARE_WITH_TIMEOUT(run->stage(), Stage::Failed, 60000);
    QCOMPARE(QApplication::focusWidget(), retryButton());
    current->publish();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key(key));
    QVERIFY(run->stage() != Stage::Failed);
    QVERIFY(!retryButton()->isVisible());
    QCOMPARE(QApplication::focusWidget(), cancelButtonOfWindow());
    QTRY_COMPARE_WITH_TIMEOUT(closedWith, int(QDialog::Accepted), 60000);
}

void TestUpdaterWindow::tabOrder()
{
    makeWindow();
    QCOMPARE(QApplication::focusWidget(), cancelButtonOfWindow());
    QTest::keyClick(window.get(), Qt::Key_Tab); // there is no other
    QCOMPARE(QApplication::focusWidget(), cancelButtonOfWindow());
    window.reset();
    makeFailedWindow();
    QCOMPARE(QApplication::focusWidget(), retryButton());
    QTest::keyClick(window.get(), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), cancelButtonOfWindow());
    QTest::keyClick(window.get(), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), retryButton());
    QTest::keyClick(window.get(), Qt::Key_Backtab);
    QCOMPARE(QApplication::focusWidget(), cancelButtonOfWindow());
}

void TestUpdaterWindow::escapeCancels()
{
    stallTheFetch();
    const FileTree before = current->installedFiles();
    makeWindow();
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(run->bytesFetched() > 0, 60000);
    QTest::keyClick(window.get(), Qt::Key_Escape);
    QCOMPARE(closedWith, int(QDialog::Rejected));
    QVERIFY(!window->isVisible());
    QCOMPARE(current->installedFiles(), before);
}

void TestUpdaterWindow::closingCancels()
{
    stallTheFetch();
    makeWindow();
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(run->bytesFetched() > 0, 60000);
    window->close(); // by the window manager
    QCOMPARE(closedWith, int(QDialog::Rejected));
    QVERIFY(!window->isVisible());
}

void TestUpdaterWindow::cancelButton()
{
    stallTheFetch();
    makeWindow();
    run->start();
    QTRY_VERIFY_WITH_TIMEOUT(run->bytesFetched() > 0, 60000);
    QTest::mouseClick(cancelButtonOfWindow(), Qt::LeftButton);
    QCOMPARE(closedWith, int(QDialog::Rejected));
}

void TestUpdaterWindow::closeAfterAFailure_data()
{
    QTest::addColumn<bool>("byEscape");
    QTest::newRow("button") << false;
    QTest::newRow("Escape") << true;
}

void TestUpdaterWindow::closeAfterAFailure()
{
    QFETCH(bool, byEscape);
    makeFailedWindow();
    if (byEscape)
        QTest::keyClick(window.get(), Qt::Key_Escape);
    else
        QTest::mouseClick(cancelButtonOfWindow(), Qt::LeftButton);
    QCOMPARE(closedWith, int(QDialog::Rejected));
    QVERIFY(!window->isVisible());
}

void TestUpdaterWindow::cannotBeClosedInTheExchange()
{
    current->publish();
    makeWindow();
    bool wasExchanging = false;
    bool stayedOpen = false;
    connect(run.get(), &UpdateRun::stageChanged, this, [&] {
        if (run->stage() != Stage::Exchanging)
            return;
        wasExchanging = !cancelButtonOfWindow()->isEnabled();
        QTest::keyClick(window.get(), Qt::Key_Escape);
        QTest::mouseClick(cancelButtonOfWindow(), Qt::LeftButton);
        window->close();
        window->reject();
        stayedOpen = window->isVisible() && closedWith == -1;
    });
    run->start();
    QTRY_COMPARE_WITH_TIMEOUT(closedWith, int(QDialog::Accepted), 60000);
    QVERIFY(wasExchanging);
    QVERIFY(stayedOpen);
}

void TestUpdaterWindow::everyControlHasAName_data()
{
    languages();
}

void TestUpdaterWindow::everyControlHasAName()
{
    QFETCH(int, language);
    makeFailedWindow(language);
    const auto nameOf = [](QWidget *widget) {
        QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(widget);
        return interface ? interface->text(QAccessible::Name) : QString();
    };
    QCOMPARE(nameOf(window.get()), UpdaterTexts::title(language));
    int named = 0;
    for (QWidget *widget : window->findChildren<QWidget *>()) {
        QVERIFY2(!nameOf(widget).isEmpty(), qPrintable(widget->objectName()));
        QCOMPARE(hasChinese(nameOf(widget)), language == kLanguageChinese);
        ++named;
    }
    QCOMPARE(named, 6); // title, stage, bar, detail, two buttons
    QCOMPARE(nameOf(child<QProgressBar>("progressBar")), UpdaterTexts::progressName(language));
}

QTEST_MAIN(TestUpdaterWindow)
#include "TestUpdaterWindow.moc"
