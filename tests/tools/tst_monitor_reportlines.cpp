#include "reportlines.h"

#include <QtCore/QMap>
#include <QtCore/QMetaMethod>
#include <QtTest/QTest>

using canbus::monitor::callableLine;
using canbus::monitor::callablesOf;
using canbus::monitor::Form;
using canbus::monitor::resultLine;
using canbus::monitor::signalLine;

class Panel : public QObject {
    Q_OBJECT

public:
    Q_INVOKABLE QMap<int, bool> lamps() const { return {}; }

Q_SIGNALS:
    void updateMainTemp(int value, int Unit);
    void updateText(QString TopText);
    void idle();
    void reverseChanged(bool, int, QString text);
    void strange(Panel *panel);

public Q_SLOTS:
    void acBtn() { }
    void sort(char Type, bool isPress = true, char value = 0) { m_last = Type + isPress + value; }
    void allDefault(int first = 1) { m_last = first; }

private:
    int m_last = 0;
};

class tst_monitor_reportlines : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writesSignals_data();
    void writesSignals();
    void writesResults();
    void writesTheTimeInSecondsWithThreeDecimals_data();
    void writesTheTimeInSecondsWithThreeDecimals();
    void writesCallables_data();
    void writesCallables();
};

namespace {

QMetaMethod method(const char *signature)
{
    const QMetaObject &meta = Panel::staticMetaObject;
    return meta.method(meta.indexOfMethod(signature));
}

} // namespace

void tst_monitor_reportlines::writesSignals_data()
{
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("json");

    QTest::newRow("names are as declared")
        << QByteArray("updateMainTemp(int,int)") << QVariantList {215, 1}
        << "climate updateMainTemp value=215 Unit=1"
        << R"({"t":1.234,"object":"climate","signal":"updateMainTemp","args":{"value":215,"Unit":1}})";
    QTest::newRow("a text stays on its line")
        << QByteArray("updateText(QString)") << QVariantList {QStringLiteral("a \"b\"\nc")}
        << R"(climate updateText TopText="a \"b\"\nc")"
        << R"({"t":1.234,"object":"climate","signal":"updateText","args":{"TopText":"a \"b\"\nc"}})";
    QTest::newRow("no arguments") << QByteArray("idle()") << QVariantList() << "climate idle"
                                  << R"({"t":1.234,"object":"climate","signal":"idle","args":{}})";
    QTest::newRow("arguments without a name go by position")
        << QByteArray("reverseChanged(bool,int,QString)") << QVariantList {true, 0, QStringLiteral("r")}
        << R"(climate reverseChanged arg1=true arg2=0 text="r")"
        << R"({"t":1.234,"object":"climate","signal":"reverseChanged","args":{"arg1":true,"arg2":0,"text":"r"}})";
    QTest::newRow("what could not be copied is named by its type")
        << QByteArray("strange(Panel*)") << QVariantList {QVariant()} << R"(climate strange panel="<Panel*>")"
        << R"({"t":1.234,"object":"climate","signal":"strange","args":{"panel":"<Panel*>"}})";
}

void tst_monitor_reportlines::writesSignals()
{
    QFETCH(QByteArray, signature);
    QFETCH(QVariantList, arguments);
    const QMetaMethod signal = method(signature.constData());
    const QString object = QStringLiteral("climate");
    QTEST(signalLine(Form::Text, 1234, object, signal, arguments), "text");
    QTEST(signalLine(Form::Json, 1234, object, signal, arguments), "json");
}

void tst_monitor_reportlines::writesResults()
{
    const QVariant result = QVariant::fromValue(QMap<int, bool> {{3, true}});
    const QString object = QStringLiteral("player");
    QCOMPARE(resultLine(Form::Text, 7, object, method("lamps()"), result),
             QStringLiteral("player lamps -> {3:true}"));
    QCOMPARE(resultLine(Form::Json, 7, object, method("lamps()"), result),
             QStringLiteral(R"({"t":0.007,"object":"player","call":"lamps","result":{"3":true}})"));
}

void tst_monitor_reportlines::writesTheTimeInSecondsWithThreeDecimals_data()
{
    QTest::addColumn<qint64>("ms");
    QTest::addColumn<QString>("start");

    QTest::newRow("zero") << qint64(0) << R"({"t":0.000,)";
    QTest::newRow("leading zeros") << qint64(1005) << R"({"t":1.005,)";
    QTest::newRow("a year") << qint64(31536000001) << R"({"t":31536000.001,)";
}

void tst_monitor_reportlines::writesTheTimeInSecondsWithThreeDecimals()
{
    QFETCH(qint64, ms);
    QFETCH(QString, start);
    const QString line = signalLine(Form::Json, ms, QStringLiteral("climate"), method("idle()"), {});
    QCOMPARE(line.left(start.size()), start);
}

void tst_monitor_reportlines::writesCallables_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("json");

    QTest::newRow("no parameters")
        << "acBtn"
        << "climate.acBtn()"
        << R"({"object":"climate","callable":"acBtn","parameters":{},"required":0,"returns":"void"})";
    QTest::newRow("optional parameters")
        << "sort"
        << "climate.sort(char Type[, bool isPress[, char value]])"
        << R"({"object":"climate","callable":"sort","parameters":{"Type":"char","isPress":"bool","value":"char"},)"
           R"("required":1,"returns":"void"})";
    QTest::newRow("only optional parameters")
        << "allDefault"
        << "climate.allDefault([int first])"
        << R"({"object":"climate","callable":"allDefault","parameters":{"first":"int"},"required":0,"returns":"void"})";
    QTest::newRow("a result")
        << "lamps"
        << "climate.lamps() -> QMap<int,bool>"
        << R"({"object":"climate","callable":"lamps","parameters":{},"required":0,"returns":"QMap<int,bool>"})";
}

void tst_monitor_reportlines::writesCallables()
{
    QFETCH(QString, name);
    const Panel panel;
    const auto callables = callablesOf(&panel);
    const auto found = std::find_if(callables.cbegin(), callables.cend(), [&](const auto &callable) {
        return QLatin1String(callable.method.name()) == name;
    });
    QVERIFY(found != callables.cend());
    QTEST(callableLine(Form::Text, QStringLiteral("climate"), *found), "text");
    QTEST(callableLine(Form::Json, QStringLiteral("climate"), *found), "json");
}

QTEST_GUILESS_MAIN(tst_monitor_reportlines)
#include "tst_monitor_reportlines.moc"
