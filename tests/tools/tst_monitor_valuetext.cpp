#include "valuetext.h"

#include <QtTest/QTest>

using canbus::monitor::Form;
using canbus::monitor::quoted;
using canbus::monitor::valueText;

namespace {

enum Unknown { kUnknown };

class Door {
    Q_GADGET

public:
    enum class State { Shut, Open };
    Q_ENUM(State)
};

} // namespace

Q_DECLARE_METATYPE(Unknown)
Q_DECLARE_METATYPE(Door::State)

class tst_monitor_valuetext : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesValues_data();
    void writesValues();
    void quotesSoThatALineStaysALine_data();
    void quotesSoThatALineStaysALine();
    void keepsWhatIsPlain();
};

void tst_monitor_valuetext::writesValues_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("json");

    QTest::newRow("true") << QVariant(true) << "true"
                          << "true";
    QTest::newRow("false") << QVariant(false) << "false"
                           << "false";
    QTest::newRow("int") << QVariant(-215) << "-215"
                         << "-215";
    QTest::newRow("long long") << QVariant(qlonglong(-5000000000)) << "-5000000000"
                               << "-5000000000";
    QTest::newRow("a char is an unsigned byte") << QVariant::fromValue(char(0x9F)) << "159"
                                                << "159";
    QTest::newRow("a signed char too") << QVariant::fromValue(qint8(-1)) << "255"
                                       << "255";
    QTest::newRow("an unsigned char too") << QVariant::fromValue(quint8(200)) << "200"
                                          << "200";
    QTest::newRow("text") << QVariant(QStringLiteral("Klima vorn")) << R"("Klima vorn")"
                          << R"("Klima vorn")";
    QTest::newRow("empty text") << QVariant(QString()) << R"("")"
                                << R"("")";
    QTest::newRow("bytes") << QVariant(QByteArray("\x9f\x02\x00", 3)) << "9f0200"
                           << R"("9f0200")";
    QTest::newRow("no bytes") << QVariant(QByteArray()) << ""
                              << R"("")";
    QTest::newRow("a value of an enumeration") << QVariant::fromValue(Door::State::Open) << "Open"
                                               << R"("Open")";
    QTest::newRow("a value that its enumeration has not")
        << QVariant::fromValue(Door::State(7)) << R"("<Door::State>")"
        << R"("<Door::State>")";
    QTest::newRow("values by name") << QVariant(
        QVariantMap {{QStringLiteral("b"), 2}, {QStringLiteral("a"), QStringLiteral("x")}})
                                    << R"({a:"x",b:2})"
                                    << R"({"a":"x","b":2})";
    QTest::newRow("texts") << QVariant(QStringList {QStringLiteral("a,b"), QStringLiteral("c\"")})
                           << R"(["a,b","c\""])"
                           << R"(["a,b","c\""])";
    QTest::newRow("no texts") << QVariant(QStringList()) << "[]"
                              << "[]";
    QTest::newRow("integers") << QVariant::fromValue(QList<int> {1, -2, 300}) << "[1,-2,300]"
                              << "[1,-2,300]";
    QTest::newRow("flags") << QVariant::fromValue(QList<bool> {true, false}) << "[true,false]"
                           << "[true,false]";
    QTest::newRow("a map has quoted keys in JSON")
        << QVariant::fromValue(QMap<int, bool> {{4, true}, {0, false}}) << "{0:false,4:true}"
        << R"({"0":false,"4":true})";
    QTest::newRow("an unknown type is named") << QVariant::fromValue(kUnknown) << R"("<Unknown>")"
                                              << R"("<Unknown>")";
}

void tst_monitor_valuetext::writesValues()
{
    QFETCH(QVariant, value);
    QTEST(valueText(value, Form::Text), "text");
    QTEST(valueText(value, Form::Json), "json");
}

void tst_monitor_valuetext::quotesSoThatALineStaysALine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("quote and backslash") << QStringLiteral("\"\\") << R"("\"\\")";
    QTest::newRow("line ends and tab") << QStringLiteral("a\nb\rc\td") << R"("a\nb\rc\td")";
    QTest::newRow("zero") << QString(QChar(0)) << R"("\u0000")";
    QTest::newRow("escape, which controls a terminal") << QString(QChar(0x1B)) << R"("\u001b")";
    QTest::newRow("the one-byte form of the same") << QString(QChar(0x9B)) << R"("\u009b")";
    QTest::newRow("next line") << QString(QChar(0x85)) << R"("\u0085")";
    QTest::newRow("line separator") << QString(QChar(0x2028)) << R"("\u2028")";
    QTest::newRow("paragraph separator") << QString(QChar(0x2029)) << R"("\u2029")";
    QTest::newRow("right to left") << QString(QChar(0x202E)) << R"("\u202e")";
    QTest::newRow("half a pair at the end") << QString(QChar(0xD83D)) << R"("\ud83d")";
    QTest::newRow("the other half") << QStringLiteral("a") + QChar(0xDE97) + QStringLiteral("b")
                                    << R"("a\ude97b")";
}

void tst_monitor_valuetext::quotesSoThatALineStaysALine()
{
    QFETCH(QString, text);
    QTEST(quoted(text), "expected");
}

void tst_monitor_valuetext::keepsWhatIsPlain()
{
    const QString text = QString::fromUtf8("\xc3\xbc \xe6\xb8\xa9 \xf0\x9f\x9a\x97 \xef\xbf\xbd /%1");
    QCOMPARE(quoted(text), QLatin1Char('"') + text + QLatin1Char('"'));
}

QTEST_GUILESS_MAIN(tst_monitor_valuetext)
#include "tst_monitor_valuetext.moc"
