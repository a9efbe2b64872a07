#include "methodcall.h"

#include "metamethods.h"

#include <QtCore/QMap>
#include <QtCore/QMetaMethod>
#include <QtTest/QTest>

#include <memory>

using canbus::monitor::callablesOf;
using canbus::monitor::invoke;
using canbus::monitor::prepareCall;
using canbus::monitor::Targets;

struct Opaque { };

class Panel : public QObject {
    Q_OBJECT

public:
    Q_INVOKABLE bool isOn() const { return m_isOn; }
    Q_INVOKABLE QMap<int, bool> lamps() const { return {{2, true}}; }
    Q_INVOKABLE Opaque opaque() { return note(QStringLiteral("opaque")), Opaque(); }
    void notInvokable() { }

    QStringList calls;

public Q_SLOTS:
    void acBtn() { note(QStringLiteral("acBtn")); }
    void rearZone(bool isPress) { note(QStringLiteral("rearZone %1").arg(isPress)); }
    void manualTemp(char value) { note(QStringLiteral("manualTemp %1").arg(quint8(value))); }
    void sort(char type, bool isPress = true, char value = 9)
    {
        note(QStringLiteral("sort %1 %2 %3").arg(quint8(type)).arg(isPress).arg(quint8(value)));
    }
    void reversed(bool, int) { note(QStringLiteral("reversed")); }
    void port(const QString &name, int baud) { note(QStringLiteral("port %1 %2").arg(name).arg(baud)); }
    void mark(int number) { note(QStringLiteral("mark number %1").arg(number)); }
    void mark(bool flag) { note(QStringLiteral("mark flag %1").arg(flag)); }
    void mark(int x, int y) { note(QStringLiteral("mark %1 %2").arg(x).arg(y)); }
    void list(QList<int> numbers) { note(QStringLiteral("list %1").arg(numbers.size())); }
    void take(QObject *object) { note(QStringLiteral("take %1").arg(object != nullptr)); }

Q_SIGNALS:
    void changed();

protected Q_SLOTS:
    void hiddenSlot() { }

private:
    void note(const QString &call) { calls << call; }

    bool m_isOn = true;
};

class tst_monitor_methodcall : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void callsWhatIsWritten_data();
    void callsWhatIsWritten();
    void callsNothingBeforeItIsInvoked();
    void returnsWhatTheMethodReturns();
    void makesTheSameCallAgain();
    void refusesAndSaysWhatWouldBeRight_data();
    void refusesAndSaysWhatWouldBeRight();
    void listsWhatCanBeCalledInOrder();
    void countsTheParametersWithoutDefault();
    void namesParametersWithoutANameByPosition();

private:
    Targets targets() const
    {
        return {{QStringLiteral("panel"), m_panel.get()}, {QStringLiteral("host"), m_other.get()}};
    }

    std::unique_ptr<Panel> m_panel;
    std::unique_ptr<Panel> m_other;
};

void tst_monitor_methodcall::initTestCase()
{
    // As the library does for the types of its own signals.
    qRegisterMetaType<QMap<int, bool>>("QMap<int,bool>");
}

void tst_monitor_methodcall::init()
{
    m_panel = std::make_unique<Panel>();
    m_other = std::make_unique<Panel>();
}

void tst_monitor_methodcall::callsWhatIsWritten_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("call");

    QTest::newRow("without arguments") << "panel.acBtn"
                                       << "acBtn";
    QTest::newRow("with blanks around") << " panel.acBtn "
                                        << "acBtn";
    QTest::newRow("a flag") << "panel.rearZone=true"
                            << "rearZone 1";
    QTest::newRow("blanks around the equals sign") << "panel.rearZone = 0"
                                                   << "rearZone 0";
    QTest::newRow("a byte above 127") << "panel.manualTemp=0x9f"
                                      << "manualTemp 159";
    QTest::newRow("all arguments") << "panel.sort=1,0,2"
                                   << "sort 1 0 2";
    QTest::newRow("the last default fills in") << "panel.sort=1,0"
                                               << "sort 1 0 9";
    QTest::newRow("both defaults fill in") << "panel.sort=255"
                                           << "sort 255 1 9";
    QTest::newRow("parameters without names") << "panel.reversed=1,2"
                                              << "reversed";
    QTest::newRow("text by reference, with an equals sign and a dot") << "panel.port=/dev/a=b.c,9600"
                                                                      << "port /dev/a=b.c 9600";
    QTest::newRow("the overload that takes it, the first") << "panel.mark=7"
                                                           << "mark number 7";
    QTest::newRow("the overload that takes it, the second") << "panel.mark=false"
                                                            << "mark flag 0";
    QTest::newRow("the overload of that many arguments") << "panel.mark=3,4"
                                                         << "mark 3 4";
    QTest::newRow("a list is one argument") << "panel.list=[1,2,3]"
                                            << "list 3";
    QTest::newRow("a result that cannot be copied") << "panel.opaque"
                                                    << "opaque";
}

void tst_monitor_methodcall::callsWhatIsWritten()
{
    QFETCH(QString, text);
    QFETCH(QString, call);
    const auto prepared = prepareCall(targets(), text);
    QVERIFY2(prepared, qPrintable(prepared.error()));
    QVERIFY(!invoke(*prepared).isValid());
    QCOMPARE(m_panel->calls, QStringList {call});
    QCOMPARE(m_other->calls, QStringList());
}

void tst_monitor_methodcall::callsNothingBeforeItIsInvoked()
{
    QVERIFY(prepareCall(targets(), QStringLiteral("panel.acBtn")));
    QCOMPARE(m_panel->calls, QStringList());
}

void tst_monitor_methodcall::returnsWhatTheMethodReturns()
{
    const auto isOn = prepareCall(targets(), QStringLiteral("panel.isOn"));
    QVERIFY(isOn);
    QCOMPARE(invoke(*isOn), QVariant(true));
    const auto lamps = prepareCall(targets(), QStringLiteral("panel.lamps"));
    QVERIFY(lamps);
    QCOMPARE((invoke(*lamps).value<QMap<int, bool>>()), (QMap<int, bool> {{2, true}}));
}

void tst_monitor_methodcall::makesTheSameCallAgain()
{
    const auto prepared = prepareCall(targets(), QStringLiteral("host.manualTemp=21"));
    QVERIFY(prepared);
    invoke(*prepared);
    invoke(*prepared);
    QCOMPARE(m_other->calls, (QStringList {"manualTemp 21", "manualTemp 21"}));
}

void tst_monitor_methodcall::refusesAndSaysWhatWouldBeRight_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");

    const QString form = QStringLiteral(" is no call: write GROUP.CONTROL or GROUP.CONTROL=ARG,...");
    const QString all = QStringLiteral(
        "it has acBtn, rearZone, manualTemp, sort, reversed, port, mark, list, take, isOn, lamps, opaque");
    QTest::newRow("no dot") << "panel"
                            << R"("panel")" + form;
    QTest::newRow("the dot is in the argument") << "panel=a.b"
                                                << R"("panel=a.b")" + form;
    QTest::newRow("no object") << ".acBtn"
                               << R"(".acBtn")" + form;
    QTest::newRow("no control") << "panel.=1"
                                << R"("panel.=1")" + form;
    QTest::newRow("unknown object") << "panle.acBtn"
                                    << R"(there is no object "panle": there is panel, host)";
    QTest::newRow("a letter too many") << "panel.acBtnn"
                                       << R"(panel has no call "acBtnn": did you mean acBtn?)";
    QTest::newRow("in another case") << "panel.ACBTN"
                                     << R"(panel has no call "ACBTN": did you mean acBtn?)";
    QTest::newRow("a part of the name") << "panel.temp"
                                        << R"(panel has no call "temp": did you mean manualTemp?)";
    QTest::newRow("nothing like it") << "panel.windscreen"
                                     << R"(panel has no call "windscreen": )" + all;
    QTest::newRow("a signal is no call") << "panel.changed=1"
                                         << R"(panel has no call "changed": )" + all;
    QTest::newRow("a protected slot is no call") << "panel.hiddenSlot"
                                                 << R"(panel has no call "hiddenSlot": )" + all;
    QTest::newRow("not invokable") << "panel.notInvokable"
                                   << R"(panel has no call "notInvokable": )" + all;
    QTest::newRow("what QObject has is no call") << "panel.deleteLater"
                                                 << R"(panel has no call "deleteLater": )" + all;
    QTest::newRow("too few") << "panel.rearZone"
                             << "panel.rearZone was given 0 arguments and takes 1 argument (bool isPress)";
    QTest::newRow("too many") << "panel.acBtn=1"
                              << "panel.acBtn was given 1 argument and takes 0 arguments";
    QTest::newRow("too many for all overloads")
        << "panel.mark=1,2,3"
        << "panel.mark was given 3 arguments and takes 1 argument (int number) or 1 argument (bool flag) or "
           "2 arguments (int x, int y)";
    QTest::newRow("out of range")
        << "panel.sort=1,1,256"
        << R"(panel.sort, value: "256" is no char: a number from -128 to 255, decimal or 0x..)";
    QTest::newRow("not closed") << "panel.list=[1"
                                << R"(a quote or bracket is not closed in "[1")";
    QTest::newRow("a type that has no text")
        << "panel.take=1"
        << "panel.take, object: a QObject* cannot be written here, only flags, numbers, texts, bytes and "
           "lists: call this from a host of your own";
}

void tst_monitor_methodcall::refusesAndSaysWhatWouldBeRight()
{
    QFETCH(QString, text);
    const auto prepared = prepareCall(targets(), text);
    QVERIFY(!prepared);
    QTEST(prepared.error(), "error");
}

void tst_monitor_methodcall::listsWhatCanBeCalledInOrder()
{
    QStringList signatures;
    const auto callables = callablesOf(m_panel.get());
    for (const auto &callable : callables)
        signatures << QString::fromLatin1(callable.method.methodSignature());
    const QStringList expected {
        "acBtn()",
        "rearZone(bool)",
        "manualTemp(char)",
        "sort(char,bool,char)",
        "reversed(bool,int)",
        "port(QString,int)",
        "mark(int)",
        "mark(bool)",
        "mark(int,int)",
        "list(QList<int>)",
        "take(QObject*)",
        "isOn()",
        "lamps()",
        "opaque()",
    };
    QCOMPARE(signatures, expected);
}

void tst_monitor_methodcall::countsTheParametersWithoutDefault()
{
    const auto callables = callablesOf(m_panel.get());
    for (const auto &callable : callables) {
        const int required = callable.method.name() == "sort" ? 1 : callable.method.parameterCount();
        QCOMPARE(callable.requiredParameters, required);
    }
}

void tst_monitor_methodcall::namesParametersWithoutANameByPosition()
{
    const QMetaObject *const meta = m_panel->metaObject();
    const QMetaMethod reversed = meta->method(meta->indexOfMethod("reversed(bool,int)"));
    QCOMPARE(canbus::monitor::parameterName(reversed, 0), QStringLiteral("arg1"));
    QCOMPARE(canbus::monitor::parameterName(reversed, 1), QStringLiteral("arg2"));
}

QTEST_GUILESS_MAIN(tst_monitor_methodcall)
#include "tst_monitor_methodcall.moc"
