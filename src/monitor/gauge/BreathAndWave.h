#pragma once

#include <QBrush>
#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QRect>

/// \file
/// The gauge's animated background: a glow that breathes around the ring and a disc that fills with moving
/// water. The steps are pure functions of their state and the painting of its result; who keeps the state
/// is the renderer's business. Lengths are pixels.

/// Where the glow stands in its breath. One step a frame.
struct BreathPulse
{
    double breathPos = 0.7; ///< where the glow has faded out, as a share of half the picture's side
    bool breathFalling = false;
};

[[nodiscard]] BreathPulse stepped(BreathPulse pulse);

/// How the water lies at a level between 0 and 1, both excluded.
struct WaveShape
{
    double waterline = 0;      ///< y of the surface at rest, a whole number
    double segment = 1;        ///< a quarter of a wave's length; at least 1
    int segmentCount = 0;      ///< how many segments cover the picture's width
    double amplitudeLimit = 0; ///< where an amplitude turns
};

/// `width` is the picture's, at least 0; `radius` is above 0 and finite.
[[nodiscard]] WaveShape waveShapeFor(int width, double radius, double level);

/// How the two waves stand. One step a frame.
struct WaveMotion
{
    double amp1 = 0; ///< never strictly between -1 and 1 after a step
    double amp2 = 0; ///< likewise; moves a little faster
    bool amp1Falling = false;
    bool amp2Falling = false;
    double wavePhase = 0; ///< how far both waves have moved to the right
};

[[nodiscard]] WaveMotion stepped(WaveMotion motion, const WaveShape &shape);

/// Where on the x axis the waves end: beyond the picture, or up to a segment short of its edge.
[[nodiscard]] double waveEnd(const WaveShape &shape, double phase);

/// One wave and all the water below it, for odd-even filling, not yet cut by the disc.
[[nodiscard]] QPainterPath wavePath(const WaveShape &shape, int width, double amplitude, double phase);

/// Paints the glow, antialiased, into a square picture of premultiplied ARGB, but for the disc of `innerRadius` in
/// its middle. A radius that is 0, less or no number leaves no disc out. `earlierBreathPos` is that of the glow of
/// the same radius that the picture holds already, which is overwritten; 0 for an empty picture.
void paintGlow(QImage &picture, double innerRadius, double breathPos, const QColor &color,
               double earlierBreathPos = 0);

/// What paintWaveDisc needs besides the motion.
struct WaveDisc
{
    int width = 0;     ///< of the square picture, in whose middle the disc lies
    double radius = 0; ///< 0, less or no number paints nothing
    double level = 0;  ///< filled share of the disc's height; 0, less or no number is empty, from 1 on full
    QBrush lightBrush; ///< of the disc
    QBrush darkBrush;  ///< of the water

    /// True where there is a surface to move: neither empty nor full.
    [[nodiscard]] bool hasWave() const;
    [[nodiscard]] WaveShape shape() const;
    /// The pixels that the disc touches. Empty where it paints nothing.
    [[nodiscard]] QRect bounds() const;
    [[nodiscard]] QPainterPath circle() const;
};

/// Paints the disc, antialiased, over what the picture holds: premultiplied ARGB, `disc.width` square. The
/// motion is used only where the disc has a wave.
void paintWaveDisc(QImage &picture, const WaveDisc &disc, const WaveMotion &motion);

/// Paints the same as paintWaveDisc, frame after frame at a fraction of its cost: only the rows that the waves reach
/// are painted; the rows above and below come from pictures of the disc without water and with both waves over all of
/// it.
class WaveDiscPainter
{
public:
    void paint(QImage &picture, const WaveDisc &disc, const WaveMotion &motion);

private:
    [[nodiscard]] bool stillPicturesFit(const WaveDisc &disc) const;
    void paintStillPictures(const WaveDisc &disc);

    // painted anew where anything of the disc but its level changes
    WaveDisc painted; ///< what the two pictures show
    QImage dry;
    QImage flooded;
};
