#include "updater/UpdatePlan.h"

#include <QTest>

Q_DECLARE_METATYPE(PlanRefusal)

/// What an update decides to do.
class TestUpdatePlan : public QObject
{
    Q_OBJECT

private slots:
    void refusals_data();
    void refusals();
    void aRefusalPlansNothing();
    void fetchedIsWhatDiffers();
    void removedIsWhatTheReleaseHasNoMore();
    void withoutAListNothingIsRemoved();
    void changedFilesOfTheUserStay();
    void theUpdater();
    void onlyListedFilesAreLookedAt();

private:
    [[nodiscard]] static QStringList pathsOf(const QVector<ReleaseFile> &files)
    {
        QStringList paths;
        for (const ReleaseFile &file : files)
            paths.append(file.path);
        return paths;
    }
};

namespace
{

QByteArray hashOfText(char text)
{
    return QByteArray(32, text);
}

ReleaseFile file(const QString &path, char content, qint64 archiveSize = 10)
{
    ReleaseFile listed;
    listed.path = path;
    listed.version = "1.0.2.5";
    listed.size = 20;
    listed.sha256 = hashOfText(content);
    listed.archive = "a/" + path;
    listed.archiveSize = archiveSize;
    listed.archiveSha256 = hashOfText(char(content + 1));
    return listed;
}

ReleaseManifest release(const QVector<ReleaseFile> &files, const QString &version = "1.0.2.5")
{
    ReleaseManifest manifest;
    manifest.product = kProductName;
    manifest.platform = ownPlatform();
    manifest.version = version;
    manifest.files = files;
    return manifest;
}

/// An installation as a table of paths and contents.
InstalledHash installation(const QMap<QString, char> &contents)
{
    return [contents](const QString &path) {
        return contents.contains(path) ? hashOfText(contents.value(path)) : QByteArray();
    };
}

const QString kInstalled = QStringLiteral("1.0.2.4");

} // namespace

void TestUpdatePlan::refusals_data()
{
    QTest::addColumn<QString>("product");
    QTest::addColumn<QString>("platform");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("manual");
    QTest::addColumn<PlanRefusal>("refusal");
    const QString own = kProductName;
    const QString here = ownPlatform();
    QTest::newRow("newer") << own << here << "1.0.2.5"
                           << "" << PlanRefusal::None;
    QTest::newRow("newer, a short version") << own << here << "1.1"
                                            << "" << PlanRefusal::None;
    QTest::newRow("newer by one more number") << own << here << "1.0.2.4.1"
                                              << "" << PlanRefusal::None;
    QTest::newRow("another product") << "OvrynDeck3" << here << "1.0.2.5"
                                     << "" << PlanRefusal::OtherProduct;
    QTest::newRow("product in another case") << "ovryndeck2" << here << "1.0.2.5"
                                             << "" << PlanRefusal::OtherProduct;
    QTest::newRow("no product") << "" << here << "1.0.2.5"
                                << "" << PlanRefusal::OtherProduct;
    QTest::newRow("another platform") << own << "amiga-m68k"
                                      << "1.0.2.5"
                                      << "" << PlanRefusal::OtherPlatform;
    QTest::newRow("no platform") << own << ""
                                 << "1.0.2.5"
                                 << "" << PlanRefusal::OtherPlatform;
    QTest::newRow("the same version") << own << here << "1.0.2.4"
                                      << "" << PlanRefusal::NotNewer;
    QTest::newRow("an older version") << own << here << "1.0.2.3"
                                      << "" << PlanRefusal::NotNewer;
    QTest::newRow("older as a text") << own << here << "1.0.10.0"
                                     << "" << PlanRefusal::NotNewer;
    QTest::newRow("older by less numbers") << own << here << "1.0.2"
                                           << "" << PlanRefusal::NotNewer;
    QTest::newRow("no version") << own << here << ""
                                << "" << PlanRefusal::NotNewer;
    QTest::newRow("by hand from an older version") << own << here << "1.0.2.5"
                                                   << "1.0.2.3" << PlanRefusal::None;
    QTest::newRow("by hand from the installed version") << own << here << "1.0.2.5"
                                                        << "1.0.2.4" << PlanRefusal::None;
    QTest::newRow("by hand from a newer version") << own << here << "1.0.2.6"
                                                  << "1.0.2.5" << PlanRefusal::NeedsHands;
    QTest::newRow("by hand, newer as a text") << own << here << "1.0.2.6"
                                              << "1.0.2.45" << PlanRefusal::NeedsHands;
    QTest::newRow("by hand, older as a text") << own << here << "1.0.2.6"
                                              << "1.0.10.0" << PlanRefusal::None;
    QTest::newRow("by hand, but not newer") << own << here << "1.0.2.3"
                                            << "1.0.2.9" << PlanRefusal::NotNewer;
    QTest::newRow("another product, not newer") << "x" << here << "1.0"
                                                << "" << PlanRefusal::OtherProduct;
}

void TestUpdatePlan::refusals()
{
    QFETCH(QString, product);
    QFETCH(QString, platform);
    QFETCH(QString, version);
    QFETCH(QString, manual);
    ReleaseManifest offered = release({file("a", 'a')}, version);
    offered.product = product;
    offered.platform = platform;
    offered.manualDownloadVersion = manual;
    QTEST(planUpdate(offered, std::nullopt, kInstalled, installation({})).refusal, "refusal");
}

void TestUpdatePlan::aRefusalPlansNothing()
{
    const ReleaseManifest older = release({file("a", 'x')}, "1.0.2.3");
    const ReleaseManifest present = release({file("a", 'a'), file("b", 'b')}, kInstalled);
    const UpdatePlan plan = planUpdate(older, present, kInstalled, installation({{"a", 'a'}, {"b", 'b'}}));
    QCOMPARE(plan.refusal, PlanRefusal::NotNewer);
    QVERIFY(plan.fetched.isEmpty());
    QVERIFY(plan.removed.isEmpty());
    QCOMPARE(plan.bytes, 0);
}

void TestUpdatePlan::fetchedIsWhatDiffers()
{
    const ReleaseManifest offered =
        release({file("same", 'a', 1), file("changed", 'b', 20), file("new", 'c', 300), file("d/same", 'd', 4000)});
    const auto present = installation({{"same", 'a'}, {"changed", 'x'}, {"d/same", 'd'}, {"foreign", 'f'}});
    for (const auto &list :
         {std::optional<ReleaseManifest>(), std::optional(release({file("same", 'a')}, kInstalled)),
          // a list is no proof of what lies on the disk
          std::optional(release({file("changed", 'b'), file("new", 'c')}, kInstalled))}) {
        const UpdatePlan plan = planUpdate(offered, list, kInstalled, present);
        QCOMPARE(plan.refusal, PlanRefusal::None);
        QCOMPARE(pathsOf(plan.fetched), QStringList({"changed", "new"}));
        QCOMPARE(plan.bytes, 320);
        QVERIFY(plan.removed.isEmpty());
    }
    QCOMPARE(planUpdate(offered, std::nullopt, kInstalled, present).fetched.at(0).archive, QString("a/changed"));
}

void TestUpdatePlan::removedIsWhatTheReleaseHasNoMore()
{
    const ReleaseManifest present =
        release({file("kept", 'a'), file("gone", 'b'), file("d/gone", 'c'), file("missing", 'e')}, kInstalled);
    const UpdatePlan plan =
        planUpdate(release({file("kept", 'a')}), present, kInstalled,
                   installation({{"kept", 'a'}, {"gone", 'b'}, {"d/gone", 'c'}, {"foreign", 'f'}}));
    QVERIFY(plan.fetched.isEmpty());
    QCOMPARE(plan.removed, QStringList({"gone", "d/gone"}));

    // by another case it is the same file on some systems: removing it would remove the new one
    const UpdatePlan renamed =
        planUpdate(release({file("READ.txt", 'a')}), release({file("Read.txt", 'b')}, kInstalled), kInstalled,
                   installation({{"Read.txt", 'b'}}));
    QCOMPARE(pathsOf(renamed.fetched), QStringList({"READ.txt"}));
    QVERIFY(renamed.removed.isEmpty());
}

void TestUpdatePlan::withoutAListNothingIsRemoved()
{
    const UpdatePlan plan = planUpdate(release({file("kept", 'a')}), std::nullopt, kInstalled,
                                       installation({{"kept", 'a'}, {"gone", 'b'}}));
    QVERIFY(plan.removed.isEmpty());
}

void TestUpdatePlan::changedFilesOfTheUserStay()
{
    const UpdatePlan plan =
        planUpdate(release({file("kept", 'a')}), release({file("kept", 'a'), file("notes.txt", 'n')}, kInstalled),
                   kInstalled, installation({{"kept", 'a'}, {"notes.txt", 'x'}}));
    QVERIFY(plan.removed.isEmpty());
}

void TestUpdatePlan::theUpdater()
{
    const ReleaseManifest offered = release({file("a", 'a'), file(kUpdaterEntryName, 'u', 7)});
    const UpdatePlan changed =
        planUpdate(offered, std::nullopt, kInstalled, installation({{"a", 'a'}, {kUpdaterEntryName, 'x'}}));
    QCOMPARE(pathsOf(changed.fetched), QStringList({kUpdaterEntryName}));
    QCOMPARE(changed.bytes, 7);
    const UpdatePlan same =
        planUpdate(offered, std::nullopt, kInstalled, installation({{"a", 'a'}, {kUpdaterEntryName, 'u'}}));
    QVERIFY(same.fetched.isEmpty());

    // it runs: a release without one does not take it away
    const UpdatePlan gone = planUpdate(release({file("a", 'a')}), offered, kInstalled,
                                       installation({{"a", 'a'}, {kUpdaterEntryName, 'u'}}));
    QVERIFY(gone.removed.isEmpty());
}

void TestUpdatePlan::onlyListedFilesAreLookedAt()
{
    QStringList asked;
    const auto hashOf = [&asked](const QString &path) {
        asked.append(path);
        return QByteArray();
    };
    static_cast<void>(
        planUpdate(release({file("a", 'a')}), release({file("b", 'b')}, kInstalled), kInstalled, hashOf));
    asked.sort();
    QCOMPARE(asked, QStringList({"a", "b"}));
    asked.clear();
    static_cast<void>(
        planUpdate(release({file("a", 'a')}, "1.0"), release({file("b", 'b')}, kInstalled), kInstalled, hashOf));
    QVERIFY(asked.isEmpty()); // a refused release costs no reading of the disk
}

QTEST_GUILESS_MAIN(TestUpdatePlan)
#include "TestUpdatePlan.moc"
