#pragma once

#include "device/DeviceRecords.h"
#include "ui/Ovryn_LanguageTable.h"

#include <QRect>
#include <QString>

#include <array>
#include <cstddef>
#include <string>

class QLabel;
class QWidget;

/// One entry of the card information page: a caption and the value beside it. Either `text` or `difference` says
/// where the value is from.
struct FixedInfoEntry
{
    int row; ///< of the page, from 0; the second entry of a row stands at its right
    const char *captionName;
    QString Lang_GpuFixedInfo::*caption;
    const char *valueName;      ///< "let_..." is a line to copy from, "lbl_..." a label
    std::string NvInfo::*text;  ///< shown as it stands
    qint32 NvInfo::*difference; ///< MHz; its sign chooses the caption too
};

constexpr std::size_t kFixedInfoEntryCount = 11;
extern const FixedInfoEntry kFixedInfoEntries[kFixedInfoEntryCount]; ///< in reading order

/// Where everything of the page lies, in page pixels. Integer divisions truncate.
struct GpuFixedInfoLayout
{
    int band = 0;      ///< height of the header band
    int margin = 0;    ///< left and right of the rows
    int fullWidth = 0; ///< of the page
    QRect content;     ///< of the rows
    QRect titleRect;
    QRect versionRect; ///< of the program's version, at the right of the band
};
GpuFixedInfoLayout gpuFixedInfoLayoutFor(QSize page);

/// The controls of the card information page: captions and values in rows, in columns that all rows share. They are
/// children of the page and bear the names of the table as object names.
class GpuFixedInfoUi
{
public:
    void build(QWidget *page); ///< names the page too; captions come with the language

    void setContentRect(const QRect &rect);
    /// All captions; the columns become as wide as their widest.
    void setCaptions(const Lang_GpuFixedInfo &words, const QString &family);
    void setCaption(std::size_t entry, const QString &text);
    void setValue(std::size_t entry, const QString &text);

private:
    [[nodiscard]] QWidget *newValue(std::size_t entry);
    void fitCaptionColumns();

    QWidget *verticalLayoutWidget = nullptr;
    std::array<QLabel *, kFixedInfoEntryCount> captions{};
    std::array<QWidget *, kFixedInfoEntryCount> values{};
};
