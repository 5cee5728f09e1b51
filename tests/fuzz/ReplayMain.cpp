#include <QByteArray>
#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>

#include <cstdio>
#include <vector>

/// \file
/// Runs a fuzz entry without a fuzzer: over every file below the folder that is its one argument, and over mutations
/// of each, the same ones in every run.

extern "C" int LLVMFuzzerTestOneInput(const quint8 *data, size_t size);

namespace
{

constexpr int kMutationsPerFile = 200;

void run(const QByteArray &input)
{
    // A copy of exactly that size, so that the address sanitizer sees a read behind its end.
    const std::vector<quint8> bytes(input.cbegin(), input.cend());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

QByteArray mutated(QByteArray input, QRandomGenerator &random)
{
    for (quint32 changes = 1 + random.bounded(4U); changes > 0 && !input.isEmpty(); --changes) {
        const int at = random.bounded(input.size());
        const int length = 1 + random.bounded(qMin(16, input.size() - at));
        switch (random.bounded(5)) {
        case 0:
            input[at] = char(random.bounded(256));
            break;
        case 1:
            input.remove(at, length);
            break;
        case 2:
            input.insert(at, input.mid(random.bounded(input.size()), length));
            break;
        case 3:
            input[at] = char(input.at(at) ^ (1 << random.bounded(8)));
            break;
        default:
            input.truncate(at);
        }
    }
    return input;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s folder\n", argv[0]);
        return 2;
    }
    QStringList files;
    QDirIterator walk(QString::fromLocal8Bit(argv[1]), QDir::Files, QDirIterator::Subdirectories);
    while (walk.hasNext())
        files.append(walk.next());
    files.sort();

    QRandomGenerator random(1);
    for (const QString &name : qAsConst(files)) {
        QFile file(name);
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "cannot read %s\n", qPrintable(name));
            return 2;
        }
        const QByteArray input = file.readAll();
        run(input);
        for (int mutation = 0; mutation < kMutationsPerFile; ++mutation)
            run(mutated(input, random));
    }
    std::printf("%d files, %d inputs\n", int(files.size()), int(files.size()) * (1 + kMutationsPerFile));
    return files.isEmpty() ? 2 : 0; // an empty folder tests nothing
}
