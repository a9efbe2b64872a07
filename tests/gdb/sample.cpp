#include <linkhealth_p.h>
#include <sendqueue.h>
#include <velcanbusprotocol.h>

#include <QtCore/QCoreApplication>

// What test_printers.py looks at, where `stopHere` is called.

using namespace canbus;

namespace {

QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

void fill(FrameDataFormat &frame)
{
    frame.id = bytes("52");
    frame.TP = bytes("03");
    frame.MOD = bytes("01");
    frame.DATA = bytes("00019f");
    frame.CS = 0xcf;
}

void countSome(LinkHealthPrivate &figures)
{
    figures.receivedBytes.add(300);
    figures.countReceivedFrame(0x03, 15);
    figures.countReceivedFrame(0x03, 15);
    figures.countWritten(bytes("9f02519300130100d09f03"), 1);
}

void stopHere()
{
    asm volatile("");
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    FrameDataFormat frame, noFrame;
    fill(frame);
    SendQueue emptyQueue, queue;
    LinkEffects effects;
    queue.enqueue(bytes("9f02519300130100d09f03"), effects);
    queue.enqueue(bytes("9f029f9f93000401009a9f03"), effects);
    const LinkEffect write = effects.front(), start = effects.at(1);
    const LinkEffect ended {LinkEffect::Ended, bytes("9f0223"), {}, 3, LinkHealth::Fate::GivenUp, 900000};
    const LinkEffect down {LinkEffect::LinkDown};
    const QByteArray payload = bytes("00ff41"), nothing, longOne(70, '\x9f');
    LinkHealthPrivate figures;
    countSome(figures);
    VelCanBusProtocol protocol;
    protocol.onRequestConnect();
    const LinkHealth *health = protocol.linkHealth();
    const LinkFigures report = figures.figures();
    stopHere();
    return queue.cachedFrames() + emptyQueue.cachedFrames() + payload.size() + nothing.size() + longOne.size()
            + int(report.receivedBytes) + write.transmissions + start.transmissions + ended.transmissions
            + down.transmissions + int(health->figures().receivedBytes) + noFrame.CS
        ? 0
        : 1;
}
