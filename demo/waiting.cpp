#include "waiting.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

namespace canbus::headunit {

bool letTimePass(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    return loop.exec() == 0;
}

} // namespace canbus::headunit
