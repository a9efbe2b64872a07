#pragma once

#include "canbusplayer.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtTest/QSignalSpy>

/// Records the frames for the box that the facade emits while it exists. For commands from the test's own
/// thread.
class SentFrames {
public:
    /// What was emitted since the last call.
    QList<QByteArray> take()
    {
        QList<QByteArray> frames;
        while (!m_spy.isEmpty())
            frames += m_spy.takeFirst().at(0).toByteArray();
        return frames;
    }

private:
    QSignalSpy m_spy {canbus::CanBusPlayer::instance(), &canbus::CanBusPlayer::sendCmdData};
};
