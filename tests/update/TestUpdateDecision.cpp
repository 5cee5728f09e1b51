#include "update/UpdateDecision.h"

#include <QTest>

class TestUpdateDecision : public QObject
{
    Q_OBJECT

private slots:
    void versionOfThisProgram();
    void newerVersion_data();
    void newerVersion();
    void checkIsDue_data();
    void checkIsDue();
    void decision_data();
    void decision();
};

Q_DECLARE_METATYPE(UpdateAction)
Q_DECLARE_METATYPE(UpdateTrigger)

void TestUpdateDecision::versionOfThisProgram()
{
    QCOMPARE(ownVersion(), QStringLiteral("1.0.2.4"));
}

void TestUpdateDecision::newerVersion_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("newer");
    QTest::newRow("the same") << "1.0.2.4" << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("next") << "1.0.2.5" << true;
    QTest::newRow("earlier") << "1.0.2.3" << false;
    QTest::newRow("shorter and greater") << "1.1" << true;
    QTest::newRow("beginning of the own") << "1.0.2" << false;
    QTest::newRow("own with more after it") << "1.0.2.4.0" << true;
    QTest::newRow("own with a blank after it") << "1.0.2.4 " << true;
    QTest::newRow("greater number, smaller text") << "1.0.10.0" << false;
    QTest::newRow("smaller number, greater text") << "1.0.2.40" << true;
    QTest::newRow("a digit is greater than a dot") << "10.0.0.0" << true;
    QTest::newRow("zero in front") << "01.9" << false;
    QTest::newRow("letter") << "beta" << true;
    QTest::newRow("blank in front") << " 2.0" << false;
}

void TestUpdateDecision::newerVersion()
{
    QFETCH(QString, version);
    QTEST(isNewerVersion(version), "newer");
}

void TestUpdateDecision::checkIsDue_data()
{
    QTest::addColumn<QDate>("lastCheck");
    QTest::addColumn<int>("intervalDays");
    QTest::addColumn<bool>("due");
    const QDate today(2026, 3, 1);
    QTest::newRow("seven of seven days ago") << today.addDays(-7) << 7 << true;
    QTest::newRow("six of seven days ago") << today.addDays(-6) << 7 << false;
    QTest::newRow("eight of seven days ago") << today.addDays(-8) << 7 << true;
    QTest::newRow("thirty of thirty days ago") << today.addDays(-30) << 30 << true;
    QTest::newRow("a month ago, with less than thirty days") << QDate(2026, 2, 1) << 30 << false;
    QTest::newRow("eighty-nine of ninety days ago") << today.addDays(-89) << 90 << false;
    QTest::newRow("never is an interval, too") << today.addDays(-9999) << 10000 << false;
    QTest::newRow("never ends after ten thousand days") << today.addDays(-10000) << 10000 << true;
    QTest::newRow("today, every start") << today << 0 << true;
    QTest::newRow("tomorrow, by a clock that went back") << today.addDays(1) << 0 << false;
    QTest::newRow("negative interval") << today << -7 << true;
    QTest::newRow("date that was unreadable") << QDate() << 7 << true;
    QTest::newRow("largest interval") << today.addDays(-7) << std::numeric_limits<int>::max() << false;
    QTest::newRow("smallest interval") << today << std::numeric_limits<int>::min() << true;
}

void TestUpdateDecision::checkIsDue()
{
    QFETCH(QDate, lastCheck);
    QFETCH(int, intervalDays);
    QTEST(isUpdateCheckDue(lastCheck, intervalDays, QDate(2026, 3, 1)), "due");
}

void TestUpdateDecision::decision_data()
{
    QTest::addColumn<UpdateTrigger>("trigger");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("current");
    QTest::addColumn<QString>("manual");
    QTest::addColumn<UpdateAction>("action");
    const auto byItself = UpdateTrigger::Automatic;
    const auto byUser = UpdateTrigger::Manual;
    const int most = std::numeric_limits<int>::max();

    QTest::newRow("automatic, new, mode 0") << byItself << 0 << "1.1"
                                            << "" << UpdateAction::Update;
    QTest::newRow("automatic, new, mode 1") << byItself << 1 << "1.1"
                                            << "" << UpdateAction::AskThenUpdate;
    QTest::newRow("automatic, new, mode 2") << byItself << 2 << "1.1"
                                            << "" << UpdateAction::AskThenUpdate;
    QTest::newRow("automatic, new, mode 3 is as 0") << byItself << 3 << "1.1"
                                                    << "" << UpdateAction::Update;
    QTest::newRow("automatic, new, negative mode") << byItself << -1 << "1.1"
                                                   << "" << UpdateAction::Update;
    QTest::newRow("automatic, new, largest mode") << byItself << most << "1.1"
                                                  << "" << UpdateAction::Update;
    QTest::newRow("automatic, nothing new") << byItself << 0 << "1.0.2.4"
                                            << "" << UpdateAction::Nothing;
    QTest::newRow("automatic, no manifest") << byItself << 2 << ""
                                            << "" << UpdateAction::Nothing;
    QTest::newRow("automatic, too old") << byItself << 0 << "1.1"
                                        << "1.1" << UpdateAction::ReportTooOld;
    QTest::newRow("automatic, too old, mode that asks") << byItself << 2 << "1.1"
                                                        << "1.1" << UpdateAction::ReportTooOld;
    QTest::newRow("automatic, own is the last to update by hand") << byItself << 0 << "1.1"
                                                                  << "1.0.2.4" << UpdateAction::Update;
    QTest::newRow("automatic, manual version alone is newer") << byItself << 0 << "1.0.2.4"
                                                              << "9" << UpdateAction::Nothing;

    QTest::newRow("manual, new, mode 0 asks all the same") << byUser << 0 << "1.1"
                                                           << "" << UpdateAction::AskThenUpdate;
    QTest::newRow("manual, new, mode 2") << byUser << 2 << "1.1"
                                         << "" << UpdateAction::AskThenUpdate;
    QTest::newRow("manual, too old") << byUser << 0 << "1.1"
                                     << "1.0.3" << UpdateAction::ReportTooOld;
    QTest::newRow("manual, empty manual version") << byUser << 0 << "1.1"
                                                  << "" << UpdateAction::AskThenUpdate;
    QTest::newRow("manual, nothing new") << byUser << 0 << "1.0.2.4"
                                         << "" << UpdateAction::ReportLatest;
    QTest::newRow("manual, 1.0.10.0 is not offered") << byUser << 0 << "1.0.10.0"
                                                     << "" << UpdateAction::ReportLatest;
    QTest::newRow("manual, no manifest") << byUser << 2 << ""
                                         << "" << UpdateAction::ReportLatest;
    QTest::newRow("manual, manual version alone is newer") << byUser << 0 << ""
                                                           << "9" << UpdateAction::ReportLatest;
}

void TestUpdateDecision::decision()
{
    QFETCH(UpdateTrigger, trigger);
    QFETCH(int, mode);
    QFETCH(QString, current);
    QFETCH(QString, manual);
    QFETCH(UpdateAction, action);
    QVERIFY(decideUpdate(trigger, mode, current, manual) == action);
}

QTEST_APPLESS_MAIN(TestUpdateDecision)
#include "TestUpdateDecision.moc"
