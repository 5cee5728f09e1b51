#include "ui/Ovryn_UpdateLogWidget.h"

#include "ui/UiStyle.h"

#include <QApplication>
#include <QFile>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QTextEdit>
#include <QTextStream>
#include <QVBoxLayout>

namespace
{

constexpr QSize kDialogSize(460, 340);
constexpr int kEdgeMargin = 18;

} // namespace

Ovryn_UpdateLogWidget::Ovryn_UpdateLogWidget(int language, QWidget *parent) : QDialog(parent, Qt::FramelessWindowHint)
{
    setStyleSheet(UiStyle::updateLog());
    setWindowOpacity(1.0);
    setAttribute(Qt::WA_TranslucentBackground);
    build();
    resize(kDialogSize);
    if (parent) // over its middle: a dialog would otherwise leave room for a window frame, which this one does not
                // have
        move(parent->window()->geometry().center() - rect().center());
    pushButton->setText(language == kLanguageEnglish ? QStringLiteral("Close") : QStringLiteral("关闭"));
    loadText(language);
    connect(pushButton, SIGNAL(released()), this, SLOT(onBtnCloseClick()));
}

void Ovryn_UpdateLogWidget::build()
{
    verticalLayoutWidget = new QWidget(this);
    verticalLayoutWidget->setObjectName(QStringLiteral("verticalLayoutWidget"));
    auto *verticalLayout = new QVBoxLayout(verticalLayoutWidget);
    verticalLayout->setObjectName(QStringLiteral("verticalLayout"));
    verticalLayout->setContentsMargins(0, 0, 0, 0);
    verticalLayout->setSpacing(12);

    textEdit = new QTextEdit(verticalLayoutWidget);
    textEdit->setObjectName(QStringLiteral("textEdit"));
    textEdit->setReadOnly(true);
    verticalLayout->addWidget(textEdit);

    auto *horizontalLayout = new QHBoxLayout;
    horizontalLayout->setObjectName(QStringLiteral("horizontalLayout"));
    pushButton = new QPushButton(verticalLayoutWidget);
    pushButton->setObjectName(QStringLiteral("pushButton"));
    horizontalLayout->addStretch();
    horizontalLayout->addWidget(pushButton);
    horizontalLayout->addStretch();
    verticalLayout->addLayout(horizontalLayout);
}

// Here only number 1 is English: for any other number this dialog is Chinese, although the rest of the interface is
// English then.
void Ovryn_UpdateLogWidget::loadText(LanguageType language)
{
    QFile file(language == kLanguageEnglish ? QStringLiteral("updateLog/english.txt")
                                            : QStringLiteral("updateLog/chinese.txt"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return;
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    textEdit->setPlainText(stream.readAll());
}

void Ovryn_UpdateLogWidget::onBtnCloseClick()
{
    close();
}

void Ovryn_UpdateLogWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    UiStyle::paintDialogGlass(painter, size());
}

void Ovryn_UpdateLogWidget::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    verticalLayoutWidget->setGeometry(rect().adjusted(kEdgeMargin, kEdgeMargin, -kEdgeMargin, -kEdgeMargin));
}

void Ovryn_UpdateLogWidget::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    dragOffset = event->globalPos() - pos();
    pressPosition = event->globalPos();
    dragging = true;
    moving = false;
}

void Ovryn_UpdateLogWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (!dragging || !(event->buttons() & Qt::LeftButton))
        return;
    if ((event->globalPos() - pressPosition).manhattanLength() > QApplication::startDragDistance())
        moving = true;
    if (moving)
        move(event->globalPos() - dragOffset);
}

void Ovryn_UpdateLogWidget::mouseReleaseEvent(QMouseEvent *)
{
    dragging = false;
}
