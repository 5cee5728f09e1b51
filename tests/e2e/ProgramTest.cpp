#include "e2e/ProgramTest.h"

#include "ui/Fonts.h"
#include "ui/Ovryn_LanguageTable.h"
#include "ui/Ovryn_SettingParentWidget.h"
#include "ui/Ovryn_SettingWidget.h"

#include <QDate>

namespace
{

// The buttons of a box stand in a row at its bottom, yes left of no.
constexpr int kBoxButtonRise = 25;       // from the box's lower edge to their middle
constexpr int kBoxButtonFromCentre = 75; // of the two

} // namespace

const char *const kQuietConfig = R"(<?xml version="1.0" encoding="UTF-8"?>
<OvrynParameter>
    <GeneralSetting StartOnBoot="1" MinimizeOnStart="0" ApplyLastParamOnStart="1" Language="lang_en" RefreshTimeOfMonitor="1" PageEffects="normal"/>
    <UpdateSetting CheckInterval="7" UpdateMode="0" UpdateStatus="1"/>
    <GpuSettings/>
    <LastCloseDate>2020/02/29</LastCloseDate>
    <OtherSetting NotPromptHPS="1"/>
</OvrynParameter>
)";

QString today()
{
    return QDate::currentDate().toString(QStringLiteral("yyyy/MM/dd"));
}

QString operationOf(const QJsonObject &call)
{
    const QString operation = call.value(QStringLiteral("op")).toString().mid(int(strlen("NvAPI_")));
    const QString address = call.value(QStringLiteral("args")).toObject().value(QStringLiteral("address")).toString();
    return address.isEmpty() ? operation : operation + QLatin1Char(' ') + address;
}

int differingPixels(const QImage &a, const QImage &b, const QRect &region)
{
    int count = 0;
    const QRect rect = region & a.rect() & b.rect();
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            if (qAbs(qRed(p) - qRed(q)) + qAbs(qGreen(p) - qGreen(q)) + qAbs(qBlue(p) - qBlue(q)) > 48)
                ++count;
        }
    }
    return count;
}

bool isRed(QRgb pixel)
{
    return qRed(pixel) > 90 && qRed(pixel) > 2 * qGreen(pixel) && qRed(pixel) > 2 * qBlue(pixel);
}

void ProgramTest::initTestCase()
{
    QVERIFY2(screen.start(screenSize), qPrintable(screen.error()));
    layout = mainDialogLayout(kDialogSize);
    substituteFontFamilies();
    registerApplicationFonts();
}

qint64 ProgramTest::startedWindow(InstalledProgram &program)
{
    if (!program.start())
        return 0;
    return program.waitForMainWindow();
}

QRect ProgramTest::onScreen(qint64 window, const QRect &rect) const
{
    return rect.translated(screen.geometryOf(window).topLeft());
}

bool ProgramTest::pictureChanges(const QImage &before, const QRect &screenRect) const
{
    const int enough = screenRect.width() * screenRect.height() / 50;
    return QTest::qWaitFor([&] { return differingPixels(before, screen.picture(), screenRect) > enough; },
                           kPatienceMs);
}

void ProgramTest::pressBoxButton(InstalledProgram &program, bool yes)
{
    const qint64 box = program.waitForBox();
    QVERIFY(box != 0);
    const QSize size = screen.geometryOf(box).size();
    const int fromCentre = yes ? -kBoxButtonFromCentre : kBoxButtonFromCentre;
    program.clickIn(box, QPoint(size.width() / 2 + fromCentre, size.height() - kBoxButtonRise));
}

// Asked of a page built the same way.
QPoint ProgramTest::settingControl(const QString &objectName) const
{
    QWidget dialog;
    dialog.resize(kDialogSize);
    Ovryn_LanguageTable table;
    table.setLanguage(kLanguageEnglish);
    Ovryn_SettingParentWidget panel{GeneralSettingInfo(), UpdateSettingInfo(), &dialog};
    panel.setLanguage(table.setting, kLanguageEnglish);
    dialog.show();
    panel.setShowSettingWidget(true);
    const auto *page = panel.findChild<Ovryn_SettingWidget *>();
    const auto *control = panel.findChild<QWidget *>(objectName);
    if (!page || !control || !QTest::qWaitFor([&] { return page->isVisible() && page->x() == 0; }, kPatienceMs))
        return {};
    return settingPanelPosition(kDialogSize, panel.size()) + control->mapTo(&panel, control->rect().center());
}

void ProgramTest::pressOnlyBoxButton(InstalledProgram &program)
{
    const qint64 box = program.waitForBox();
    QVERIFY(box != 0);
    const QSize size = screen.geometryOf(box).size();
    program.clickIn(box, QPoint(size.width() / 2, size.height() - kBoxButtonRise));
}

void ProgramTest::closeByButton(InstalledProgram &program, qint64 window)
{
    program.clickIn(window, layout.closeButton.center());
    pressBoxButton(program, true);
    QVERIFY(program.waitForEnd());
    QVERIFY(program.endedNormally());
    QCOMPARE(program.exitCode(), 0);
}

void ProgramTest::openSettings(InstalledProgram &program, qint64 window, QPoint control)
{
    const QRect place = onScreen(window, QRect(control - QPoint(40, 10), QSize(80, 20)));
    const QImage before = screen.picture();
    program.clickIn(window, layout.settingButton.center());
    QVERIFY(pictureChanges(before, place));
    QTRY_VERIFY_WITH_TIMEOUT(differingPixels(screen.picture(), screen.picture(), place) == 0, kPatienceMs);
}

void ProgramTest::clickDetectUpdate(InstalledProgram &program, qint64 window)
{
    const QPoint button = settingControl(QStringLiteral("btnDetectUpdate"));
    QVERIFY(!button.isNull());
    const QImage before = screen.picture();
    const QRect around = onScreen(window, QRect(button - QPoint(40, 10), QSize(80, 20)));
    program.clickIn(window, layout.settingButton.center());
    QVERIFY(pictureChanges(before, around));
    QTRY_VERIFY_WITH_TIMEOUT(differingPixels(screen.picture(), screen.picture(), around) == 0, kPatienceMs);
    program.clickIn(window, button);
}
