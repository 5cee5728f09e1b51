#include "device/NvGpuControl.h"
#include "device/nvapi/NvApi.h"
#include "monitor/graphs/Ovryn_BaseMonitorBox.h"
#include "monitor/graphs/Ovryn_NvCardInfoWidget.h"
#include "monitor/sampling/Ovryn_SendNvCardInfoThread.h"
#include "ui/Fonts.h"

#include <QApplication>
#include <QImage>

#include <benchmark/benchmark.h>

#include <cmath>

/// \file
/// What a sample costs beyond the driver's own time: the worker's cycle, and the graphs that show it.

namespace
{

// ---- a driver of one card that answers everything at once ----

template <typename Operation>
struct AnswersAtOnce;
template <typename... Arguments>
struct AnswersAtOnce<NvAPI_Status(Arguments...)>
{
    static NvAPI_Status OVRYN_NVAPI_CALL call(Arguments...) { return NVAPI_OK; }
};

NvAPI_Status OVRYN_NVAPI_CALL oneCard(NvPhysicalGpuHandle *gpus, quint32 *count)
{
    static int card;
    gpus[0] = reinterpret_cast<NvPhysicalGpuHandle>(&card);
    *count = 1;
    return NVAPI_OK;
}

NvAPI_Status OVRYN_NVAPI_CALL noDisplay(quint32, NvDisplayHandle *)
{
    return NVAPI_END_ENUMERATION;
}

NvAPI_Status OVRYN_NVAPI_CALL noTccCards(NvPhysicalGpuHandle *, quint32 *count)
{
    *count = 0;
    return NVAPI_OK;
}

void *OVRYN_NVAPI_CALL promptDriver(quint32 identifier)
{
    switch (identifier) {
    case 0xE5AC921F:
        return reinterpret_cast<void *>(&oneCard);
    case 0xD9930B07:
        return reinterpret_cast<void *>(&noTccCards);
    case 0x9ABDD40D:
        return reinterpret_cast<void *>(&noDisplay);
    }
#define OVRYN_ANSWER(id, name, parameters, arguments)                                                                \
    if (identifier == (id))                                                                                          \
        return reinterpret_cast<void *>(&AnswersAtOnce<NvAPI_Status parameters>::call);
    OVRYN_NVAPI_OPERATIONS(OVRYN_ANSWER)
#undef OVRYN_ANSWER
    return nullptr;
}

void samplingCycle(benchmark::State &state)
{
    setNvApiLibrarySource({[] { return &promptDriver; }, {}, false});
    {
        NvGpuControl control;
        if (control.gpuCount() != 1)
            state.SkipWithError("the stand-in's card was not found");
        Ovryn_SendNvCardInfoThread worker(&control);
        for (auto _ : state)
            worker.sampleOnce();
    }
    setNvApiLibrarySource({});
}
BENCHMARK(samplingCycle)->Unit(benchmark::kMicrosecond);

// ---- the graphs ----

constexpr int kSamples = 1000;

/// A curve as of a card at work: slow waves with a ripple.
double calmValue(int sample)
{
    return 50 + 30 * std::sin(sample / 20.0) + 10 * std::sin(sample / 3.0);
}

/// A curve that jumps with nearly every sample: the worst that the fill can get.
double jaggedValue(int sample)
{
    return 50 + (sample * 7 % 61) - 30;
}

void fill(Ovryn_BaseMonitorBox &box, double (*valueAt)(int))
{
    box.resize(kSamples + 29, 158); // a plot of 1000 pixels
    box.show();
    QCoreApplication::processEvents();
    for (int i = 0; i <= kSamples; ++i)
        box.addData(valueAt(i));
}

void addData(benchmark::State &state)
{
    Ovryn_BaseMonitorBox box;
    fill(box, calmValue);
    int sample = 0;
    for (auto _ : state)
        box.addData(calmValue(++sample));
}
BENCHMARK(addData)->Unit(benchmark::kMicrosecond);

void newRange(benchmark::State &state)
{
    Ovryn_BaseMonitorBox box;
    fill(box, calmValue);
    double top = 100;
    for (auto _ : state) {
        top = 300 - top;
        box.setRange(0, top);
    }
}
BENCHMARK(newRange)->Unit(benchmark::kMicrosecond);

void paintBox(benchmark::State &state, double (*valueAt)(int))
{
    Ovryn_BaseMonitorBox box;
    fill(box, valueAt);
    QImage image(box.size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state)
        box.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
}
BENCHMARK_CAPTURE(paintBox, calm, calmValue)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paintBox, jagged, jaggedValue)->Unit(benchmark::kMillisecond);

/// What the page does with a record while the rows show: six rows repainted, six hidden graphs fed.
void recordToPage(benchmark::State &state)
{
    Ovryn_NvCardInfoWidget page(63, nullptr);
    page.resize(382, 394);
    page.show();
    QCoreApplication::processEvents();
    NvCardBaseInfo info;
    for (auto _ : state) {
        ++info.temperature.currentValue;
        page.recvNvCardInfo(info);
        QCoreApplication::processEvents();
    }
}
BENCHMARK(recordToPage)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    registerApplicationFonts();
    substituteFontFamilies();
    QApplication::setFont(QFont(QStringLiteral("Arial")));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
