#include "app/OvrynDeck2.h"
#include "board/temperatures/Ovryn_BoardInfoMainWidget.h"
#include "board/temperatures/Ovryn_BoardInfoMonitorWidget.h"
#include "board/temperatures/Ovryn_BoardInfoWidget.h"
#include "monitor/graphs/Ovryn_BaseInfoRow.h"
#include "monitor/graphs/Ovryn_BaseMonitorBox.h"
#include "monitor/sampling/Ovryn_SendNvCardInfoThread.h"
#include "support/CheckedDriver.h"

#include <QCheckBox>
#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// The board temperatures in the window, on a simulated card with four sensors: without connections they show
/// nothing, with two connections they show the samples.
class TestMainDialogBoardTemperatures : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void restWithoutAConnection();
    void liveWithOneConnectionEach();

private:
    [[nodiscard]] Ovryn_SendNvCardInfoThread *firstWorker() const
    {
        return dialog->findChild<Ovryn_SendNvCardInfoThread *>();
    }
    [[nodiscard]] Ovryn_BoardInfoMainWidget *firstPage() const
    {
        return dialog->findChild<Ovryn_BoardInfoMainWidget *>();
    }
    [[nodiscard]] QStringList currentValues() const
    {
        QStringList values;
        for (int row = 0; row < 4; ++row)
            values << firstPage()->findChild<Ovryn_BoardInfoWidget *>()->row(row)->currentValueText();
        return values;
    }

    QString formerFolder;
    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<CheckedDriver> driver; ///< the built-in scene
    std::unique_ptr<OvrynDeck2> dialog;
};

void TestMainDialogBoardTemperatures::init()
{
    formerFolder = QDir::currentPath();
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    QVERIFY(QDir::setCurrent(folder->path()));
    driver = std::make_unique<CheckedDriver>();
    driver->edit(0, [](simulated::Card &card) {
        const double degrees[] = {61.5, 52.25, -4.5, 83.0};
        for (std::size_t i = 0; i < 4; ++i)
            card.parameters.boardSensors.at(i).pinnedC = degrees[i];
    });
    dialog = std::make_unique<OvrynDeck2>();
    dialog->show();
    QVERIFY(firstWorker() && firstPage());
}

void TestMainDialogBoardTemperatures::cleanup()
{
    dialog.reset();
    driver.reset();
    QDir::setCurrent(formerFolder);
    folder.reset();
}

void TestMainDialogBoardTemperatures::restWithoutAConnection()
{
    QCOMPARE(dialog->findChildren<Ovryn_BoardInfoMainWidget *>().size(), dialog->cardCount());
    driver->forgetCalls();
    QTRY_VERIFY(driver->calls(Operation::NvAPI_I2CRead).size() >= 8); // the worker reads them nevertheless
    QCoreApplication::processEvents();
    QCOMPARE(currentValues(), QStringList({"", "", "", ""}));
    QVERIFY(!firstPage()->isVisible());
}

void TestMainDialogBoardTemperatures::liveWithOneConnectionEach()
{
    QVERIFY(connect(firstWorker(), SIGNAL(sendBoardTempCompleteInfo(BoardTempCompleteInfo)), firstPage(),
                    SLOT(recvBoardTempCompleteInfo(BoardTempCompleteInfo))));
    auto *button = dialog->findChild<QPushButton *>(QStringLiteral("btnBoardTempInfo"));
    QVERIFY(connect(button, SIGNAL(clicked(bool)), dialog.get(), SLOT(onBtnBoardTempInfoClicked(bool))));
    button->show();

    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(dialog->shownPage(), int(BoardTempPage));
    QTRY_VERIFY(firstPage()->isVisible());
    QTRY_COMPARE(currentValues(), QStringList({"61", "52", "-4", "83"}));

    for (const int row : {0, 3}) // within the panel only while the page has stopped rolling
        firstPage()->findChild<Ovryn_BoardInfoWidget *>()->row(row)->setChecked(true);
    auto *topRight = firstPage()->findChild<QCheckBox *>(QStringLiteral("ckbTopRight"));
    QVERIFY(topRight->isVisible());
    topRight->click();
    auto *graphs = firstPage()->findChild<Ovryn_BoardInfoMonitorWidget *>();
    QCOMPARE(graphs->shownMask(), 9);
    QVERIFY(graphs->box(3)->isVisible());
    driver->edit(0, [](simulated::Card &card) { card.parameters.boardSensors.at(3).pinnedC = 84.0; });
    QTRY_COMPARE(graphs->box(3)->history().first().value, 84.0);
    QCOMPARE(graphs->box(3)->captionRow()->maxValueText(), QStringLiteral("84"));
    QCOMPARE(graphs->box(3)->captionRow()->minValueText(), QStringLiteral("83"));

    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(dialog->shownPage(), int(HomePage));
}

QTEST_MAIN(TestMainDialogBoardTemperatures)
#include "TestMainDialogBoardTemperatures.moc"
