#include "board/led/Ovryn_rgbBox.h"

#include "ui/ModifySpinBox.h"

#include <QLabel>

namespace
{

constexpr int kMaxComponent = 255;
constexpr int kCaptionShare = 6; // of the width, of which a number takes two
constexpr int kGap = 6;          // pixels between the numbers
constexpr int kCaptionPixels = 16;
const char *const kSpinNames[] = {"spinRed", "spinGreen", "spinBlue"};

} // namespace

Ovryn_rgbBox::Ovryn_rgbBox(QWidget *parent) : QWidget(parent), caption(new QLabel(QStringLiteral("RGB"), this))
{
    setStyleSheet(QStringLiteral("ModifySpinBox{font-size:13px;}"));
    QFont font(QStringLiteral("Tessmar_KuHei"));
    font.setPixelSize(kCaptionPixels);
    caption->setFont(font);
    for (std::size_t i = 0; i < spins.size(); ++i) {
        spins[i] = new ModifySpinBox(this);
        spins[i]->setObjectName(QLatin1String(kSpinNames[i]));
        spins[i]->setRange(0, kMaxComponent);
        spins[i]->setButtonSymbols(QAbstractSpinBox::NoButtons); // a step would count only as the edit ends
        spins[i]->setAlignment(Qt::AlignCenter);
        connect(spins[i], SIGNAL(editingFinished()), this, SLOT(rgbValueChanged()));
    }
}

void Ovryn_rgbBox::setColor(QColor color)
{
    const QRgb rgb = color.rgb();
    spins[0]->setValue(qRed(rgb));
    spins[1]->setValue(qGreen(rgb));
    spins[2]->setValue(qBlue(rgb));
}

void Ovryn_rgbBox::rgbValueChanged()
{
    emit colorChanged(QColor(spins[0]->value(), spins[1]->value(), spins[2]->value()));
}

void Ovryn_rgbBox::resizeEvent(QResizeEvent *)
{
    const int captionWidth = width() / kCaptionShare + kGap;
    caption->setGeometry(0, 0, captionWidth, height());
    const int step = (width() - captionWidth + kGap) / int(spins.size());
    for (std::size_t i = 0; i < spins.size(); ++i)
        spins[i]->setGeometry(captionWidth + int(i) * step, 0, step - kGap, height());
}
