#include "app/MainDialogTest.h"
#include "board/lcd/Ovryn_LCDControllorWidget.h"
#include "board/led/Ovryn_LEDControlWidget.h"
#include "board/temperatures/Ovryn_BoardInfoMonitorWidget.h"
#include "board/temperatures/Ovryn_BoardInfoWidget.h"
#include "monitor/WidgetPainting.h"
#include "monitor/gauge/Ovryn_GpuInfoCircleBox.h"
#include "monitor/graphs/Ovryn_BaseInfoRow.h"
#include "monitor/graphs/Ovryn_BaseMonitorBox.h"
#include "monitor/graphs/Ovryn_GPUInfoMonitorWidget.h"
#include "monitor/graphs/Ovryn_GPUInfoWidget.h"
#include "monitor/graphs/Ovryn_NvCardInfoWidget.h"
#include "monitor/information/Ovryn_GpuFixedInfo.h"
#include "overclock/Ovryn_OverClockingWidget.h"

#include <QAbstractItemModel>
#include <QComboBox>
#include <QLabel>
#include <QRadioButton>

#include <iterator>

/// Which words the main dialog hands to its parts, at the start and at a change of language, and in which order.
class TestMainDialogLanguage : public MainDialogTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void wordsReach_data();
    void wordsReach();
    void wordsReachTheGauge_data();
    void wordsReachTheGauge();
    void pagesFollowInTheirOrder();
};

namespace
{

QString captionAndFamily(const QWidget *widget, const QString &caption)
{
    return caption + QStringLiteral(" in ") + widget->font().family();
}

/// A word of one card's part, with the family where the part shows one that follows the language.
struct Word
{
    const char *part;
    QString (*of)(const OvrynDeck2 &dialog, int card);
    const char *chinese;
    const char *english;
};

template <typename Page>
Page *pageOf(const OvrynDeck2 &dialog, int card)
{
    return dialog.findChildren<Page *>().at(card);
}

template <typename Button>
QString buttonOf(const QWidget *page, const char *name)
{
    const auto *button = page->findChild<Button *>(QLatin1String(name));
    return captionAndFamily(button, button->text());
}

// clang-format off
const Word kWords[] = {
    { "main dialog", [](const OvrynDeck2 &dialog, int) {
          return dialog.findChild<QPushButton *>(QStringLiteral("btnMonitor"))->text();
      }, "监控窗口", "Monitor" },
    { "settings panel", [](const OvrynDeck2 &dialog, int) {
          return dialog.findChild<QLabel *>(QStringLiteral("lbl_Setting"))->text();
      }, "设置选项", "Settings" },
    { "monitor page, rows", [](const OvrynDeck2 &dialog, int card) {
          return pageOf<Ovryn_GPUInfoWidget>(dialog, card)->row(0)->titleText();
      }, "核心频率", "GPU Clock" },
    { "monitor page, graphs", [](const OvrynDeck2 &dialog, int card) {
          return pageOf<Ovryn_GPUInfoMonitorWidget>(dialog, card)->box(5)->captionRow()->titleText();
      }, "GPU使用率", "GPU Usage" },
    { "adjust page", [](const OvrynDeck2 &dialog, int card) {
          return buttonOf<QPushButton>(pageOf<Ovryn_OverClockingWidget>(dialog, card), "btnDefault");
      }, "默认 in 微软雅黑", "Default in Arial" },
    { "LED page", [](const OvrynDeck2 &dialog, int card) {
          return buttonOf<QRadioButton>(pageOf<Ovryn_LEDControlWidget>(dialog, card), "rdbState");
      }, "状态显示 in 微软雅黑", "State-Display in Arial" },
    { "LCD page", [](const OvrynDeck2 &dialog, int card) {
          return buttonOf<QPushButton>(pageOf<Ovryn_LCDControllorWidget>(dialog, card), "btnConfirm");
      }, "确定 in 微软雅黑", "Apply in Arial" },
    { "card information page", [](const OvrynDeck2 &dialog, int card) {
          return pageOf<Ovryn_GpuFixedInfo>(dialog, card)->findChild<QLabel *>(QStringLiteral("lbl_MemType"))->text();
      }, "显存类型", "Mem Type" },
    { "board temperature page, rows", [](const OvrynDeck2 &dialog, int card) {
          return pageOf<Ovryn_BoardInfoWidget>(dialog, card)->row(0)->titleText();
      }, "显存一", "Mem 1" },
    { "board temperature page, graphs", [](const OvrynDeck2 &dialog, int card) {
          return pageOf<Ovryn_BoardInfoMonitorWidget>(dialog, card)->box(3)->captionRow()->titleText();
      }, "显存MOS", "Mem MOS" },
};
// clang-format on

constexpr int kCards = 2;

void chooseLanguage(const OvrynDeck2 &dialog, LanguageType language)
{
    auto *list = dialog.findChild<QComboBox *>(QStringLiteral("cmb_language"));
    list->setCurrentIndex(list->findData(language == kLanguageChinese ? "lang_ch" : "lang_en"));
}

QByteArray configIn(const char *language)
{
    return QByteArray("<OvrynParameter><GeneralSetting Language=\"") + language + "\"/></OvrynParameter>";
}

/// The ring's captions and the overlay's words, painted.
QImage captionsOf(Ovryn_GpuInfoCircleBox &gauge)
{
    gauge.setAdjustInfo(QStringLiteral("1"), QStringLiteral("2"), 3);
    return paintingOf(gauge);
}

} // namespace

void TestMainDialogLanguage::initTestCase()
{
    useProgramFonts();
    registerApplicationFonts();
}

void TestMainDialogLanguage::wordsReach_data()
{
    QTest::addColumn<int>("word");
    for (int word = 0; word < int(std::size(kWords)); ++word)
        QTest::newRow(kWords[word].part) << word;
}

void TestMainDialogLanguage::wordsReach()
{
    QFETCH(int, word);
    driver->cards.resize(kCards);
    writeConfig(configIn("lang_en"));
    OvrynDeck2 dialog(nullptr, kQuickPages);
    const auto everyCardHas = [&](const char *text) {
        for (int card = 0; card < kCards; ++card)
            QCOMPARE(kWords[word].of(dialog, card), QString::fromUtf8(text));
    };
    everyCardHas(kWords[word].english);
    chooseLanguage(dialog, kLanguageChinese);
    everyCardHas(kWords[word].chinese);
    chooseLanguage(dialog, kLanguageEnglish);
    everyCardHas(kWords[word].english);
}

void TestMainDialogLanguage::wordsReachTheGauge_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<bool>("changed");
    QTest::newRow("at the start") << QByteArray("lang_en") << false;
    QTest::newRow("at a change of language") << QByteArray("lang_ch") << true;
}

void TestMainDialogLanguage::wordsReachTheGauge()
{
    QFETCH(QByteArray, first);
    QFETCH(bool, changed);
    writeConfig(configIn(first.constData()));
    OvrynDeck2 dialog(nullptr, kQuickPages);
    auto *gauge = dialog.findChild<Ovryn_GpuInfoCircleBox *>();
    paintingOf(*gauge); // what is hidden gets its size with its first painting
    if (changed)
        chooseLanguage(dialog, kLanguageEnglish);

    Ovryn_GpuInfoCircleBox expected;
    expected.resize(gauge->size());
    paintingOf(expected);
    const QImage withoutWords = captionsOf(expected);
    expected.setLanguage({"C L O C K", "T E M P", "M E M O R Y", "Preset ", "Present ", "Dec ", "Inc "},
                         kLanguageEnglish);
    QVERIFY(captionsOf(expected) != withoutWords);
    QCOMPARE(captionsOf(*gauge), captionsOf(expected));
}

namespace
{

/// Notes, while it lives, in which order parts of the dialog change. Only what is delivered at once counts: other
/// fonts, tool tips and styles, and a repaint.
class OrderOfChanges : public QObject
{
public:
    explicit OrderOfChanges(const QList<QPair<QString, QWidget *>> &watched) : parts(watched)
    {
        qApp->installEventFilter(this);
    }

    QStringList names; ///< of the parts, each at its first change

    void note(const QString &name)
    {
        if (!names.contains(name))
            names << name;
    }

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        const QEvent::Type type = event->type();
        const auto *widget = qobject_cast<QWidget *>(receiver);
        if (widget && (type == QEvent::FontChange || type == QEvent::ToolTipChange || type == QEvent::StyleChange ||
                       type == QEvent::Paint)) {
            for (const auto &part : parts) {
                if (part.second == widget || part.second->isAncestorOf(widget))
                    note(part.first);
            }
        }
        return false;
    }

private:
    QList<QPair<QString, QWidget *>> parts;
};

} // namespace

/// The gauge and the board temperatures show their words later, so nothing can be told of their turn.
void TestMainDialogLanguage::pagesFollowInTheirOrder()
{
    OvrynDeck2 dialog(nullptr, kCalmPages);
    dialog.show();
    button(dialog, "btnMonitor")->click();
    finishSlide(dialog);
    auto *monitor = pageOf<Ovryn_NvCardInfoWidget>(dialog, 0);
    QTRY_VERIFY(monitor->isVisible() && monitor->x() == 0);
    dialog.grab(); // nothing waits for its first font or style

    OrderOfChanges order({{"monitor", monitor},
                          {"adjust", pageOf<Ovryn_OverClockingWidget>(dialog, 0)},
                          {"LED", pageOf<Ovryn_LEDControlWidget>(dialog, 0)},
                          {"LCD", pageOf<Ovryn_LCDControllorWidget>(dialog, 0)},
                          {"information", pageOf<Ovryn_GpuFixedInfo>(dialog, 0)}});
    connect(dialog.findChild<QComboBox *>(QStringLiteral("cmb_PageEffect"))->model(),
            &QAbstractItemModel::dataChanged, &order, [&order] { order.note(QStringLiteral("settings")); });
    chooseLanguage(dialog, kLanguageEnglish);
    QCOMPARE(order.names, QStringList({"settings", "monitor", "adjust", "LED", "LCD", "information"}));
}

QTEST_MAIN(TestMainDialogLanguage)
#include "TestMainDialogLanguage.moc"
