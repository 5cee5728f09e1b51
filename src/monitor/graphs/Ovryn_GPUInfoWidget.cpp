#include "monitor/graphs/Ovryn_GPUInfoWidget.h"

#include "monitor/graphs/MonitorQuantities.h"

#include <utility>

Ovryn_GPUInfoWidget::Ovryn_GPUInfoWidget(QWidget *parent)
    : RowListView(kMonitorQuantityCount, kMonitorQuantityCount, parent)
{
    setLanguage(Ovryn_LanguageTable().monitor, kLanguageChinese);
}

void Ovryn_GPUInfoWidget::setLanguage(Lang_Monitor newTexts, LanguageType newLanguage)
{
    texts = std::move(newTexts);
    language = newLanguage;
    for (int i = 0; i < kMonitorQuantityCount; ++i)
        setRowTitle(i, texts.*kMonitorQuantities[i].title);
}

void Ovryn_GPUInfoWidget::receiveNvCardBaseInfo(NvCardBaseInfo sample)
{
    nvCardBaseInfo = sample;
    for (int i = 0; i < kMonitorQuantityCount; ++i) {
        const MonitorQuantity &quantity = kMonitorQuantities[i];
        setRowValues(i, nvCardBaseInfo.*quantity.value, QString::fromLatin1(quantity.suffix));
    }
    repaint();
}
