#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QWidget>

class QAbstractButton;

/// Answers the modal boxes that open while it lives. A test makes it beforehand: the first box is answered by
/// a click on the button of the first name, the second by the second name, and so on.
class ModalAnswer : public QObject
{
    Q_OBJECT

public:
    /// `tickedBox` names a check box that is clicked before the button, in every box.
    explicit ModalAnswer(const QStringList &buttonNames, const QString &tickedBox = QString());

    [[nodiscard]] QStringList texts() const { return shownTexts; } ///< of "msgBoxInfoLabel", one for each box

    [[nodiscard]] QStringList captions() const { return clickedCaptions; } ///< of the buttons clicked as answers

    /// What kept a box from its answer: it was one too many, or lacked the named control. Such a box is rejected,
    /// so that the test goes on; a test compares this list with an empty one.
    [[nodiscard]] QStringList problems() const { return found; }

private slots:
    void look();

private:
    void answer(QWidget *box);
    QAbstractButton *find(QWidget *box, const QString &name);

    QStringList names;
    QString tick;
    QStringList shownTexts;
    QStringList clickedCaptions;
    QStringList found;
    QPointer<QWidget> answered; ///< the last box, while it is still closing
    QTimer timer;
};
