#include <contentof.h>
#include <hexbytes.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <numeric>

/// A frame as docs/protocol.md writes it.
struct WrittenFrame {
    int line = 0;
    QByteArray wire;
    QByteArray explained; ///< the first cells of the table that follows it, joined
};

/// What a document says in its fenced blocks and between them. A frame has six bytes at least.
struct Document {
    QVector<WrittenFrame> worked;  ///< in ```frame blocks
    QVector<WrittenFrame> broken;  ///< in ```broken blocks
    QVector<WrittenFrame> passing; ///< anywhere else
};

/// The frames of docs/protocol.md are right: people build their box after them.
///
/// The reading of frames is this test's own.
class ProtocolDocumentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void tellsARightFrameFromAWrongOne_data();
    void tellsARightFrameFromAWrongOne();
    void worksThroughEnoughFrames();
    void writesItsFramesRight_data();
    void writesItsFramesRight();
    void explainsEachByteOfAFrame_data();
    void explainsEachByteOfAFrame();
    void callsNoRightFrameBroken_data();
    void callsNoRightFrameBroken();

private:
    Document m_document;
};

namespace {

quint8 at(const QByteArray &bytes, int index)
{
    return quint8(bytes.at(index));
}

/// Takes doubled escapes away. @return false where a 9F stands alone
bool unescape(QByteArray &content)
{
    QByteArray plain;
    for (int i = 0; i < content.size(); ++i) {
        plain.append(content.at(i));
        if (at(content, i) != 0x9f)
            continue;
        if (++i == content.size() || at(content, i) != 0x9f)
            return false;
    }
    content = plain;
    return true;
}

bool isDataContent(const QByteArray &content)
{
    const quint8 sum = std::accumulate(content.begin(), content.end(), quint8(0),
                                       [](quint8 a, char b) { return quint8(a ^ quint8(b)); });
    return content.size() >= 4 && sum == 0; // the check byte takes the sum of the others to 0
}

bool isAnswerContent(const QByteArray &content)
{
    return content.size() == 2 && content.at(0) == content.at(1);
}

/// What is wrong with a frame, as the head unit reads it; empty for a right one.
QByteArray fault(const QByteArray &wire)
{
    const int size = wire.size();
    if (size < 6 || at(wire, 0) != 0x9f)
        return "no opening mark";
    const quint8 mark = at(wire, 1);
    if (mark != 0x02 && mark != 0x06 && mark != 0x15)
        return "no opening mark";
    const int end = wire.indexOf(bytes("9f 03"), 2);
    if (end == -1)
        return "no closing mark";
    if (end != size - 2)
        return "bytes behind the first 9F 03";
    QByteArray content = wire.mid(2, size - 4);
    if (!unescape(content))
        return "a 9F that is not doubled";
    const bool holds = mark == 0x02 ? isDataContent(content) : isAnswerContent(content);
    return holds ? QByteArray() : QByteArray("wrong check byte or length");
}

/// Runs of six bytes and more that begin or end like a frame.
QVector<QByteArray> framesIn(const QString &line)
{
    static const QRegularExpression run(QStringLiteral("\\b[0-9A-F]{2}(?: [0-9A-F]{2}){5,}\\b"));
    QVector<QByteArray> frames;
    for (auto match = run.globalMatch(line); match.hasNext();) {
        const QByteArray wire = bytes(match.next().captured().toLatin1().constData());
        if (at(wire, 0) == 0x9f || wire.endsWith(bytes("9f 03")))
            frames.append(wire);
    }
    return frames;
}

/// The bytes in a table row's first cell; none where it holds something else.
QByteArray firstCell(const QString &line)
{
    static const QRegularExpression cell(QStringLiteral("^\\| `([0-9A-F]{2}(?: [0-9A-F]{2})*)` \\|"));
    return bytes(cell.match(line).captured(1).toLatin1().constData());
}

/// Sorts the lines of the document one by one.
class DocumentReader {
public:
    void take(const QString &line)
    {
        ++m_line;
        if (line.startsWith(QLatin1String("```")))
            m_fence = m_fence.isNull() ? line.mid(3) : QString();
        else if (m_fence == QLatin1String("frame"))
            document.worked.append({m_line, bytes(line.toLatin1().constData()), {}});
        else if (m_fence == QLatin1String("broken"))
            document.broken.append({m_line, bytes(line.toLatin1().constData()), {}});
        else
            takeOther(line);
    }

    Document document;

private:
    void takeOther(const QString &line)
    {
        for (const QByteArray &wire : framesIn(line))
            document.passing.append({m_line, wire, {}});
        if (line.startsWith(QLatin1String("#")))
            m_explaining = -1;
        else if (line == QLatin1String("| bytes | what they are |"))
            m_explaining = document.worked.size() - 1;
        else if (m_explaining >= 0 && line.startsWith(QLatin1Char('|')))
            document.worked[m_explaining].explained += firstCell(line);
    }

    QString m_fence; // null outside of blocks
    int m_line = 0;
    int m_explaining = -1; // index of the frame whose table is being read
};

void addRows(const QVector<WrittenFrame> &frames)
{
    for (const WrittenFrame &frame : frames)
        QTest::addRow("line %d", frame.line) << frame.wire << frame.explained;
}

void addFrameColumns()
{
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QByteArray>("explained");
}

} // namespace

void ProtocolDocumentTest::initTestCase()
{
    DocumentReader reader;
    const QString document = QString::fromUtf8(contentOf(CANBUS_SOURCE_DIR "/docs/protocol.md"));
    const QStringList lines = document.split(QLatin1Char('\n'));
    for (const QString &line : lines)
        reader.take(line);
    m_document = reader.document;
}

void ProtocolDocumentTest::tellsARightFrameFromAWrongOne_data()
{
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("a connect request") << bytes("9f 02 21 01 00 00 00 20 9f 03") << QByteArray();
    QTest::newRow("escapes in id, data and check byte")
        << bytes("9f 02 9f9f 01 01 9f9f 9f9f 9f9f 9f 03") << QByteArray();
    QTest::newRow("an escape as check byte") << bytes("9f 02 21 03 00 bd 9f9f 9f 03") << QByteArray();
    QTest::newRow("an acknowledgement") << bytes("9f 06 05 05 9f 03") << QByteArray();
    QTest::newRow("a negative acknowledgement") << bytes("9f 15 05 05 9f 03") << QByteArray();
    QTest::newRow("another opening mark")
        << bytes("9f 04 21 01 00 00 00 20 9f 03") << QByteArray("no opening mark");
    QTest::newRow("no closing mark") << bytes("9f 02 21 01 00 00 00 20 9f 04")
                                     << QByteArray("no closing mark");
    QTest::newRow("an end too early")
        << bytes("9f 02 21 01 00 9f9f 03 bc 9f 03") << QByteArray("bytes behind the first 9F 03");
    QTest::newRow("a single escape in the data")
        << bytes("9f 02 21 03 00 9f bd 9f 03") << QByteArray("a 9F that is not doubled");
    QTest::newRow("a wrong check byte")
        << bytes("9f 02 21 01 00 00 00 21 9f 03") << QByteArray("wrong check byte or length");
    QTest::newRow("a frame without a MOD")
        << bytes("9f 02 21 01 20 9f 03") << QByteArray("wrong check byte or length");
    QTest::newRow("an answer with two ids")
        << bytes("9f 06 05 06 9f 03") << QByteArray("wrong check byte or length");
}

void ProtocolDocumentTest::tellsARightFrameFromAWrongOne()
{
    QFETCH(QByteArray, wire);
    QFETCH(QByteArray, expected);

    QCOMPARE(fault(wire), expected);
}

void ProtocolDocumentTest::worksThroughEnoughFrames()
{
    QVERIFY2(m_document.worked.size() >= 21, qPrintable(QString::number(m_document.worked.size())));
    QVERIFY2(m_document.passing.size() >= 10, qPrintable(QString::number(m_document.passing.size())));
    QVERIFY2(m_document.broken.size() >= 3, qPrintable(QString::number(m_document.broken.size())));
}

void ProtocolDocumentTest::writesItsFramesRight_data()
{
    addFrameColumns();
    addRows(m_document.worked);
    addRows(m_document.passing);
}

void ProtocolDocumentTest::writesItsFramesRight()
{
    QFETCH(QByteArray, wire);

    const QByteArray wrong = fault(wire);
    QVERIFY2(wrong.isEmpty(), (wrong + ": " + wire.toHex(' ')).constData());
}

void ProtocolDocumentTest::explainsEachByteOfAFrame_data()
{
    addFrameColumns();
    addRows(m_document.worked);
}

void ProtocolDocumentTest::explainsEachByteOfAFrame()
{
    QFETCH(QByteArray, wire);
    QFETCH(QByteArray, explained);

    QCOMPARE(explained.toHex(' '), wire.toHex(' '));
}

void ProtocolDocumentTest::callsNoRightFrameBroken_data()
{
    addFrameColumns();
    addRows(m_document.broken);
}

void ProtocolDocumentTest::callsNoRightFrameBroken()
{
    QFETCH(QByteArray, wire);

    QVERIFY2(!fault(wire).isEmpty(), wire.toHex(' ').constData());
}

QTEST_GUILESS_MAIN(ProtocolDocumentTest)
#include "tst_protocoldocument.moc"
