#include "support/ModalAnswer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QTest>

namespace
{

constexpr int kLookIntervalMs = 2;

void click(QAbstractButton *button)
{
    // A check box takes clicks on its indicator and caption only, which need not reach its middle.
    const QPoint nearLeftEdge(qMin(10, button->width() / 2), button->height() / 2);
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, nearLeftEdge);
}

} // namespace

ModalAnswer::ModalAnswer(const QStringList &buttonNames, const QString &tickedBox)
    : names(buttonNames), tick(tickedBox)
{
    connect(&timer, SIGNAL(timeout()), this, SLOT(look()));
    timer.start(kLookIntervalMs);
}

void ModalAnswer::look()
{
    QWidget *box = QApplication::activeModalWidget();
    if (!box || !box->isVisible() || box == answered)
        return;
    answered = box;
    answer(box);
}

void ModalAnswer::answer(QWidget *box)
{
    const auto *label = box->findChild<QLabel *>(QStringLiteral("msgBoxInfoLabel"));
    shownTexts.append(label ? label->text() : QString());

    QAbstractButton *ticked = tick.isEmpty() ? nullptr : find(box, tick);
    QAbstractButton *button = nullptr;
    if (names.isEmpty())
        found.append(QStringLiteral("one box too many: ") + shownTexts.last());
    else
        button = find(box, names.takeFirst());

    if (button && (ticked || tick.isEmpty())) {
        if (ticked)
            click(ticked);
        clickedCaptions.append(button->text());
        click(button);
    } else if (auto *dialog = qobject_cast<QDialog *>(box)) {
        dialog->reject();
    } else {
        box->close();
    }
}

QAbstractButton *ModalAnswer::find(QWidget *box, const QString &name)
{
    auto *button = box->findChild<QAbstractButton *>(name);
    if (!button)
        found.append(QStringLiteral("no control named ") + name);
    return button;
}
