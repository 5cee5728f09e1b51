#pragma once

#include <QBrush>
#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QRect>

/// \file
/// The gauge's animated background: a pulsing glow around the ring and a disc that fills with moving water. Each step
/// is a pure function of its state, and the painting of the step's result; the renderer keeps the state. Lengths are
/// pixels.

/// The state of the pulsing glow. One step per frame.
struct BreathPulse
{
    double breathPos = 0.7; ///< radius at which the glow has faded out, as a share of half the picture's side
    bool breathFalling = false;
};

[[nodiscard]] BreathPulse stepped(BreathPulse pulse);

/// The shape of the water at a level between 0 and 1, both excluded.
struct WaveShape
{
    double waterline = 0;      ///< y of the surface at rest, a whole number
    double segment = 1;        ///< a quarter of a wave's length; at least 1
    int segmentCount = 0;      ///< how many segments cover the picture's width
    double amplitudeLimit = 0; ///< at which an amplitude changes direction
};

/// `width` is the picture's, at least 0; `radius` is above 0 and finite.
[[nodiscard]] WaveShape waveShapeFor(int width, double radius, double level);

/// The state of the two waves. One step per frame.
struct WaveMotion
{
    double amp1 = 0; ///< never strictly between -1 and 1 after a step
    double amp2 = 0; ///< likewise; moves a little faster
    bool amp1Falling = false;
    bool amp2Falling = false;
    double wavePhase = 0; ///< how far both waves have moved to the right
};

[[nodiscard]] WaveMotion stepped(WaveMotion motion, const WaveShape &shape);

/// The x at which the waves end: beyond the picture, or up to a segment before its edge.
[[nodiscard]] double waveEnd(const WaveShape &shape, double phase);

/// One wave and all the water below it, for odd-even filling. It is not yet cut to the disc.
[[nodiscard]] QPainterPath wavePath(const WaveShape &shape, int width, double amplitude, double phase);

/// Paints the glow, antialiased, into a square picture of premultiplied ARGB, except for the disc of `innerRadius` in
/// its middle. A radius that is NaN or not above 0 excludes nothing. `earlierBreathPos` belongs to the glow of the
/// same radius that the picture holds already and that is overwritten; 0 for an empty picture.
void paintGlow(QImage &picture, double innerRadius, double breathPos, const QColor &color,
               double earlierBreathPos = 0);

/// What paintWaveDisc needs besides the motion.
struct WaveDisc
{
    int width = 0;     ///< of the square picture, in whose middle the disc lies
    double radius = 0; ///< NaN or not above 0 paints nothing
    double level = 0;  ///< filled share of the disc's height; NaN or not above 0 is empty, from 1 on full
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

/// Paints the same as paintWaveDisc at a fraction of its cost per frame: only the rows that the waves reach are
/// painted. The rows above and below are copied from a picture of the disc without water and one that both waves
/// cover completely.
class WaveDiscPainter
{
public:
    void paint(QImage &picture, const WaveDisc &disc, const WaveMotion &motion);

private:
    [[nodiscard]] bool stillPicturesFit(const WaveDisc &disc) const;
    void paintStillPictures(const WaveDisc &disc);

    // painted again when anything of the disc except its level changes
    WaveDisc painted; ///< what the two pictures show
    QImage dry;
    QImage flooded;
};
