#include "platform/GlobalHotKeys.h"
#include "support/FakeHotKey.h"

#include <QtTest>

/// The replacement of the hot keys' object, on a screen without hot keys.
class TestGlobalHotKeys : public QObject
{
    Q_OBJECT

private slots:
    void registrationFailsWithoutHotKeys();
    void replacementIsUsed();
    void replacementsAreNested();
};

void TestGlobalHotKeys::registrationFailsWithoutHotKeys()
{
    QCOMPARE(QGuiApplication::platformName(), QStringLiteral("offscreen"));
    GlobalHotKeys &hotKeys = GlobalHotKeys::current();
    QVERIFY(!hotKeys.registerKey(0x33, GlobalHotKeys::Control, 0x31));
    QVERIFY(!hotKeys.unregisterKey(0x33));
}

void TestGlobalHotKeys::replacementIsUsed()
{
    GlobalHotKeys *own = &GlobalHotKeys::current();
    {
        const FakeHotKey fake;
        QCOMPARE(&GlobalHotKeys::current(), static_cast<const GlobalHotKeys *>(&fake));
    }
    QCOMPARE(&GlobalHotKeys::current(), own);
}

void TestGlobalHotKeys::replacementsAreNested()
{
    const FakeHotKey outer;
    {
        const FakeHotKey inner;
        QCOMPARE(&GlobalHotKeys::current(), static_cast<const GlobalHotKeys *>(&inner));
    }
    QCOMPARE(&GlobalHotKeys::current(), static_cast<const GlobalHotKeys *>(&outer));
}

QTEST_MAIN(TestGlobalHotKeys)
#include "TestGlobalHotKeys.moc"
