#include "e2e/CardFrontTest.h"

#include "simulated/front/FrontLayout.h"

#include <QTest>

using namespace cardfront;

void CardFrontTest::cleanup()
{
    if (!front)
        return;
    front->terminate();
    if (!front->waitForFinished(kPatienceMs))
        front->kill();
    front.reset();
}

bool CardFrontTest::startFront(const QStringList &arguments)
{
    front = std::make_unique<QProcess>();
    QProcessEnvironment environment = screen.environment();
    environment.remove(QStringLiteral("NVAPI_SIM_STATE"));
    front->setProcessEnvironment(environment);
    front->start(QStringLiteral(OVRYN_CARD_FRONT), arguments);
    return front->waitForStarted(kPatienceMs);
}

qint64 CardFrontTest::waitForFront() const
{
    qint64 window = 0;
    (void)QTest::qWaitFor([&] { return (window = screen.findWindow(QString::fromLatin1(kWindowTitle))) != 0; },
                          kPatienceMs);
    return window;
}

bool CardFrontTest::look(qint64 window, int card, bool hasLcd)
{
    const QPoint place = screen.geometryOf(window).topLeft() + inWindow(card, cardLayout(hasLcd).strip).center();
    const QImage picture = screen.picture();
    seen = picture.valid(place) ? QColor(picture.pixel(place)) : QColor();
    return seen.isValid();
}

bool CardFrontTest::becomes(qint64 window, int card, bool hasLcd, const std::function<bool(const QColor &)> &wanted)
{
    return QTest::qWaitFor([&] { return look(window, card, hasLcd) && wanted(seen); }, kPatienceMs);
}

std::function<bool(const QColor &)> CardFrontTest::is(const QColor &wanted)
{
    return [wanted](const QColor &colour) {
        return colour == wanted;
    };
}
