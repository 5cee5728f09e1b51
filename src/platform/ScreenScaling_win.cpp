#include "platform/ScreenScaling.h"

#include <QGuiApplication>

void followScreenScaling()
{
    QGuiApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    // 150 percent are 150: rounded to 200, the window would be larger than a laptop's screen.
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
}
