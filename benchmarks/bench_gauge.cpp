#include "monitor/gauge/CreateBreathCircleAndWaveCircleThread.h"
#include "monitor/gauge/Ovryn_GpuInfoCircleBox.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>

// One frame of the renderer with both effects on. The last frame is kept, as the gauge keeps it.
static void rendererFrame(benchmark::State &state)
{
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    const int side = static_cast<int>(state.range(0));
    renderer.setSize(side);
    renderer.setBreathRadius(0.3 * side);
    renderer.setWaveRadius(0.2 * side);
    renderer.setWaveLevel(0.4);
    QImage shown;
    for (auto _ : state)
        shown = renderer.renderFrame();
}
BENCHMARK(rendererFrame)->Arg(300)->Arg(500)->Arg(640)->Arg(800)->Unit(benchmark::kMicrosecond);

// What a new frame costs the GUI thread: the gauge of the home page painted into its window.
static void gaugePaint(benchmark::State &state)
{
    const int side = static_cast<int>(state.range(0));
    CreateBreathCircleAndWaveCircleThread renderer(nullptr);
    renderer.setSize(side);
    renderer.setBreathRadius(0.3 * side);
    renderer.setWaveRadius(0.2 * side);
    renderer.setWaveLevel(0.4);

    Ovryn_GpuInfoCircleBox gauge;
    gauge.setAttribute(Qt::WA_TranslucentBackground);
    gauge.resize(side, side);
    gauge.setLanguage({"C L O C K", "T E M P", "M E M O R Y", "Preset ", "Present ", "Dec ", "Inc "},
                      kLanguageEnglish);
    gauge.show();
    QApplication::processEvents();
    gauge.recvBkImg(QPixmap::fromImage(renderer.renderFrame()));
    for (auto _ : state)
        gauge.repaint();
}
BENCHMARK(gaugePaint)->Arg(640)->Unit(benchmark::kMicrosecond);

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
