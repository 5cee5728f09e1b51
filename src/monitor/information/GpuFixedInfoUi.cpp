#include "monitor/information/GpuFixedInfoUi.h"

#include "monitor/graphs/RowsAndGraphsPage.h"
#include "ui/ReadonlyLineEdit.h"
#include "ui/Reds.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>

namespace
{

constexpr int kColumnGap = 5; // pixels
constexpr int kPairGap = 12;  // between a row's first value and its second caption
constexpr int kValueHeight = 22;
constexpr int kMarginShare = 15; // the rows' margins are this part of the width

const char *const kRowNames[] = {"horizontalLayout",   "horizontalLayout_2", "horizontalLayout_3",
                                 "horizontalLayout_4", "horizontalLayout_5", "horizontalLayout_6"};
constexpr int kRowCount = int(std::size(kRowNames));

const char kPageStyle[] = "QLabel{font-family: \"Arial\";font-size: 12px;}ReadonlyLineEdit{font-size: 10px;}";

// A value looks the same in a label and in a line. The family of the captions stands here because the page's sheet,
// which names one for every label, goes before a font that is set.
const char kContentStyle[] =
    "QLabel,ReadonlyLineEdit{color:white;background-color:rgba(0,0,0,110);border:1px solid rgba(@glass,130);"
    "padding:0px 2px 0px 2px;}"
    "QLabel[caption=\"true\"]{color:rgb(225,225,225);background-color:transparent;border:none;padding:0px;"
    "font-family:\"%1\";}"
    "ReadonlyLineEdit{font-family:\"Arial\";padding:0px;"
    "selection-background-color:rgb(@glass);selection-color:white;}";

template <typename Object>
Object *named(Object *object, const char *name)
{
    object->setObjectName(QString::fromLatin1(name));
    return object;
}

bool standsAtTheRight(std::size_t entry)
{
    return entry > 0 && kFixedInfoEntries[entry - 1].row == kFixedInfoEntries[entry].row;
}

} // namespace

// clang-format off
const FixedInfoEntry kFixedInfoEntries[kFixedInfoEntryCount] = {
    // row  caption                 its text                           value                         from
    { 0, "lbl_MemType",             &Lang_GpuFixedInfo::memType,        "let_MemType",                &NvInfo::memType,           nullptr },
    { 0, "lbl_MemSize",             &Lang_GpuFixedInfo::memSize,        "let_MemSize",                &NvInfo::memSize,           nullptr },
    { 1, "lbl_MemBitWidth",         &Lang_GpuFixedInfo::busWidth,       "let_MemBitWidth",            &NvInfo::memBitWidth,       nullptr },
    { 1, "lbl_MemBandWidth",        &Lang_GpuFixedInfo::bandWidth,      "let_MemBandWidth",           &NvInfo::memBandWidth,      nullptr },
    { 2, "lbl_GpuFreClock",         &Lang_GpuFixedInfo::gpuClock,       "let_GpuFreClock",            &NvInfo::gpuFreClock,       nullptr },
    { 2, "lbl_MemFreClock",         &Lang_GpuFixedInfo::memClock,       "let_MemFreClock",            &NvInfo::memFreClock,       nullptr },
    { 3, "lbl_CustomGpuFreClock",   &Lang_GpuFixedInfo::customGpuClock, "let_CustomGpuFreClock",      &NvInfo::customGpuFreClock, nullptr },
    { 3, "lbl_GpuFreClockChanged",  &Lang_GpuFixedInfo::inc,            "lbl_GpuFreClockChangedValue", nullptr, &NvInfo::gpuFreClockChanged },
    { 4, "lbl_CustomMemFreClock",   &Lang_GpuFixedInfo::customMemClock, "let_CustomMemFreClock",      &NvInfo::customMemFreClock, nullptr },
    { 4, "lbl_MemFreClockChanged",  &Lang_GpuFixedInfo::inc,            "lbl_MemFreClockChangedValue", nullptr, &NvInfo::memFreClockChanged },
    { 5, "lbl_BiosVersion",         &Lang_GpuFixedInfo::biosVersion,    "lbl_BiosVersionValue",       &NvInfo::biosVersion,       nullptr },
};
// clang-format on

GpuFixedInfoLayout gpuFixedInfoLayoutFor(QSize page)
{
    const RowsAndGraphsLayout twin = rowsAndGraphsLayoutFor(page); // title and version stand as on the monitor page
    const int margin = page.width() / kMarginShare;
    return {twin.bandHeight,
            margin,
            page.width(),
            QRect(margin, twin.bandHeight, page.width() - 2 * margin, page.height() - 2 * twin.bandHeight),
            twin.titleRect,
            twin.versionRect};
}

void GpuFixedInfoUi::build(QWidget *page)
{
    page->setObjectName(QStringLiteral("Ovryn_GpuFixedInfoWidget"));
    page->setStyleSheet(QString::fromLatin1(kPageStyle));

    verticalLayoutWidget = named(new QWidget(page), "verticalLayoutWidget");
    auto *mainLayout = named(new QVBoxLayout(verticalLayoutWidget), "mainLayout");
    mainLayout->setContentsMargins(0, 0, 0, 0);
    mainLayout->setSpacing(0);
    std::array<QHBoxLayout *, kRowCount> rows{};
    for (int row = 0; row < kRowCount; ++row) {
        rows[std::size_t(row)] = named(new QHBoxLayout, kRowNames[row]);
        rows[std::size_t(row)]->setSpacing(kColumnGap);
        mainLayout->addLayout(rows[std::size_t(row)], 1);
    }
    for (std::size_t entry = 0; entry < kFixedInfoEntryCount; ++entry) {
        captions[entry] = named(new QLabel(verticalLayoutWidget), kFixedInfoEntries[entry].captionName);
        captions[entry]->setProperty("caption", true);
        values[entry] = newValue(entry);
        QHBoxLayout *row = rows[std::size_t(kFixedInfoEntries[entry].row)];
        if (standsAtTheRight(entry))
            row->addSpacing(kPairGap - kColumnGap);
        row->addWidget(captions[entry], 0, Qt::AlignVCenter);
        row->addWidget(values[entry], 1, Qt::AlignVCenter); // captions have their width, the values share the rest
    }
}

QWidget *GpuFixedInfoUi::newValue(std::size_t entry)
{
    const char *const name = kFixedInfoEntries[entry].valueName;
    QWidget *value = nullptr;
    if (QLatin1String(name).startsWith(QLatin1String("let_"))) {
        value = named(new ReadonlyLineEdit(verticalLayoutWidget), name);
    } else {
        auto *label = named(new QLabel(verticalLayoutWidget), name);
        label->setTextFormat(Qt::PlainText); // what the driver tells is no markup
        label->setIndent(0); // in line with the text of a line edit, not by a share of the frame's font
        value = label;
    }
    value->setFixedHeight(kValueHeight);
    value->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // all the same share, whatever they show
    return value;
}

void GpuFixedInfoUi::setContentRect(const QRect &rect)
{
    verticalLayoutWidget->setGeometry(rect);
}

void GpuFixedInfoUi::setCaptions(const Lang_GpuFixedInfo &words, const QString &family)
{
    verticalLayoutWidget->setStyleSheet(Reds::inSheet(QString::fromLatin1(kContentStyle)).arg(family));
    for (std::size_t entry = 0; entry < kFixedInfoEntryCount; ++entry) {
        QFont font = captions[entry]->font();
        font.setFamily(family);
        captions[entry]->setFont(font);
        captions[entry]->setMinimumWidth(0); // the last language's width would go into the hint
        captions[entry]->setText(words.*kFixedInfoEntries[entry].caption);
    }
    fitCaptionColumns();
}

void GpuFixedInfoUi::fitCaptionColumns()
{
    std::array<int, 2> widths{};
    for (std::size_t entry = 0; entry < kFixedInfoEntryCount; ++entry) {
        captions[entry]->ensurePolished(); // the sheets have their say in the hint
        int &width = widths[standsAtTheRight(entry) ? 1 : 0];
        width = std::max(width, captions[entry]->sizeHint().width());
    }
    for (std::size_t entry = 0; entry < kFixedInfoEntryCount; ++entry)
        captions[entry]->setFixedWidth(widths[standsAtTheRight(entry) ? 1 : 0]);
}

void GpuFixedInfoUi::setCaption(std::size_t entry, const QString &text)
{
    captions[entry]->setText(text);
}

void GpuFixedInfoUi::setValue(std::size_t entry, const QString &text)
{
    if (auto *line = qobject_cast<ReadonlyLineEdit *>(values[entry])) {
        if (line->text() == text) // as nearly every second: what the user has marked to copy stays marked
            return;
        line->setText(text);
        line->setCursorPosition(0); // a text longer than the line shows its beginning
    } else if (auto *label = qobject_cast<QLabel *>(values[entry])) {
        label->setText(text);
    }
}
