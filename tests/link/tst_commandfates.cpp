#include "simulatedheadunit.h"

#include <hexbytes.h>

#include <QtTest/QTest>

#include <random>
#include <utility>

using namespace canbus;

namespace {

constexpr int kTickMs = 10;

/// A command whose id and number stand in it. Its check byte is of no interest here.
QByteArray command(quint8 id, int number)
{
    QByteArray frame = bytes("9f 02 00 93 00 00 00 00 9f 03");
    frame[2] = char(id);
    frame[5] = char(number / 100);
    frame[6] = char(number % 100);
    return frame;
}

bool isCommand(const QByteArray &frame)
{
    return frame.at(3) == '\x93';
}

/// A head unit under random commands and random answers, and an account of what it has told so far against
/// what it has written.
class Account {
public:
    explicit Account(quint32 seed)
        : m_random(seed)
    {
    }

    void step(bool answersAll)
    {
        m_nowMs += kTickMs;
        m_answer = {};
        if (answersAll || happens(0.1))
            answer(answersAll || happens(0.7) ? m_underWay : command(quint8(random(6)), 0));
        m_headUnit.advance(m_nowMs);
        book();
    }

    void sendSomething()
    {
        const QByteArray frame = command(quint8(1 + random(5)), random(4));
        if (m_headUnit.send(frame))
            m_made += frame;
        book();
    }

    bool happens(double chance) { return std::bernoulli_distribution(chance)(m_random); }
    int cachedFrames() const { return m_headUnit.cachedFrames(); }
    QList<QByteArray> made() const { return m_made; }
    QList<QByteArray> ended() const { return m_ended; }
    QList<LinkHealth::Fate> fates() const { return m_fates; }
    QString firstMistake() const { return m_firstMistake; }

private:
    int random(int below) { return std::uniform_int_distribution<int>(0, below - 1)(m_random); }

    void answer(const QByteArray &frame)
    {
        if (frame.isEmpty())
            return;
        m_answer = {happens(0.3) ? LinkHealth::Fate::Refused : LinkHealth::Fate::Acknowledged,
                    frame.mid(2, 1)};
        const QByteArray kind = bytes(m_answer.first == LinkHealth::Fate::Refused ? "9f 15" : "9f 06");
        m_headUnit.receive(kind + m_answer.second + m_answer.second + bytes("9f 03"));
    }

    void book()
    {
        for (const LinkEffect &effect : std::exchange(m_headUnit.told, {})) {
            if (effect.kind == LinkEffect::Write)
                bookWrite(effect);
            else
                bookEnd(effect);
        }
    }

    void bookWrite(const LinkEffect &effect)
    {
        if (m_sentAtMs.isEmpty())
            m_underWay = effect.frame;
        m_sentAtMs += m_nowMs;
        expect(effect.frame == m_underWay, "another frame was sent before the last one had ended");
        expect(effect.transmissions == m_sentAtMs.size(), "a write tells a wrong number of transmissions");
    }

    void bookEnd(const LinkEffect &effect)
    {
        m_fates += effect.fate;
        if (effect.fate == LinkHealth::Fate::NotAccepted) {
            expect(effect.transmissions == 0 && effect.microseconds == 0, "a frame not let in was sent");
            return;
        }
        const qint64 tookMs = m_sentAtMs.isEmpty() ? 0 : m_nowMs - m_sentAtMs.first();
        expect(effect.transmissions == m_sentAtMs.size(), "an end tells a wrong number of transmissions");
        expect(effect.microseconds == tookMs * 1000, "an end tells a wrong time");
        expect(m_sentAtMs.isEmpty() || effect.frame == m_underWay, "another frame has ended than was sent");
        if (effect.fate == LinkHealth::Fate::GivenUp)
            expect(effect.transmissions >= 3, "a frame was given up early");
        else
            expect(m_answer.first == effect.fate && m_answer.second == effect.frame.mid(2, 1),
                   "a fate is not what the box has answered");
        if (isCommand(effect.frame))
            m_ended += effect.frame;
        m_sentAtMs.clear();
    }

    void expect(bool holds, const char *mistake)
    {
        if (!holds && m_firstMistake.isEmpty())
            m_firstMistake = QStringLiteral("at %1 ms: %2").arg(m_nowMs).arg(QLatin1String(mistake));
    }

    SimulatedHeadUnit m_headUnit;
    std::mt19937 m_random;
    qint64 m_nowMs = 0;
    QByteArray m_underWay;
    QList<qint64> m_sentAtMs;
    std::pair<LinkHealth::Fate, QByteArray> m_answer;
    QList<QByteArray> m_made;
    QList<QByteArray> m_ended;
    QList<LinkHealth::Fate> m_fates;
    QString m_firstMistake;
};

} // namespace

class CommandFates : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachCommandEndsOnceAndAsTheWireTells_data();
    void eachCommandEndsOnceAndAsTheWireTells();
};

void CommandFates::eachCommandEndsOnceAndAsTheWireTells_data()
{
    QTest::addColumn<double>("commandsATick");
    QTest::addColumn<bool>("overflows");
    QTest::newRow("a command now and then") << 0.01 << false;
    QTest::newRow("more commands than are answered") << 0.4 << true;
}

void CommandFates::eachCommandEndsOnceAndAsTheWireTells()
{
    QFETCH(double, commandsATick);
    QFETCH(bool, overflows);
    for (quint32 seed = 1; seed <= 20; ++seed) {
        Account account(seed);
        for (int tick = 0; tick < 6000; ++tick) {
            if (account.happens(commandsATick))
                account.sendSomething();
            account.step(false);
        }
        for (int tick = 0; tick < 6000 && account.cachedFrames() > 0; ++tick)
            account.step(true);
        const QByteArray name = "seed " + QByteArray::number(seed);
        QVERIFY2(account.firstMistake().isEmpty(),
                 (name + ' ' + account.firstMistake().toUtf8()).constData());
        QVERIFY2(account.ended() == account.made(), name.constData());
        QVERIFY2(account.fates().contains(LinkHealth::Fate::Acknowledged), name.constData());
        QVERIFY2(account.fates().contains(LinkHealth::Fate::Refused), name.constData());
        QCOMPARE(account.fates().contains(LinkHealth::Fate::NotAccepted), overflows);
    }
}

QTEST_GUILESS_MAIN(CommandFates)
#include "tst_commandfates.moc"
