#pragma once

#include "monitor/gauge/BreathAndWave.h"
#include "ui/Reds.h"
#include "worker/WorkerThread.h"

#include <QBrush>
#include <QColor>
#include <QImage>

/// One picture of the animation, and the parts of it that hold something.
struct GaugeFrame
{
    QImage picture;
    double glowReach = 0; ///< radius in pixels around the middle, beyond which the picture is empty; 0 without a glow
    WaveDisc disc;

    /// False when the discs of both frames have the same pixels.
    [[nodiscard]] bool discDiffers(const GaugeFrame &other) const;
};

/// Worker that paints the gauge's background 50 times a second and sends it by signal. Owned by a gauge box, whose
/// GUI thread calls everything here except run(). Nothing fails: invalid sizes, radii and levels give an empty
/// picture. The thread ends by itself when both effects are off, and startRender() starts it again.
///
/// The state of pulse and waves is shared by the whole program (SharedGaugeAnimation), so it is no member.
class CreateBreathCircleAndWaveCircleThread : public WorkerThread
{
    Q_OBJECT

public:
    explicit CreateBreathCircleAndWaveCircleThread(QObject *parent);
    ~CreateBreathCircleAndWaveCircleThread() override;

    void startRender(); ///< does nothing while it runs
    void stopRender();  ///< a request: the loop sees it at the end of a frame

    void setSize(int side); ///< side of the picture in pixels; held to 0 up to kMaxSide
    void setBreathEnabled(bool enabled);
    void setWaveEnabled(bool enabled);
    void setWaveLevel(double level); ///< 0 empty to 1 full
    /// The glow starts one pixel inside the ring's outer edge `r`.
    void setBreathRadius(double r);
    /// The disc overlaps the edge `r` of the ring's hole by one pixel.
    void setWaveRadius(double r);
    void setSleepMs(unsigned long milliseconds); ///< pause between two frames

    /// Steps the animation and paints the next frame as the loop does, for a caller without the thread.
    [[nodiscard]] GaugeFrame nextFrame();
    [[nodiscard]] QImage renderFrame() { return nextFrame().picture; } ///< the same, the picture alone

    static constexpr int kMaxSide = 8192; ///< no screen shows a larger gauge

signals:
    /// Emitted on the worker's thread with its mutex held: connect queued.
    void sendImage(QImage pixmap);
    /// The same picture with its parts, for a receiver that repaints only what has changed. As sendImage otherwise.
    void sendFrame(GaugeFrame frame);

protected:
    void run() override;

private:
    [[nodiscard]] GaugeFrame paintFrame();
    void forgetPictures(); ///< for a change of the area that the glow and the disc overwrite in each frame

    // all guarded by mutex
    double breathRadius = 0;
    double waveRadius = 0;
    double waveLevel = 0;
    unsigned long sleepMs = 20;
    QImage image;              ///< the last frame; the gauge shares it
    QImage previous;           ///< the frame before; reused when nothing else shares it any more
    double imageBreathPos = 0; ///< of the glow in image; 0 without one
    double previousBreathPos = 0;
    WaveDiscPainter discPainter;
    bool breathEnabled = true;
    bool waveEnabled = true;
    int size = 100;
    QBrush lightBrush = Reds::gauge(50);
    QBrush darkBrush = Reds::gauge(150);
    QColor glowColor = Reds::gauge(180);
};
