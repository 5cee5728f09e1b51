#include "config/Ovryn_ConfigFile.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>

/// \file
/// The settings file with a hundred cards, in a real folder.

namespace
{

constexpr int kCards = 100;

void fill(Ovryn_ConfigFile &config)
{
    AdjustModuleInfo adjust;
    adjust.Nodes = {{0, 0}, {30, 40}, {60, 80}, {100, 100}};
    for (int card = 0; card < kCards; ++card) {
        const QString name = QStringLiteral("GeForce GTX 1070 Ti %1").arg(card);
        config.setAdjustModule(name, quint32(card), adjust);
    }
}

void load(benchmark::State &state)
{
    const QTemporaryDir folder;
    Ovryn_ConfigFile config(folder.filePath(QStringLiteral("config.xml")));
    fill(config);
    if (!config.save())
        state.SkipWithError("the file cannot be written");
    for (auto _ : state)
        benchmark::DoNotOptimize(config.load());
}
BENCHMARK(load)->Unit(benchmark::kMillisecond);

/// As at close: onto the document that was loaded.
void save(benchmark::State &state)
{
    const QTemporaryDir folder;
    Ovryn_ConfigFile config(folder.filePath(QStringLiteral("config.xml")));
    fill(config);
    if (!config.save() || !config.load())
        state.SkipWithError("the file cannot be written");
    for (auto _ : state)
        benchmark::DoNotOptimize(config.save());
}
BENCHMARK(save)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
