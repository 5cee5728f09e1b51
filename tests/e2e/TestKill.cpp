#include "e2e/ProgramTest.h"

#include <QRandomGenerator>
#include <QTest>
#include <QThread>

/// A hundred kills of the real executable at random moments of its start and its end, which are when it writes
/// config.xml. The file is removed before it is written anew, so a kill may lose it: the next start then makes a
/// fresh one. The file must always be the old one, the new one, or one that the next start replaces.
class TestKill : public ProgramTest
{
    Q_OBJECT

private slots:
    void hundredKills();

private:
    /// What a file holds, without the order of attributes and the white space. Empty for one that is missing, cut off
    /// or lacks a section.
    [[nodiscard]] QString contentOf(const InstalledProgram &program) const;
};

namespace
{

constexpr int kKills = 100;
constexpr quint32 kSeed = 20260101;
constexpr int kStartMs = 500; ///< a start stamps the file early on in this
constexpr int kCloseMs = 20;  ///< the saving of a close is within this

const char *const kOldDay = "2020/02/29";

QString canonical(const QDomElement &element)
{
    QStringList attributes;
    for (int i = 0; i < element.attributes().count(); ++i) {
        const QDomAttr attribute = element.attributes().item(i).toAttr();
        attributes << attribute.name() + QLatin1Char('=') + attribute.value();
    }
    attributes.sort();
    QString text = QLatin1Char('<') + element.tagName() + QLatin1Char(' ') + attributes.join(QLatin1Char(' '));
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling())
        text += child.isElement() ? canonical(child.toElement()) : child.nodeValue();
    return text + QLatin1Char('>');
}

/// The expected file after a start with a complete file.
QString stamped(const QString &content)
{
    return QString(content).replace(QRegularExpression(QStringLiteral("<LastStartDate [^>]*>")),
                                    QStringLiteral("<LastStartDate %1>").arg(today()));
}

/// Without what a close changes.
QString withoutClose(const QString &content)
{
    static const QRegularExpression cards(QStringLiteral("<GpuSettings .*>(?=<LastCloseDate)"));
    static const QRegularExpression date(QStringLiteral("<LastCloseDate [^>]*>"));
    return QString(content).remove(cards).remove(date);
}

bool isClosed(const QString &content)
{
    return content.contains(QStringLiteral("<LastCloseDate %1>").arg(today())) &&
           content.contains(QLatin1String("GpuName=GeForce GTX 1070 Ti"));
}

} // namespace

QString TestKill::contentOf(const InstalledProgram &program) const
{
    const QDomElement root = program.config();
    for (const char *section : {"GeneralSetting", "UpdateSetting", "GpuSettings", "LastCloseDate", "LastStartDate",
                                "LastCheckDate", "LastUpdateDate", "OtherSetting"}) {
        if (root.firstChildElement(QLatin1String(section)).isNull())
            return {};
    }
    return canonical(root);
}

void TestKill::hundredKills()
{
    InstalledProgram program(screen);
    program.useScenario(R"({ "cards": [{}] })");

    // The program's own files: from no file, and from the one that the rounds begin with.
    QVERIFY(startedWindow(program) != 0);
    QVERIFY(program.kill());
    const QString fresh = contentOf(program);
    QVERIFY(!fresh.isEmpty());
    program.writeConfig(QByteArray(kQuietConfig).replace("NotPromptHPS=\"1\"", "NotPromptHPS=\"1\" Note=\"kept\""));
    QVERIFY(startedWindow(program) != 0);
    QVERIFY(program.kill());
    // with the day of an earlier start, so that the stamp shows
    const QByteArray mine =
        program.configBytes().replace("<LastStartDate>" + today().toUtf8(), QByteArray("<LastStartDate>") + kOldDay);
    program.writeConfig(mine);
    const QString good = contentOf(program);
    QVERIFY(good.contains(QLatin1String("Note=kept")) && good.contains(QLatin1String(kOldDay)));
    QVERIFY(good != stamped(good));

    QRandomGenerator random(kSeed);
    int lost = 0;
    int endedBefore = 0;
    int savedAtClose = 0;
    for (int kill = 2; kill < kKills; kill += 2) {
        const QByteArray round = "round " + QByteArray::number(kill / 2);
        if (kill % 4 == 2)
            program.writeConfig(mine); // the others continue with the last kill's file
        QString before = kill % 4 == 2 ? good : contentOf(program);
        if (before.isEmpty())
            ++lost;

        // killed in its start
        QVERIFY2(program.start(), round);
        QThread::msleep(random.bounded(kStartMs));
        QVERIFY2(program.kill(), round);
        QString after = contentOf(program);
        QString next = before.isEmpty() ? fresh : stamped(before);
        QVERIFY2(after.isEmpty() || after == before || after == next, round + ": " + after.toUtf8());

        // the next start goes by the rules for what was left
        before = after;
        next = before.isEmpty() ? fresh : stamped(before);
        if (before.isEmpty())
            ++lost;
        const qint64 window = startedWindow(program);
        QVERIFY2(window != 0, round);
        QCOMPARE(contentOf(program), next);

        // killed in its end
        (void)screen.run(QStringLiteral("wmctrl"),
                         {QStringLiteral("-i"), QStringLiteral("-c"), QString::number(window)});
        QThread::msleep(random.bounded(kCloseMs));
        if (!program.kill())
            ++endedBefore;
        after = contentOf(program);
        const bool saved = isClosed(after) && withoutClose(after) == withoutClose(next);
        QVERIFY2(after.isEmpty() || after == next || saved, round + ": " + after.toUtf8());
        if (saved)
            ++savedAtClose;
        const QByteArray entry = program.autoStartEntry();
        QVERIFY2(entry.isEmpty() || entry.endsWith("Terminal=false\n"), entry);
    }
    qInfo("files lost: %d; ends: %d before the kill, %d saved", lost, endedBefore, savedAtClose);
    QVERIFY(endedBefore < kKills * 2 / 5); // the moments were early enough
    QVERIFY(savedAtClose > kKills / 20);   // and late enough

    // After all kills the program works as before.
    const qint64 window = startedWindow(program);
    QVERIFY(window != 0);
    closeByButton(program, window);
    QVERIFY(isClosed(contentOf(program)));
}

int main(int argc, char **argv)
{
    return runProgramTest<TestKill>(argc, argv);
}

#include "TestKill.moc"
