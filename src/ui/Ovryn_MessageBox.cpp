#include "ui/Ovryn_MessageBox.h"

#include "ui/PageFrame.h"
#include "ui/UiStyle.h"

#include <QCheckBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr QSize kSmallest(320, 160);
constexpr QSize kButtonSize(100, 30);
constexpr int kWidestBox = 480;
constexpr int kGrowthStep = 20;
constexpr int kTextPixels = 15;
constexpr int kTextWeight = 75;
constexpr int kCaptionPixels = 13;
constexpr int kEdgeMargin = 14; // keeps texts and buttons off the round corners
constexpr int kButtonGap = 24;

QString inLanguage(LanguageType language, const char *chinese, const char *english)
{
    return QString::fromUtf8(language == kLanguageChinese ? chinese : english);
}

Qt::WindowFlags completed(Qt::WindowFlags flags, const QWidget *parent)
{
    flags |= Qt::FramelessWindowHint;
    if (!parent)
        flags |= Qt::WindowStaysOnTopHint;
    return flags;
}

} // namespace

// The base adds Qt::Dialog to the window flags, without which a box with a parent would be no window.
Ovryn_MessageBox::Ovryn_MessageBox(int boxFlags, QString title, QString text, int language, QWidget *parent,
                                   Qt::WindowFlags windowFlags)
    : QDialog(parent, completed(windowFlags, parent)), flags(boxFlags)
{
    setStyleSheet(UiStyle::messageBox());
    setWindowTitle(title);
    setWindowOpacity(1.0);
    setAttribute(Qt::WA_TranslucentBackground);
    build(text, language);
    setMinimumSize(kSmallest);
    growToText();

    connect(yesButton, SIGNAL(released()), this, SLOT(onBtnYesClicked()));
    if (noButton)
        connect(noButton, SIGNAL(released()), this, SLOT(onBtnNoClicked()));
}

void Ovryn_MessageBox::build(const QString &text, LanguageType language)
{
    const bool twoButtons = flags & TwoButtons;
    const QString family = PageFrame::fontFamily(language);

    QFont captionFont(family);
    captionFont.setPixelSize(kCaptionPixels);
    const auto makeButton = [&](const char *name, const QString &caption) {
        auto *button = new QPushButton(caption, this);
        button->setObjectName(QString::fromLatin1(name));
        button->setFixedSize(kButtonSize);
        button->setFocusPolicy(Qt::NoFocus);
        button->setFont(captionFont);
        return button;
    };

    infoLabel = new QLabel(text, this);
    infoLabel->setObjectName(QStringLiteral("msgBoxInfoLabel"));
    infoLabel->setTextFormat(Qt::PlainText);
    infoLabel->setWordWrap(true);
    infoLabel->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    QFont textFont(family);
    textFont.setPixelSize(kTextPixels);
    textFont.setWeight(kTextWeight);
    infoLabel->setFont(textFont);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(kEdgeMargin, kEdgeMargin, kEdgeMargin, kEdgeMargin);
    column->setSpacing(0);

    auto *textRow = new QHBoxLayout;
    textRow->setContentsMargins(10, 5, 0, 10);
    textRow->addWidget(infoLabel);
    column->addLayout(textRow, 1);

    if (flags & DontShowAgain) {
        dontShowAgainBox = new QCheckBox(inLanguage(language, "不再提示。", "Don't show again."), this);
        dontShowAgainBox->setObjectName(QStringLiteral("msgBoxCheckBox"));
        dontShowAgainBox->setFont(captionFont);
        auto *checkRow = new QHBoxLayout;
        checkRow->setContentsMargins(10, 0, 0, 0);
        checkRow->addWidget(dontShowAgainBox);
        column->addLayout(checkRow);
        column->addSpacing(kEdgeMargin);
    }

    auto *buttonRow = new QHBoxLayout;
    buttonRow->setSpacing(kButtonGap);
    buttonRow->addStretch();
    yesButton = makeButton("msgBoxYesBtn",
                           twoButtons ? inLanguage(language, "是", "Yes") : inLanguage(language, "确定", "Confirm"));
    buttonRow->addWidget(yesButton);
    if (twoButtons) {
        noButton = makeButton("msgBoxNoBtn", inLanguage(language, "否", "No"));
        buttonRow->addWidget(noButton);
    }
    buttonRow->addStretch();
    column->addLayout(buttonRow);
}

/// Widens the box until the text fits at the usual shape, twice as wide as high; past the widest it gets higher.
void Ovryn_MessageBox::growToText()
{
    ensurePolished();
    QSize size = kSmallest;
    int needed = layout()->totalHeightForWidth(size.width());
    while (needed > size.width() / 2 && size.width() < kWidestBox) {
        size.rwidth() += kGrowthStep;
        needed = layout()->totalHeightForWidth(size.width());
    }
    resize(size.width(), std::max(size.width() / 2, needed));
}

void Ovryn_MessageBox::setYesText(QString text)
{
    yesButton->setText(text);
}

void Ovryn_MessageBox::onBtnYesClicked()
{
    const bool ticked = dontShowAgainBox && dontShowAgainBox->isChecked();
    if (flags & TwoButtons)
        done(ticked ? YesDontShowAgain : Yes);
    else
        done(ticked ? ConfirmDontShowAgain : Confirm);
}

void Ovryn_MessageBox::onBtnNoClicked()
{
    done(No);
}

void Ovryn_MessageBox::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    const QRect around =
        parentWidget() ? parentWidget()->window()->geometry() : QGuiApplication::primaryScreen()->geometry();
    move(around.x() + (around.width() - width()) / 2 + offsetX,
         around.y() + (around.height() - height()) / 2 + offsetY);
}

void Ovryn_MessageBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    UiStyle::paintDialogGlass(painter, size());
}
