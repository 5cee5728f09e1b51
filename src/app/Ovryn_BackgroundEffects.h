#pragma once

#include <QPixmap>
#include <QSize>
#include <QTimer>
#include <QWidget>

/// Where the two logos of the start-up picture rest and where they leave it, in pixels of the picture.
struct LogoTrack
{
    int logoXLimit = 0;     ///< x of the first logo at rest: the lower right corner
    int logo2XLimit = 0;    ///< x of the second logo at rest: the lower left corner
    int logo2XFarLimit = 0; ///< x of the second logo when both are outside, right of the picture
    int logoY = 0;
    int logo2Y = 0;

    /// x of the first logo while both move out together.
    [[nodiscard]] int logoXBeside(int logo2X) const { return logo2X + logoXLimit - logo2XLimit; }
};

/// The resting logos keep a margin of a twentieth of the picture's width and height, which leaves the ring
/// gauge between them free and clears the window's cut corner.
[[nodiscard]] LogoTrack logoTrackFor(QSize picture, QSize logo);

/// The three images of the start-up picture. One that is missing is left out of the painting.
struct BackgroundEffectImages
{
    QPixmap mask; ///< gives the widget its size and shape
    QPixmap centerLogo;
    QPixmap logo;

    static BackgroundEffectImages fromResources();
};

/// The main dialog's start-up picture: two logos slide in from the right when it is made, and the second
/// one goes three seconds after they have arrived. moveOut() clears the picture while a page is open,
/// moveIn() brings the logos back. Owned by the dialog, GUI thread, transparent for the mouse; nothing fails.
class Ovryn_BackgroundEffects : public QWidget
{
    Q_OBJECT

public:
    explicit Ovryn_BackgroundEffects(
        QWidget *parent = nullptr, const BackgroundEffectImages &pictures = BackgroundEffectImages::fromResources());

    void moveIn();
    void moveOut();

public slots:
    void onMoveTimerTimeout();  ///< one step of a slide
    void onDelayTimerTimeout(); ///< the second logo goes

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;

    // its parts and state, open to a derived class
    QTimer *moveTimer;
    QTimer *delayTimer;
    BackgroundEffectImages images;
    LogoTrack track;
    int logoX = 0;
    int logoY = 0;
    int logo2X = 0;
    int logo2Y = 0;
    bool movingIn = true;
    bool hideSecondLogo = false;
};
