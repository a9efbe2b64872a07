// The least that a Qt Core program is: an application object and its event loop. It ends with its input.

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>

#include <unistd.h>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    return QCoreApplication::exec();
}
