#include "linefaults.h"

#include "link/frameformat.h"

namespace {

constexpr double kIsOn = 0.3;

/// The shares of faults of each byte: more would let nothing through for the whole run.
double byteShare(Chance &chance)
{
    return chance.happens(kIsOn) ? chance.share(0.0005, 0.05) : 0;
}

double answerShare(Chance &chance)
{
    return chance.happens(kIsOn) ? chance.share(0.01, 1) : 0;
}

void drawAnswers(boxsim::Faults &faults, Chance &chance)
{
    faults.dropAnswers = answerShare(chance);
    faults.nackAnswers = answerShare(chance);
    faults.wrongIds = answerShare(chance);
    faults.dropFirstAnswers = chance.happens(kIsOn) ? chance.between(1, 6) : 0;
    faults.notReadyReplies = chance.happens(kIsOn) ? chance.between(1, 5) : 0;
    faults.silence = chance.happens(0.2);
}

void drawBytes(boxsim::Faults &faults, Chance &chance)
{
    faults.wrongChecks = answerShare(chance);
    faults.flipBytes = byteShare(chance);
    faults.loseBytes = byteShare(chance);
    faults.doubleBytes = byteShare(chance);
    faults.insertBytes = byteShare(chance);
}

void drawCuts(boxsim::Faults &faults, Chance &chance)
{
    faults.split = chance.happens(0.2);
    faults.splitRound = chance.happens(kIsOn);
    faults.splitAt = chance.happens(kIsOn) ? chance.between(1, 20) : 0;
    faults.mergeMs = chance.happens(kIsOn) ? int(chance.share(5, 2000)) : 0;
    // What waits behind each other waits long.
    faults.pauseMs = chance.happens(kIsOn) ? int(chance.share(1, faults.split ? 3 : 60)) : 0;
}

QByteArray controlBytes(Chance &chance)
{
    static const QByteArray kBytes = QByteArray::fromHex("9f9f9f9f02030615001121233100014041505f");
    QByteArray block;
    for (int left = int(chance.share(1, chance.happens(0.1) ? 3000 : 100)); left > 0; --left)
        block += chance.happens(0.1) ? char(chance.byte()) : kBytes.at(chance.below(kBytes.size()));
    return block;
}

QByteArray strayAnswer(Chance &chance)
{
    static const QByteArray kIds = QByteArray::fromHex("00212223404142505158606870789f");
    const QByteArray id =
        chance.happens(0.2) ? QByteArray(1, char(chance.byte())) : kIds.mid(chance.below(kIds.size()), 1);
    return canbus::frame::buildAnswer(chance.happens(0.7) ? canbus::frame::kAck : canbus::frame::kNack, id);
}

QByteArray strayFrame(Chance &chance)
{
    static const QByteArray kCategories = QByteArray::fromHex("010101020303040405050606071108");
    QByteArray payload;
    for (int left = int(chance.share(1, 60)) - 1; left > 0; --left)
        payload += chance.happens(0.1) ? '\x9f' : char(chance.byte());
    const quint8 tp = quint8(kCategories.at(chance.below(kCategories.size())));
    if (tp == 1)
        payload = QByteArray(1, '\0') + char(chance.below(3));
    return canbus::frame::build(chance.byte(), tp, quint8(chance.below(7)), payload);
}

} // namespace

boxsim::Faults drawnFaults(const FaultKinds &kinds, Chance &chance)
{
    boxsim::Faults faults;
    if (kinds.answers)
        drawAnswers(faults, chance);
    if (kinds.bytes)
        drawBytes(faults, chance);
    if (kinds.cuts)
        drawCuts(faults, chance);
    if (kinds.noise && chance.happens(0.5))
        faults.noise = chance.share(1, 4000);
    return faults;
}

QVector<boxsim::Assignment> faultAssignments(const boxsim::Faults &faults)
{
    const QVector<QPair<QString, QVariant>> values {
        {"dropFirstAnswers", faults.dropFirstAnswers},
        {"dropAnswers", faults.dropAnswers},
        {"nackAnswers", faults.nackAnswers},
        {"wrongIds", faults.wrongIds},
        {"wrongChecks", faults.wrongChecks},
        {"flipBytes", faults.flipBytes},
        {"loseBytes", faults.loseBytes},
        {"doubleBytes", faults.doubleBytes},
        {"insertBytes", faults.insertBytes},
        {"noise", faults.noise},
        {"split", faults.split},
        {"splitRound", faults.splitRound},
        {"splitAt", faults.splitAt},
        {"mergeMs", faults.mergeMs},
        {"pauseMs", faults.pauseMs},
        {"silence", faults.silence},
        {"notReadyReplies", faults.notReadyReplies},
    };
    QVector<boxsim::Assignment> assignments;
    for (const auto &value : values) {
        boxsim::Assignment assignment;
        QString error;
        if (!boxsim::assign(QStringLiteral("fault.") + value.first, value.second, &assignment, &error))
            qFatal("%s", qPrintable(error));
        assignments += assignment;
    }
    return assignments;
}

QByteArray drawnGarbage(Chance &chance)
{
    QByteArray block;
    switch (chance.below(3)) {
    case 0:
        block = controlBytes(chance);
        break;
    case 1:
        block = strayAnswer(chance);
        break;
    default:
        block = strayFrame(chance);
        break;
    }
    return chance.happens(0.2) ? block.left(1 + chance.below(block.size())) : block;
}
