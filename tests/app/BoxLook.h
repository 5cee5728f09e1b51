#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <algorithm>

/// Closes the first box that opens, and keeps what it looked like.
class BoxLook : public QObject
{
public:
    BoxLook()
    {
        connect(&timer, &QTimer::timeout, this, &BoxLook::look);
        timer.start(5);
    }
    [[nodiscard]] bool seen() const { return box != nullptr; }

    QString title;
    QWidget *parent = nullptr;
    Qt::WindowFlags flags;
    QStringList buttons; ///< their captions, from the left
    bool manifestThere = false;

private:
    void look()
    {
        if (box || !(box = QApplication::activeModalWidget()))
            return;
        title = box->windowTitle();
        parent = box->parentWidget();
        flags = box->windowFlags();
        QList<QAbstractButton *> found = box->findChildren<QAbstractButton *>();
        std::sort(found.begin(), found.end(), [](auto *left, auto *right) { return left->x() < right->x(); });
        for (const QAbstractButton *button : qAsConst(found))
            buttons.append(button->text());
        manifestThere = QFile::exists(QStringLiteral("temp/update_info.xml"));
        box->close();
    }

    QWidget *box = nullptr;
    QTimer timer;
};
