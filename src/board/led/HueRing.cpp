#include "board/led/HueRing.h"

#include <QConicalGradient>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <vector>

namespace
{

constexpr double kPi = 3.141592653589793;
constexpr double kDegreesPerRadian = 180 / kPi;
constexpr int kDegrees = 360;
constexpr int kSectors = 6; // from one pure colour of the circle to the next

QConicalGradient hueGradient(QPointF center)
{
    QConicalGradient gradient(center, 0);
    for (int i = 0; i <= kSectors; ++i)
        gradient.setColorAt(double(i) / kSectors, QColor::fromHsv(kDegrees / kSectors * i % kDegrees, 255, 255, 255));
    return gradient;
}

constexpr int kBoxPasses = 3; // boxes after one another come close to a bell
constexpr int kMaxComponent = 255;

/// The four components of a pixel in 16 bits each, so that one addition adds them all: blue, red, green, alpha.
quint64 spread(quint32 pixel)
{
    return (quint64(pixel & 0xFF00FF00) << 24) | (pixel & 0x00FF00FF);
}

/// The mean over a window of each pixel of a line; pixels beyond its ends are transparent.
class WindowMean
{
public:
    explicit WindowMean(int windowReach) : reach(windowReach)
    {
        const int window = 2 * reach + 1;
        Q_ASSERT(window * kMaxComponent <= 0xFFFF);
        quotients.resize(std::size_t(window) * kMaxComponent + 1);
        for (std::size_t sum = 0; sum < quotients.size(); ++sum)
            quotients[sum] = quint8((sum + std::size_t(reach)) / std::size_t(window)); // rounded
    }

    void apply(quint32 *first, int count, int stride)
    {
        const auto margin = std::size_t(reach);
        line.assign(std::size_t(count) + 2 * margin, 0);
        for (int i = 0; i < count; ++i)
            line[std::size_t(i) + margin] = spread(first[i * stride]);

        quint64 sums = 0;
        for (std::size_t i = 0; i < 2 * margin; ++i)
            sums += line[i];
        for (int i = 0; i < count; ++i) {
            sums += line[std::size_t(i) + 2 * margin];
            first[i * stride] = mean(sums);
            sums -= line[std::size_t(i)];
        }
    }

private:
    [[nodiscard]] quint32 mean(quint64 sums) const
    {
        const auto component = [&](int lane) {
            return quint32(quotients[sums >> (16 * lane) & 0xFFFF]);
        };
        return component(3) << 24 | component(1) << 16 | component(2) << 8 | component(0);
    }

    int reach;                     // pixels on either side
    std::vector<quint8> quotients; // by sum
    std::vector<quint64> line;
};

} // namespace

HueRing HueRing::forSize(QSize box)
{
    HueRing ring;
    ring.box = box;
    ring.outerRadius = box.width() / 2 / 5 * 3;
    ring.innerRadius = ring.outerRadius * 3 * 0.25;
    return ring;
}

bool HueRing::contains(QPoint point) const
{
    const QPoint offset = point - center();
    const double distance = std::hypot(offset.x(), offset.y());
    return distance >= innerRadius && distance <= outerRadius;
}

double HueRing::hueAt(QPoint point) const
{
    const QPoint offset = point - center();
    return 180 - std::atan2(-offset.y(), offset.x()) * kDegreesPerRadian;
}

QPointF HueRing::pointAt(double hue, double radius) const
{
    const double angle = (180 - hue) / kDegreesPerRadian;
    return QPointF(center()) + radius * QPointF(std::cos(angle), -std::sin(angle));
}

QRect HueRing::hole() const
{
    const int halfWidth = int(innerRadius * std::cos(kHoleAngle));
    const int halfHeight = int(innerRadius * std::sin(kHoleAngle));
    return {center() - QPoint(halfWidth, halfHeight), QSize(2 * halfWidth, 2 * halfHeight)};
}

QImage HueRing::image(QPoint *topLeft) const
{
    // Cut to the ring and its soft rim, the same on both sides, so that the centre stays where it is.
    const double reach = outerRadius + kBlurRadius;
    *topLeft = QPoint(std::max(0, int(std::floor(box.width() / 2.0 - reach))),
                      std::max(0, int(std::floor(box.height() / 2.0 - reach))));
    QImage image(box - 2 * QSize(topLeft->x(), topLeft->y()), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(Qt::transparent);

    const QPointF middle(image.width() / 2.0, image.height() / 2.0);
    QPainterPath path;
    path.addEllipse(middle, outerRadius, outerRadius);
    path.addEllipse(middle, innerRadius, innerRadius); // the odd-even rule makes it the hole
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, hueGradient(middle));
    painter.end();

    image = image.mirrored(true, false); // the gradient begins at the right and turns the other way
    softenImage(image, kBlurRadius);
    return image;
}

QColor HueRing::pureColor(double hue)
{
    return QColor::fromHsvF(hue >= kDegrees ? 0 : hue / kDegrees, 1, 1).toRgb();
}

void softenImage(QImage &image, double radius)
{
    Q_ASSERT(image.format() == QImage::Format_ARGB32_Premultiplied);
    const int stride = image.bytesPerLine() / int(sizeof(quint32));
    auto *const pixels = reinterpret_cast<quint32 *>(image.bits());
    WindowMean window(int(radius / kBoxPasses));
    for (int pass = 0; pass < kBoxPasses; ++pass) {
        for (int y = 0; y < image.height(); ++y)
            window.apply(pixels + y * stride, image.width(), 1);
        for (int x = 0; x < image.width(); ++x)
            window.apply(pixels + x, image.height(), stride);
    }
}
