// Linked into a copy of the real program: it writes a line of JSON for each window that it shows into the file that
// OVRYN_WINDOW_NOTES names. A test reads details there that can't be read exactly from the screen.

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QWidget>

namespace
{

class WindowNotes : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        const auto *window = qobject_cast<QWidget *>(receiver);
        if (event->type() == QEvent::Show && window && window->isWindow())
            note(*window);
        return false;
    }

private:
    static void note(const QWidget &window)
    {
        QJsonObject line{{"class", window.metaObject()->className()}, {"flags", int(window.windowFlags())}};
        if (const auto *label = window.findChild<QLabel *>(QStringLiteral("msgBoxInfoLabel"))) {
            line["text"] = label->text();
            line["family"] = label->font().family(); // follows the box's language
            QJsonArray buttons;
            for (const auto *button : window.findChildren<QAbstractButton *>())
                buttons << button->text();
            line["buttons"] = buttons;
        }
        QFile file(qEnvironmentVariable("OVRYN_WINDOW_NOTES"));
        if (file.open(QIODevice::Append))
            file.write(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
    }
};

void startNotes()
{
    qApp->installEventFilter(new WindowNotes(qApp));
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(startNotes)
