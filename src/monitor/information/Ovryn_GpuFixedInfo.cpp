#include "monitor/information/Ovryn_GpuFixedInfo.h"

#include "ui/PageFrame.h"
#include "ui/ProgramVersion.h"

#include <QPainter>

#include <utility>

Ovryn_GpuFixedInfo::Ovryn_GpuFixedInfo(QWidget *parent)
    : QWidget(parent), versionText(QStringLiteral("V ") + QLatin1String(kProgramVersion))
{
    ui.build(this);
    setLanguage(Ovryn_LanguageTable().gpuFixedInfo, kLanguageChinese);
}

void Ovryn_GpuFixedInfo::setLanguage(Lang_GpuFixedInfo newTexts, LanguageType newLanguage)
{
    texts = std::move(newTexts);
    language = newLanguage;
    ui.setCaptions(texts, PageFrame::fontFamily(language));
    drawBackground();
    update();
}

void Ovryn_GpuFixedInfo::recvGpuFixedInfo(NvInfo info)
{
    for (std::size_t i = 0; i < kFixedInfoEntryCount; ++i) {
        const FixedInfoEntry &entry = kFixedInfoEntries[i];
        if (entry.text) {
            ui.setValue(i, QString::fromStdString(info.*entry.text));
            continue;
        }
        // A fall is told twice, by the word and by the sign of the number: wanted so.
        const qint32 difference = info.*entry.difference;
        ui.setCaption(i, difference >= 0 ? texts.inc : texts.dec);
        ui.setValue(i, QString::number(difference, 10));
    }
}

void Ovryn_GpuFixedInfo::resizeEvent(QResizeEvent *)
{
    rects = gpuFixedInfoLayoutFor(size());
    ui.setContentRect(rects.content);
    drawBackground();
}

void Ovryn_GpuFixedInfo::drawBackground()
{
    background = PageFrame::background(size(), rects.band, rects.titleRect, texts.title,
                                       PageFrame::titlePixelSize(size(), rects.band), language);
}

void Ovryn_GpuFixedInfo::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, background);
    PageFrame::paintBandVersion(painter, font(), rects.band, rects.versionRect, versionText);
}
