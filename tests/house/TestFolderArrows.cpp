#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

#include <algorithm>
#include <array>

namespace
{

/// Files outside src/platform that may depend on one system, each with its reason.
const std::array kFilesThatKnowASystem = {
    "src/device/nvapi/NvApiLibrary_posix.cpp", // opens the driver's library
    "src/device/nvapi/NvApiLibrary_win.cpp",   // opens the driver's library
    "src/device/nvapi/NvApiRecords.h",         // how a function of a 32-bit Windows library is called
};

/// What the folders of src may include, as the document says it.
struct Arrows
{
    QMap<QString, QStringList> targets; ///< by folder; a folder ("ui") or one header ("config/ConfigRecords.h")
    QStringList faults;                 ///< lines that are no arrows, or arrows that lead up
};

QString textOf(const QString &path)
{
    QFile file(QStringLiteral(OVRYN_TREE "/") + path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    return QString::fromUtf8(file.readAll());
}

/// The lines of the first block of code that is marked as the arrows.
QStringList arrowLines(const QString &document)
{
    const QRegularExpression block(QStringLiteral("^```folder-arrows\\n(.*?)^```$"),
                                   QRegularExpression::MultilineOption |
                                       QRegularExpression::DotMatchesEverythingOption);
    return block.match(document).captured(1).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

/// One line: "monitor, overclock -> ui, config, device". "Qt only" means no folder.
Arrows arrowsFrom(const QStringList &lines)
{
    const QRegularExpression form(
        QStringLiteral("^([a-z]+(?:, [a-z]+)*) -> (Qt only|[a-z]+(?:/\\w+\\.h)?(?:, [a-z]+(?:/\\w+\\.h)?)*)$"));
    const QString comma = QStringLiteral(", ");
    Arrows arrows;
    // From the last line on, so that a target is known by then: arrows lead down, and no two lead in a circle.
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        const QRegularExpressionMatch match = form.match(*line);
        if (!match.hasMatch()) {
            arrows.faults.append(QStringLiteral("no arrow: ") + *line);
            continue;
        }
        QStringList targets;
        if (match.captured(2) != QLatin1String("Qt only"))
            targets = match.captured(2).split(comma);
        for (const QString &target : qAsConst(targets)) {
            if (!arrows.targets.contains(target.section(QLatin1Char('/'), 0, 0)))
                arrows.faults.append(QStringLiteral("leads to no line below: ") + target);
        }
        for (const QString &folder : match.captured(1).split(comma)) {
            if (arrows.targets.contains(folder))
                arrows.faults.append(QStringLiteral("has two lines: ") + folder);
        }
        for (const QString &folder : match.captured(1).split(comma))
            arrows.targets.insert(folder, targets);
    }
    return arrows;
}

const Arrows &documentedArrows()
{
    static const Arrows arrows = arrowsFrom(arrowLines(textOf(QStringLiteral("docs/architecture.md"))));
    return arrows;
}

QString withoutLineComment(const QString &line)
{
    return line.section(QStringLiteral("//"), 0, 0);
}

/// A header of the C++ library, of Qt as it is on every system, of the archive library, or of the one that checks
/// signatures.
bool isPortableHeader(const QString &name)
{
    static const QRegularExpression portable(
        QStringLiteral("^(?:[a-z_]+|Q[A-Za-z0-9]+|(?:JlCompress|quazip\\w*|sodium)\\.h)$"));
    static const QRegularExpression ofOneSystem(QStringLiteral("^Q(?:t?X11|t?Win(?!dow)|t?Mac|t?DBus|t?Ax)"));
    return portable.match(name).hasMatch() && !ofOneSystem.match(name).hasMatch();
}

/// What is wrong with an include of the header `name` in a file of `folder`; empty where nothing is.
QString faultOfInclude(const QString &folder, const QString &name, bool quoted, bool knowsASystem,
                       const Arrows &arrows)
{
    const QString target = name.section(QLatin1Char('/'), 0, 0);
    const bool ofTheTree = name.contains(QLatin1Char('/')) && arrows.targets.contains(target);
    if (ofTheTree) {
        const QStringList allowed = arrows.targets.value(folder);
        if (target == folder || allowed.contains(target) || allowed.contains(name))
            return {};
        return folder + QStringLiteral(" may not include ") + name;
    }
    if (quoted)
        return QStringLiteral("not written from src: ") + name;
    if (knowsASystem || isPortableHeader(name))
        return {};
    return QStringLiteral("header of one system: ") + name;
}

/// What is wrong in the text of a source file, one line each: "src/ui/Fonts.h:3: ui may not include device/...".
/// `path` is relative to the tree.
QStringList faultsOf(const QString &path, const QString &text, const Arrows &arrows)
{
    static const QRegularExpression include(QStringLiteral("^\\s*#\\s*(?:include|import)(?:_next)?\\b(.*)$"));
    static const QRegularExpression header(QStringLiteral("^\\s*(?:\"([^\"]+)\"|<([^>]+)>)\\s*$"));
    static const QRegularExpression system(
        QStringLiteral("\\b(?:Q_OS_\\w+|_WIN32|_WIN64|WIN32|__linux__|__unix__|__APPLE__)\\b"));

    const QString folder = path.section(QLatin1Char('/'), 1, 1);
    const bool knowsASystem =
        folder == QLatin1String("platform") ||
        std::find(kFilesThatKnowASystem.begin(), kFilesThatKnowASystem.end(), path) != kFilesThatKnowASystem.end();
    QStringList faults;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString line = withoutLineComment(lines.at(i));
        QString fault;
        if (const auto directive = include.match(line); directive.hasMatch()) {
            const auto named = header.match(directive.captured(1));
            const bool quoted = !named.captured(1).isEmpty();
            fault = named.hasMatch()
                        ? faultOfInclude(folder, named.captured(quoted ? 1 : 2), quoted, knowsASystem, arrows)
                        : QStringLiteral("include of no plain header");
        } else if (const auto test = system.match(line); test.hasMatch() && !knowsASystem) {
            fault = QStringLiteral("asks for the system: ") + test.captured();
        }
        if (!fault.isEmpty())
            faults.append(QStringLiteral("%1:%2: %3").arg(path).arg(i + 1).arg(fault));
    }
    return faults;
}

/// Every file of src but the build's own, relative to the tree.
QStringList sourceFiles()
{
    const QDir tree(QStringLiteral(OVRYN_TREE));
    QStringList paths;
    QDirIterator files(tree.filePath(QStringLiteral("src")), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = tree.relativeFilePath(files.next());
        if (!path.endsWith(QLatin1String("/CMakeLists.txt")))
            paths.append(path);
    }
    paths.sort();
    return paths;
}

/// Folders of src that the library of `folder` is linked with.
QStringList linkedFolders(const QString &folder)
{
    const QString build = textOf(QStringLiteral("src/%1/CMakeLists.txt").arg(folder));
    const QRegularExpression library(QStringLiteral("ovryn_library\\(%1\\b[^)]*\\bLINKS\\b([^)]*)\\)").arg(folder));
    QRegularExpressionMatchIterator names =
        QRegularExpression(QStringLiteral("\\bovryn_([a-z]+)\\b")).globalMatch(library.match(build).captured(1));
    QStringList folders;
    while (names.hasNext()) {
        const QString name = names.next().captured(1);
        if (documentedArrows().targets.contains(name))
            folders.append(name);
    }
    folders.sort();
    return folders;
}

} // namespace

/// The folders of src include each other as docs/architecture.md says, and only one folder depends on the systems.
class TestFolderArrows : public QObject
{
    Q_OBJECT

private slots:
    void arrowsOfLines_data();
    void arrowsOfLines();
    void faultsOfAFile_data();
    void faultsOfAFile();
    void everyFolderHasItsArrows();
    void noFileIncludesAgainstAnArrow();
    void everyExceptionIsNeeded();
    void librariesAreLinkedAlongTheArrows();
};

void TestFolderArrows::arrowsOfLines_data()
{
    QTest::addColumn<QString>("lines");
    QTest::addColumn<QStringList>("faults");
    QTest::newRow("down") << "app -> ui, config\nui -> config\nconfig -> Qt only" << QStringList{};
    QTest::newRow("one header") << "ui -> config/ConfigRecords.h\nconfig -> Qt only" << QStringList{};
    QTest::newRow("two folders in a line") << "app, guard -> device\ndevice -> Qt only" << QStringList{};
    QTest::newRow("up") << "ui -> Qt only\napp -> ui" << QStringList{"leads to no line below: ui"};
    QTest::newRow("within a line") << "ui, app -> ui" << QStringList{"leads to no line below: ui"};
    QTest::newRow("to nowhere") << "app -> cellar" << QStringList{"leads to no line below: cellar"};
    QTest::newRow("two lines of a folder") << "app -> Qt only\napp -> Qt only" << QStringList{"has two lines: app"};
    QTest::newRow("no target") << "app ->" << QStringList{"no arrow: app ->"};
    QTest::newRow("a remark") << "app -> Qt only (sometimes)" << QStringList{"no arrow: app -> Qt only (sometimes)"};
}

void TestFolderArrows::arrowsOfLines()
{
    QFETCH(QString, lines);
    QFETCH(QStringList, faults);
    QCOMPARE(arrowsFrom(lines.split(QLatin1Char('\n'))).faults, faults);
}

void TestFolderArrows::faultsOfAFile_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("fault");
    const auto row = [](const char *name, const char *path, const char *text, const char *fault) {
        QTest::newRow(name) << QString::fromLatin1(path) << QString::fromLatin1(text) << QString::fromLatin1(fault);
    };
    row("own folder", "src/ui/A.h", "#include \"ui/B.h\"", "");
    row("along an arrow", "src/app/A.h", "#include \"ui/B.h\"", "");
    row("against an arrow", "src/ui/A.h", "#pragma once\n\n#include \"app/B.h\"",
        "src/ui/A.h:3: ui may not include app/B.h");
    row("where no arrow is", "src/device/A.cpp", "#include \"ui/B.h\"",
        "src/device/A.cpp:1: device may not include ui/B.h");
    row("the one header allowed", "src/ui/A.h", "#include \"config/Records.h\"", "");
    row("another header of that folder", "src/ui/A.h", "#include \"config/File.h\"",
        "src/ui/A.h:1: ui may not include config/File.h");
    row("in a folder within a folder", "src/device/nvapi/A.h", "#include \"ui/B.h\"",
        "src/device/nvapi/A.h:1: device may not include ui/B.h");
    row("angle brackets", "src/device/A.h", "#include <ui/B.h>", "src/device/A.h:1: device may not include ui/B.h");
    row("blanks", "src/device/A.h", "  #  include \"ui/B.h\" // why",
        "src/device/A.h:1: device may not include ui/B.h");
    row("no folder", "src/ui/A.cpp", "#include \"A.h\"", "src/ui/A.cpp:1: not written from src: A.h");
    row("from above", "src/ui/A.cpp", "#include \"../app/B.h\"", "src/ui/A.cpp:1: not written from src: ../app/B.h");
    row("a macro", "src/ui/A.cpp", "#include HEADER", "src/ui/A.cpp:1: include of no plain header");
    row("a comment", "src/ui/A.cpp", "// #include \"app/B.h\" on Q_OS_WIN", "");
    row("C++ library", "src/ui/A.cpp", "#include <cstddef>", "");
    row("Qt", "src/ui/A.cpp", "#include <QWindow>\n#include <QXmlStreamReader>", "");
    row("Qt on X11", "src/board/A.cpp", "#include <QX11Info>", "src/board/A.cpp:1: header of one system: QX11Info");
    row("Qt on Windows", "src/board/A.cpp", "#include <QtWin>", "src/board/A.cpp:1: header of one system: QtWin");
    row("a header of Windows", "src/device/A.cpp", "#include <windows.h>",
        "src/device/A.cpp:1: header of one system: windows.h");
    row("a header of Linux", "src/config/A.cpp", "#include <sys/stat.h>",
        "src/config/A.cpp:1: header of one system: sys/stat.h");
    row("in the folder of the systems", "src/platform/A_win.cpp", "#include <windows.h>\n#ifdef Q_OS_WIN", "");
    row("in a file that may", "src/device/nvapi/NvApiLibrary_posix.cpp", "#include <dlfcn.h>", "");
    row("the system asked for", "src/ui/A.cpp", "int a;\n#ifdef Q_OS_LINUX",
        "src/ui/A.cpp:2: asks for the system: Q_OS_LINUX");
    row("asked for by the compiler's name", "src/ui/A.cpp", "#if defined(_WIN32)",
        "src/ui/A.cpp:1: asks for the system: _WIN32");
}

void TestFolderArrows::faultsOfAFile()
{
    QFETCH(QString, path);
    QFETCH(QString, text);
    QFETCH(QString, fault);
    const Arrows arrows =
        arrowsFrom({QStringLiteral("app, board -> ui, device"), QStringLiteral("ui -> config/Records.h"),
                    QStringLiteral("device, config, platform -> Qt only")});
    QCOMPARE(arrows.faults, QStringList());
    QCOMPARE(faultsOf(path, text, arrows).join(QLatin1Char('\n')), fault);
}

void TestFolderArrows::everyFolderHasItsArrows()
{
    QCOMPARE(documentedArrows().faults, QStringList());
    const QDir sources(QStringLiteral(OVRYN_TREE "/src"));
    QCOMPARE(documentedArrows().targets.keys(),
             sources.entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name));
}

void TestFolderArrows::noFileIncludesAgainstAnArrow()
{
    QStringList faults;
    QSet<QString> foldersRead;
    for (const QString &path : sourceFiles()) {
        foldersRead.insert(path.section(QLatin1Char('/'), 1, 1));
        faults += faultsOf(path, textOf(path), documentedArrows());
    }
    QCOMPARE(foldersRead.size(), documentedArrows().targets.size());
    QVERIFY2(faults.isEmpty(), qPrintable(QLatin1Char('\n') + faults.join(QLatin1Char('\n'))));
}

void TestFolderArrows::everyExceptionIsNeeded()
{
    for (const char *const path : kFilesThatKnowASystem) {
        const QString text = textOf(QString::fromLatin1(path));
        const QString ordinaryFile =
            QString::fromLatin1(path).replace(QStringLiteral("NvApi"), QStringLiteral("Other"));
        QVERIFY2(!faultsOf(ordinaryFile, text, documentedArrows()).isEmpty(), path);
    }
}

void TestFolderArrows::librariesAreLinkedAlongTheArrows()
{
    for (auto folder = documentedArrows().targets.cbegin(); folder != documentedArrows().targets.cend(); ++folder) {
        QStringList folders;
        for (const QString &target : folder.value())
            folders.append(target.section(QLatin1Char('/'), 0, 0));
        folders.sort();
        QVERIFY2(linkedFolders(folder.key()) == folders, qPrintable(folder.key()));
    }
}

QTEST_APPLESS_MAIN(TestFolderArrows)
#include "TestFolderArrows.moc"
