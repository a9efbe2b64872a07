#include "argument.h"

#include <QtTest/QTest>

using canbus::monitor::splitArguments;
using canbus::monitor::toArgument;

namespace {

template <class T>
QVariant of(const T &value)
{
    return QVariant::fromValue(value);
}

} // namespace

class tst_monitor_argument : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void splitsAtCommas_data();
    void splitsAtCommas();
    void refusesWhatIsNotClosed_data();
    void refusesWhatIsNotClosed();
    void convertsByType_data();
    void convertsByType();
    void refusesAndSaysWhatWouldBeRight_data();
    void refusesAndSaysWhatWouldBeRight();
};

void tst_monitor_argument::initTestCase()
{
    // Without it two variants with lists are never equal.
    QVERIFY(QMetaType::registerEqualsComparator<QList<int>>());
    QVERIFY(QMetaType::registerEqualsComparator<QList<bool>>());
}

void tst_monitor_argument::splitsAtCommas_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("three") << "1,2,3" << QStringList {"1", "2", "3"};
    QTest::newRow("blanks around are dropped") << " 1 , 2 " << QStringList {"1", "2"};
    QTest::newRow("nothing is one empty argument") << "" << QStringList {""};
    QTest::newRow("nothing on both sides") << "," << QStringList {"", ""};
    QTest::newRow("commas in brackets stay") << "[1,2],[],3" << QStringList {"[1,2]", "[]", "3"};
    QTest::newRow("commas in quotes stay") << R"("a,b",2)" << QStringList {R"("a,b")", "2"};
    QTest::newRow("an escaped quote does not close") << R"("a\",b",2)" << QStringList {R"("a\",b")", "2"};
    QTest::newRow("an escaped backslash before the closing quote")
        << R"("a\\",b)" << QStringList {R"("a\\")", "b"};
    QTest::newRow("brackets in quotes are text") << R"(["]",1],2)" << QStringList {R"(["]",1])", "2"};
}

void tst_monitor_argument::splitsAtCommas()
{
    QFETCH(QString, text);
    const auto split = splitArguments(text);
    QVERIFY(split);
    QTEST(*split, "arguments");
}

void tst_monitor_argument::refusesWhatIsNotClosed_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("a quote") << R"("a,b)";
    QTest::newRow("a bracket") << "[1,2";
    QTest::newRow("a bracket too many") << "1]";
}

void tst_monitor_argument::refusesWhatIsNotClosed()
{
    QFETCH(QString, text);
    const auto split = splitArguments(text);
    QVERIFY(!split);
    QVERIFY2(split.error().startsWith(QLatin1String("a quote or bracket is not closed")),
             qPrintable(split.error()));
}

void tst_monitor_argument::convertsByType_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("expected");

    QTest::newRow("true") << "true" << of(true);
    QTest::newRow("one is true") << "1" << of(true);
    QTest::newRow("false") << "false" << of(false);
    QTest::newRow("zero is false") << "0" << of(false);
    QTest::newRow("int") << "-17" << of(-17);
    QTest::newRow("hexadecimal int") << "0x7fffffff" << of(2147483647);
    QTest::newRow("a leading zero is not octal") << "010" << of(10);
    QTest::newRow("lowest int") << "-2147483648" << of(std::numeric_limits<int>::min());
    QTest::newRow("highest unsigned int") << "4294967295" << of(4294967295U);
    QTest::newRow("char") << "21" << of(char(21));
    QTest::newRow("char above 127") << "200" << of(char(0xC8));
    QTest::newRow("highest char") << "255" << of(char(0xFF));
    QTest::newRow("lowest char") << "-128" << of(char(0x80));
    QTest::newRow("hexadecimal char") << "0x9F" << of(char(0x9F));
    QTest::newRow("short") << "-32768" << of(short(-32768));
    QTest::newRow("text as it is") << "/dev/ttyUSB0" << of(QStringLiteral("/dev/ttyUSB0"));
    QTest::newRow("no text") << "" << of(QString(""));
    QTest::newRow("text in quotes") << R"("a,\"b\" \\ c")" << of(QStringLiteral(R"(a,"b" \ c)"));
    QTest::newRow("bytes") << "9F02fe" << of(QByteArray("\x9f\x02\xfe"));
    QTest::newRow("no bytes") << "" << of(QByteArray(""));
    QTest::newRow("integers") << "[1, -2,0x10]" << of(QList<int> {1, -2, 16});
    QTest::newRow("no integers") << "[ ]" << of(QList<int>());
    QTest::newRow("flags") << "[1,false]" << of(QList<bool> {true, false});
    QTest::newRow("texts") << R"([a,"b,c"])" << of(QStringList {"a", "b,c"});
}

void tst_monitor_argument::convertsByType()
{
    QFETCH(QString, text);
    QFETCH(QVariant, expected);
    const auto value = toArgument(text, expected.userType());
    QVERIFY2(value, qPrintable(value.error()));
    QCOMPARE(value->userType(), expected.userType());
    QCOMPARE(*value, expected);
}

void tst_monitor_argument::refusesAndSaysWhatWouldBeRight_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("error");

    const QString charRange = QStringLiteral("a number from -128 to 255, decimal or 0x..");
    const QString intRange = QStringLiteral("a number from -2147483648 to 2147483647, decimal or 0x..");
    const QString flags = QStringLiteral("true, false, 1 or 0");
    const QString digits = QStringLiteral("two hexadecimal digits for each byte");
    QTest::newRow("char too high") << "256" << int(QMetaType::Char) << R"("256" is no char: )" + charRange;
    QTest::newRow("char too low") << "-129" << int(QMetaType::Char) << R"("-129" is no char: )" + charRange;
    QTest::newRow("a letter is no char") << "a" << int(QMetaType::Char) << R"("a" is no char: )" + charRange;
    QTest::newRow("nothing is no int") << "" << int(QMetaType::Int) << R"("" is no int: )" + intRange;
    QTest::newRow("int too high") << "2147483648" << int(QMetaType::Int)
                                  << R"("2147483648" is no int: )" + intRange;
    QTest::newRow("int with something behind")
        << "1x" << int(QMetaType::Int) << R"("1x" is no int: )" + intRange;
    QTest::newRow("a fraction is no int")
        << "1.5" << int(QMetaType::Int) << R"("1.5" is no int: )" + intRange;
    QTest::newRow("two is no flag") << "2" << int(QMetaType::Bool) << R"("2" is no bool: )" + flags;
    QTest::newRow("half a byte") << "9f0" << int(QMetaType::QByteArray)
                                 << R"("9f0" is no QByteArray: )" + digits;
    QTest::newRow("no digit") << "9g" << int(QMetaType::QByteArray) << R"("9g" is no QByteArray: )" + digits;
    QTest::newRow("text goes on behind its quotes")
        << R"("a"b)" << int(QMetaType::QString)
        << R"("\"a\"b" is no QString: nothing may follow the closing quote)";
    QTest::newRow("no brackets") << "1,2" << qMetaTypeId<QList<int>>()
                                 << R"("1,2" is no QList<int>: items between brackets, for example [1,0])";
    QTest::newRow("an item that does not fit")
        << "[1,3]" << qMetaTypeId<QList<bool>>() << R"("3" is no bool: )" + flags;
    const QString noText = QStringLiteral(" cannot be written here, only flags, numbers, texts, bytes and "
                                          "lists: call this from a host of your own");
    QTest::newRow("a type that has no text") << "1" << int(QMetaType::QObjectStar) << "a QObject*" + noText;
    QTest::newRow("a type that is not registered")
        << "1" << int(QMetaType::UnknownType) << "a value of an unknown type" + noText;
}

void tst_monitor_argument::refusesAndSaysWhatWouldBeRight()
{
    QFETCH(QString, text);
    QFETCH(int, type);
    const auto value = toArgument(text, type);
    QVERIFY(!value);
    QTEST(value.error(), "error");
}

QTEST_GUILESS_MAIN(tst_monitor_argument)
#include "tst_monitor_argument.moc"
