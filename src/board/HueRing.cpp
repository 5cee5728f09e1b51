#include "board/HueRing.h"

#include <QConicalGradient>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
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

constexpr int kChannels = 4;
constexpr int kBoxPasses = 3; // boxes after one another come close to a bell

/// The mean over a window of each pixel of a line; pixels beyond its ends are transparent.
void averageLine(quint32 *first, int count, int stride, int reach, std::vector<quint32> &copy)
{
    copy.resize(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        copy[static_cast<std::size_t>(i)] = first[i * stride];

    const quint32 window = quint32(2 * reach + 1);
    std::array<quint32, kChannels> sums{};
    const auto slide = [&](int index, bool in) {
        if (index < 0 || index >= count)
            return;
        const quint32 pixel = copy[static_cast<std::size_t>(index)];
        for (int channel = 0; channel < kChannels; ++channel) {
            const quint32 value = pixel >> (8 * channel) & 0xFF;
            quint32 &sum = sums[static_cast<std::size_t>(channel)];
            sum = in ? sum + value : sum - value;
        }
    };
    for (int i = 0; i < reach; ++i)
        slide(i, true);
    for (int i = 0; i < count; ++i) {
        slide(i + reach, true);
        quint32 pixel = 0;
        for (int channel = 0; channel < kChannels; ++channel)
            pixel |= (sums[static_cast<std::size_t>(channel)] + window / 2) / window << (8 * channel);
        first[i * stride] = pixel;
        slide(i - reach, false);
    }
}

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
    const int reach = int(radius / kBoxPasses);
    const int stride = image.bytesPerLine() / int(sizeof(quint32));
    auto *const pixels = reinterpret_cast<quint32 *>(image.bits());
    std::vector<quint32> copy;
    for (int pass = 0; pass < kBoxPasses; ++pass) {
        for (int y = 0; y < image.height(); ++y)
            averageLine(pixels + y * stride, image.width(), 1, reach, copy);
        for (int x = 0; x < image.width(); ++x)
            averageLine(pixels + x, image.height(), stride, reach, copy);
    }
}
