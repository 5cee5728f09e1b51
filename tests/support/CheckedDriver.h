#pragma once

#include "simulated/SimulatedDriver.h"

#include <QStringList>
#include <QtTest>

/// The simulated driver for tests: a call that no card would be asked fails the test when the driver goes. A test
/// that makes such a call on purpose takes the marks out, or says that it makes wrong calls.
class CheckedDriver : public simulated::SimulatedDriver
{
public:
    using SimulatedDriver::SimulatedDriver;
    ~CheckedDriver()
    {
        const QStringList left = takeViolations();
        if (!wrongCallsAreMeant && !left.isEmpty() && !QTest::currentTestFailed())
            QTest::qFail(qPrintable("no card would be asked this: " + left.join(", ")), __FILE__, __LINE__);
    }
    CheckedDriver(const CheckedDriver &) = delete;
    CheckedDriver &operator=(const CheckedDriver &) = delete;

    /// For a test of what the driver itself makes of wrong calls.
    void expectsWrongCalls() { wrongCallsAreMeant = true; }

    /// The marks so far as "operation: what is wrong", each text once in the order of the calls. They count no more.
    QStringList takeViolations()
    {
        QStringList texts;
        for (const std::string &violation : violations())
            texts << QString::fromStdString(violation).remove(QLatin1String("NvAPI_"));
        clearViolations();
        texts.removeDuplicates();
        return texts;
    }

private:
    bool wrongCallsAreMeant = false;
};
