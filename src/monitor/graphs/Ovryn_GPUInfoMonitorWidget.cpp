#include "monitor/graphs/Ovryn_GPUInfoMonitorWidget.h"

#include "monitor/graphs/MonitorQuantities.h"

#include <utility>

namespace
{
constexpr int kTemperatureMask = monitorQuantityBit(&NvCardBaseInfo::temperature);
static_assert(kTemperatureMask != 0, "a graph shows the temperature");
} // namespace

Ovryn_GPUInfoMonitorWidget::Ovryn_GPUInfoMonitorWidget(QWidget *parent)
    : GraphStackView(kMonitorQuantityCount, kTemperatureMask, parent)
{
    setLanguage(Ovryn_LanguageTable().monitor, kLanguageChinese);
}

void Ovryn_GPUInfoMonitorWidget::setLanguage(Lang_Monitor newTexts, LanguageType newLanguage)
{
    texts = std::move(newTexts);
    language = newLanguage;
    for (int i = 0; i < kMonitorQuantityCount; ++i)
        setBoxTitle(i, texts.*kMonitorQuantities[i].title);
}

void Ovryn_GPUInfoMonitorWidget::receiveNvCardBaseInfo(NvCardBaseInfo sample)
{
    nvCardBaseInfo = sample;
    for (int i = 0; i < kMonitorQuantityCount; ++i) {
        const MonitorQuantity &quantity = kMonitorQuantities[i];
        addSample(i, nvCardBaseInfo.*quantity.value, QString::fromLatin1(quantity.suffix));
    }
}
