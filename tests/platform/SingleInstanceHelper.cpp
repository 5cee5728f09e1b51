#include "platform/QtSingleApplication.h"

#include <cstdio>

/// \file
/// One start of a program that runs once. Arguments: the identifier, then
///   stay               be the first and print each message until it is "quit"; a second one ends at once
///   send TEXT MILLIS   send the text to the first
/// Prints a line for each thing that happens.

namespace
{

void say(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

class Speaker : public QObject
{
    Q_OBJECT

public slots:
    void receive(const QString &message)
    {
        say("message " + message);
        if (message == "quit")
            QCoreApplication::quit();
    }
};

} // namespace

int main(int argc, char **argv)
{
    if (argc < 3)
        return 2;
    const QString id = QString::fromLocal8Bit(argv[1]);
    QtSingleApplication application(id, argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const bool running = application.isRunning();
    if (arguments.at(2) == "send") {
        say(application.sendMessage(arguments.value(3), arguments.value(4).toInt()) ? "sent" : "not sent");
        return 0;
    }
    say(running ? "second" : "first");
    if (running)
        return 0;
    Speaker speaker;
    QObject::connect(&application, SIGNAL(messageReceived(QString)), &speaker, SLOT(receive(QString)));
    return QCoreApplication::exec();
}

#include "SingleInstanceHelper.moc"
