#pragma once

#include "monitor/gauge/BreathAndWave.h"
#include "ui/Reds.h"
#include "worker/WorkerThread.h"

#include <QBrush>
#include <QColor>
#include <QImage>

/// Worker that paints the gauge's background 50 times a second and hands it over by signal. Owned by a
/// gauge box, whose GUI thread calls everything here but run(). Nothing fails: sizes, radii and levels
/// that make no picture give an empty one. The thread ends by itself when both effects are off, and
/// startRender() starts it again.
///
/// The state of pulse and waves is one for the program (SharedGaugeAnimation), not a member.
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
    [[nodiscard]] QImage renderFrame();

    static constexpr int kMaxSide = 8192; ///< no screen shows a larger gauge

signals:
    /// Emitted on the worker's thread with its mutex held: connect queued.
    void sendImage(QImage pixmap);

protected:
    void run() override;

private:
    void paintFrame();
    void forgetPictures(); ///< for a change of what the glow and the disc overwrite in each frame

    // all guarded by mutex
    double breathRadius = 0;
    double waveRadius = 0;
    double waveLevel = 0;
    unsigned long sleepMs = 20;
    QImage image;              ///< the last frame; the gauge shares it
    QImage previous;           ///< the frame before; painted over when nobody shares it any more
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
