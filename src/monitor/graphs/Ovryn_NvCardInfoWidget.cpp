#include "monitor/graphs/Ovryn_NvCardInfoWidget.h"

#include "device/NvGpuControl.h"
#include "monitor/graphs/Ovryn_GPUInfoMonitorWidget.h"
#include "monitor/graphs/Ovryn_GPUInfoWidget.h"
#include "ui/PageFrame.h"

#include <QPainter>

#include <utility>

namespace
{
QString driverVersionOf(NvGpuControl *control)
{
    quint32 version = 0;
    if (control == nullptr || !control->getDriverVersion(version))
        return QStringLiteral("XXX.XX");
    return QString::number(version).insert(3, QLatin1Char('.'));
}
} // namespace

Ovryn_NvCardInfoWidget::Ovryn_NvCardInfoWidget(int selectOption, NvGpuControl *control, QWidget *parent)
    : Ovryn_NvCardInfoWidget(control, parent)
{
    cardRows->setSelectOption(selectOption);
}

Ovryn_NvCardInfoWidget::Ovryn_NvCardInfoWidget(NvGpuControl *control, QWidget *parent)
    : Ovryn_NvCardInfoWidget(new Ovryn_GPUInfoWidget, new Ovryn_GPUInfoMonitorWidget, control, parent)
{
}

Ovryn_NvCardInfoWidget::Ovryn_NvCardInfoWidget(Ovryn_GPUInfoWidget *rows, Ovryn_GPUInfoMonitorWidget *graphs,
                                               NvGpuControl *control, QWidget *parent)
    : RowsAndGraphsPage(rows, graphs, parent),
      cardRows(rows),
      cardGraphs(graphs),
      driverVersion(driverVersionOf(control))
{
    setLanguage(Ovryn_LanguageTable().monitor, kLanguageChinese);
}

void Ovryn_NvCardInfoWidget::getSelectOption(int *out) const
{
    *out = cardRows->selectOption();
}

void Ovryn_NvCardInfoWidget::setLanguage(Lang_Monitor newTexts, LanguageType newLanguage)
{
    cardRows->setLanguage(newTexts, newLanguage);
    const QString caption = newTexts.driverVersion;
    cardGraphs->setLanguage(std::move(newTexts), newLanguage);
    setTitle(caption, newLanguage);
}

void Ovryn_NvCardInfoWidget::recvNvCardInfo(NvCardBaseInfo nvCardBaseInfo)
{
    cardRows->receiveNvCardBaseInfo(nvCardBaseInfo);
    cardGraphs->receiveNvCardBaseInfo(nvCardBaseInfo);
}

void Ovryn_NvCardInfoWidget::paintEvent(QPaintEvent *event)
{
    RowsAndGraphsPage::paintEvent(event);
    QPainter painter(this);
    PageFrame::paintBandVersion(painter, font(), pageLayout().bandHeight, pageLayout().versionRect, driverVersion);
}
