// The real library, loaded by a process of its own: its environment is read once, at the first question.

#include "DriverCalls.h"

#include <QLibrary>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <nlohmann/json.hpp>

#include <cstdio>

namespace
{

constexpr const char *kProbe = "--probe";

QFunctionPointer queryOf(QLibrary &library)
{
    return library.resolve("nvapi_QueryInterface");
}

/// The other process: enumerates, reads a little of each card, and prints it.
int probe(const QString &path)
{
    QLibrary library(path);
    auto *const query = reinterpret_cast<DriverCalls::QueryInterface>(queryOf(library));
    if (!query) {
        std::printf("%s\n", qPrintable(library.errorString()));
        return 1;
    }
    const DriverCalls calls(query);
    std::printf("initialize %d\n", calls.NvAPI_Initialize());
    NvPhysicalGpuHandle gpus[kNvApiMaxGpus] = {};
    quint32 count = 0;
    const NvAPI_Status status = calls.NvAPI_EnumPhysicalGPUs(gpus, &count);
    std::printf("cards %d %u\n", status, count);
    if (!calls.NvAPI_EnumTCCPhysicalGPUs)
        std::printf("no TCC enumeration\n");
    for (quint32 i = 0; i < count && i < kNvApiMaxGpus; ++i) {
        char name[kNvApiShortTextSize] = "";
        calls.NvAPI_GPU_GetFullName(gpus[i], name);
        NvApiMemoryInfo memory{};
        memory.version = kMemoryInfoVersion3;
        const NvAPI_Status newest = calls.NvAPI_GPU_GetMemoryInfo(gpus[i], &memory);
        memory.version = kMemoryInfoVersion1;
        const NvAPI_Status oldest = calls.NvAPI_GPU_GetMemoryInfo(gpus[i], &memory);
        std::printf("%s %d %d\n", name, newest, oldest);
    }
    std::printf("unload %d\n", calls.NvAPI_Unload());
    // what a card was set to outlasts the library
    library.unload();
    QLibrary again(path);
    std::printf("loaded again: %s\n",
                reinterpret_cast<void *>(queryOf(again)) == reinterpret_cast<void *>(query) ? "the same" : "afresh");
    return 0;
}

struct Outcome
{
    QByteArray output;
    QByteArray errors;
};

} // namespace

class TestSimulatedLibrary : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void builtInScene();
    void scenarioOfTheEnvironment();
    void badScenarioTellsAndHasNoCard();
    void missingScenarioTellsAndHasNoCard();
    void journalAndState();
    void unwritableJournalTells();

private:
    Outcome run(const QMap<QString, QString> &variables);

    std::unique_ptr<QTemporaryDir> folder;
};

void TestSimulatedLibrary::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
}

Outcome TestSimulatedLibrary::run(const QMap<QString, QString> &variables)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"NVAPI_SIM_SCENARIO", "NVAPI_SIM_JOURNAL", "NVAPI_SIM_STATE"})
        environment.remove(name);
    for (auto variable = variables.begin(); variable != variables.end(); ++variable)
        environment.insert(variable.key(), variable.value());
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(), {kProbe, OVRYN_SIMULATED_LIBRARY});
    const bool finished = process.waitForFinished();
    Outcome outcome = {process.readAllStandardOutput(), process.readAllStandardError()};
    if (!finished || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        outcome.output += "the process failed";
    return outcome;
}

void TestSimulatedLibrary::builtInScene()
{
    const Outcome outcome = run({});
    QCOMPARE(outcome.output, QByteArray("initialize 0\n"
                                        "cards 0 2\n"
                                        "GeForce GTX 1070 Ti 0 0\n"
                                        "GeForce GTX 1060 6GB 0 0\n"
                                        "unload 0\n"
                                        "loaded again: the same\n"));
    QCOMPARE(outcome.errors, QByteArray());
}

void TestSimulatedLibrary::scenarioOfTheEnvironment()
{
    const Outcome outcome = run({{"NVAPI_SIM_SCENARIO", OVRYN_SCENES "/old-driver.json"}});
    QCOMPARE(outcome.output, QByteArray("initialize 0\n"
                                        "cards 0 1\n"
                                        "no TCC enumeration\n"
                                        "GeForce GTX 680 -9 0\n"
                                        "unload 0\n"
                                        "loaded again: the same\n"));
    QCOMPARE(outcome.errors, QByteArray());
}

void TestSimulatedLibrary::badScenarioTellsAndHasNoCard()
{
    const QString path = folder->filePath("scene.json");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{\"cards\": [{},\n {\"fan\": {\"maxRpm\": \"fast\"}}]}");
    file.close();
    const Outcome outcome = run({{"NVAPI_SIM_SCENARIO", path}});
    QVERIFY(outcome.output.startsWith("initialize 0\ncards -6 0\nunload 0\n"));
    QCOMPARE(outcome.errors, "simulated driver: " + path.toUtf8() +
                                 ": cards[1].fan.maxRpm: expected a whole number from 0 to 20000, found \"fast\"\n");
}

void TestSimulatedLibrary::missingScenarioTellsAndHasNoCard()
{
    const Outcome outcome = run({{"NVAPI_SIM_SCENARIO", folder->filePath("none.json")}});
    QVERIFY(outcome.output.contains("cards -6 0\n"));
    QCOMPARE(outcome.errors, "simulated driver: " + folder->filePath("none.json").toUtf8() + ": cannot be read\n");
}

void TestSimulatedLibrary::journalAndState()
{
    const QString journal = folder->filePath("journal");
    const QString state = folder->filePath("state.json");
    run({{"NVAPI_SIM_JOURNAL", journal}, {"NVAPI_SIM_STATE", state}});
    QFile file(journal);
    QVERIFY(file.open(QIODevice::ReadOnly));
    std::vector<std::string> operations;
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine())
        operations.push_back(nlohmann::json::parse(line.toStdString())["op"].get<std::string>());
    const std::vector<std::string> expected = {
        "NvAPI_Initialize",        "NvAPI_EnumPhysicalGPUs",  "NvAPI_GPU_GetFullName",
        "NvAPI_GPU_GetMemoryInfo", "NvAPI_GPU_GetMemoryInfo", "NvAPI_GPU_GetFullName",
        "NvAPI_GPU_GetMemoryInfo", "NvAPI_GPU_GetMemoryInfo", "NvAPI_Unload",
    };
    QVERIFY(operations == expected);
    QFile stateFile(state);
    QVERIFY(stateFile.open(QIODevice::ReadOnly));
    QCOMPARE(nlohmann::json::parse(stateFile.readAll().toStdString())["cards"].size(), std::size_t(2));
}

void TestSimulatedLibrary::unwritableJournalTells()
{
    const QString journal = folder->filePath("no/such/folder/journal");
    const Outcome outcome = run({{"NVAPI_SIM_JOURNAL", journal}});
    QVERIFY(outcome.output.contains("cards 0 2\n"));
    QCOMPARE(outcome.errors, "simulated driver: cannot write the journal " + journal.toUtf8() + "\n");
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() == 3 && arguments[1] == kProbe)
        return probe(arguments[2]);
    TestSimulatedLibrary test;
    return QTest::qExec(&test, argc, argv);
}

#include "TestSimulatedLibrary.moc"
