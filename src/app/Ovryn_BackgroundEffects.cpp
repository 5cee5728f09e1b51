#include "app/Ovryn_BackgroundEffects.h"

#include <QBitmap>
#include <QPainter>

namespace
{

constexpr int kMoveIntervalMs = 15;
constexpr int kDelayMs = 3000;
constexpr int kMoveStep = 15;        // pixels a tick
constexpr int kLogoMarginShare = 20; // the margin around a resting logo is this part of the picture
constexpr int kCenterTopShare = 30;  // likewise the space above the centre logo
constexpr int kCenterLogoShift = 10; // pixels to the right of the middle

} // namespace

LogoTrack logoTrackFor(QSize picture, QSize logo)
{
    const int margin = picture.width() / kLogoMarginShare;
    LogoTrack track;
    track.logo2XLimit = margin;
    track.logoXLimit = qMax(margin, picture.width() - logo.width() - margin);
    track.logo2XFarLimit = qMax(margin, picture.width());
    track.logoY = picture.height() - logo.height() - picture.height() / kLogoMarginShare;
    track.logo2Y = track.logoY;
    return track;
}

BackgroundEffectImages BackgroundEffectImages::fromResources()
{
    return {QPixmap(QStringLiteral(":/images/images/maskBKImage.png")),
            QPixmap(QStringLiteral(":/images/images/centerLogo.png")),
            QPixmap(QStringLiteral(":/images/images/logo.png"))};
}

Ovryn_BackgroundEffects::Ovryn_BackgroundEffects(QWidget *parent, const BackgroundEffectImages &pictures)
    : QWidget(parent),
      moveTimer(new QTimer(this)),
      delayTimer(new QTimer(this)),
      images(pictures),
      track(logoTrackFor(images.mask.size(), images.logo.size()))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    if (!images.mask.isNull()) {
        setFixedSize(images.mask.size());
        setMask(images.mask.mask());
    }
    logo2X = track.logo2XFarLimit;
    logoX = track.logoXBeside(logo2X);
    logoY = track.logoY;
    logo2Y = track.logo2Y;

    moveTimer->setObjectName(QStringLiteral("moveTimer"));
    moveTimer->setInterval(kMoveIntervalMs);
    delayTimer->setObjectName(QStringLiteral("delayTimer"));
    delayTimer->setInterval(kDelayMs);
    connect(moveTimer, SIGNAL(timeout()), this, SLOT(onMoveTimerTimeout()));
    connect(delayTimer, SIGNAL(timeout()), this, SLOT(onDelayTimerTimeout()));
    moveIn();
}

void Ovryn_BackgroundEffects::moveIn()
{
    movingIn = true;
    moveTimer->start();
}

void Ovryn_BackgroundEffects::moveOut()
{
    movingIn = false;
    moveTimer->start();
}

void Ovryn_BackgroundEffects::onMoveTimerTimeout()
{
    if (movingIn) {
        logoX = qMax(logoX - kMoveStep, track.logoXLimit);
        logo2X = qMax(logo2X - kMoveStep, track.logo2XLimit);
        if (logoX == track.logoXLimit && logo2X == track.logo2XLimit) {
            moveTimer->stop();
            delayTimer->start();
        }
    } else {
        delayTimer->stop();
        hideSecondLogo = false;
        logo2X = qMin(logo2X + kMoveStep, track.logo2XFarLimit);
        logoX = track.logoXBeside(logo2X);
        if (logo2X == track.logo2XFarLimit)
            moveTimer->stop();
    }
    update();
}

void Ovryn_BackgroundEffects::onDelayTimerTimeout()
{
    hideSecondLogo = true;
    update();
    delayTimer->stop();
}

void Ovryn_BackgroundEffects::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(logoX, logoY, images.logo);
    if (!hideSecondLogo)
        painter.drawPixmap(logo2X, logo2Y, images.logo);
    painter.drawPixmap((images.mask.width() - images.centerLogo.width()) / 2 + kCenterLogoShift,
                       images.mask.height() / kCenterTopShare, images.centerLogo);
}

void Ovryn_BackgroundEffects::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!delayTimer->isActive() && hideSecondLogo) {
        hideSecondLogo = false;
        update();
        delayTimer->start();
    }
}
