#include "climatestate.h"
#include "gaugesstate.h"
#include "linkstate.h"
#include "menustate.h"
#include "parkingstate.h"
#include "screensstate.h"
#include "vehiclestate.h"

#include <linkhealth.h>

#include <contentof.h>

#include <QtCore/QJsonDocument>
#include <QtCore/QMetaProperty>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <memory>

using namespace canbus::qml;

namespace {

/// One property as docs/qml.md has it.
struct Row {
    QString type;
    QString before; ///< empty where the table has nothing there
};

/// The rows of the table below "### name", by property.
QMap<QString, Row> tableOf(const QString &document, const QString &name)
{
    const QString section =
        document.section("### " + name + '\n', 1).section("\n### ", 0, 0).section("\n## ", 0, 0);
    QMap<QString, Row> rows;
    const QStringList lines = section.split('\n');
    for (const QString &line : lines) {
        if (!line.startsWith(QLatin1String("| `")))
            continue;
        const QStringList columns = line.split('|');
        static const QRegularExpression quoted(QStringLiteral("`(\\w+)`"));
        for (auto names = quoted.globalMatch(columns.at(1)); names.hasNext();)
            rows.insert(names.next().captured(1), {columns.at(2).trimmed(), columns.at(4).trimmed()});
    }
    return rows;
}

QString typeInQml(const QMetaProperty &property, const QVariant &value)
{
    const QString settable = property.isWritable() ? QStringLiteral(", can be set") : QString();
    switch (int(value.type())) {
    case QMetaType::Int:
        return QStringLiteral("int") + settable;
    case QMetaType::Bool:
        return QStringLiteral("bool") + settable;
    case QMetaType::QString:
        return QStringLiteral("string") + settable;
    case QMetaType::QStringList:
        return QStringLiteral("list of string") + settable;
    case QMetaType::QVariantList:
        return QStringLiteral("list") + settable;
    case QMetaType::QVariantMap:
        return QStringLiteral("map") + settable;
    default:
        return QStringLiteral("list model") + settable;
    }
}

/// What the table says a list holds is told by no type: the tests of the state objects look into them.
QString withoutElements(const QString &type)
{
    QString plain = type;
    return plain.remove(QStringLiteral(" of int"))
        .remove(QStringLiteral(" of bool"))
        .remove(QStringLiteral(" of number"));
}

QString inJson(const QVariant &value)
{
    const QByteArray list = QJsonDocument::fromVariant(QVariantList {value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(list.mid(1, list.size() - 2));
}

} // namespace

/// docs/qml.md lists each property, with its type and its value before anything was received.
class TestQmlDocument : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void listsEveryProperty_data();
    void listsEveryProperty();
    void saysWhatEachPropertyIs_data();
    void saysWhatEachPropertyIs();
    void namesEveryFigure();

private:
    static void addObjects();

    QString m_document;
};

Q_DECLARE_METATYPE(std::shared_ptr<State>)

void TestQmlDocument::initTestCase()
{
    m_document = QString::fromUtf8(contentOf(CANBUS_SOURCE_DIR "/docs/qml.md"));
}

void TestQmlDocument::addObjects()
{
    QTest::addColumn<std::shared_ptr<State>>("object");
    QTest::newRow("ClimateState") << std::shared_ptr<State>(new ClimateState);
    QTest::newRow("GaugesState") << std::shared_ptr<State>(new GaugesState);
    QTest::newRow("VehicleState") << std::shared_ptr<State>(new VehicleState);
    QTest::newRow("ParkingState") << std::shared_ptr<State>(new ParkingState);
    QTest::newRow("MenuState") << std::shared_ptr<State>(new MenuState);
    QTest::newRow("ScreensState") << std::shared_ptr<State>(new ScreensState);
    QTest::newRow("LinkState") << std::shared_ptr<State>(new LinkState);
}

void TestQmlDocument::listsEveryProperty_data()
{
    addObjects();
}

void TestQmlDocument::listsEveryProperty()
{
    QFETCH(const std::shared_ptr<State>, object);
    QStringList properties;
    const QMetaObject *const type = object->metaObject();
    for (int index = type->propertyOffset(); index < type->propertyCount(); ++index)
        properties += QString::fromLatin1(type->property(index).name());
    properties.sort();
    QCOMPARE(QStringList(tableOf(m_document, QTest::currentDataTag()).keys()), properties);
}

void TestQmlDocument::saysWhatEachPropertyIs_data()
{
    addObjects();
}

void TestQmlDocument::saysWhatEachPropertyIs()
{
    QFETCH(const std::shared_ptr<State>, object);
    const QMap<QString, Row> table = tableOf(m_document, QTest::currentDataTag());
    QVERIFY(!table.isEmpty());
    for (auto row = table.cbegin(); row != table.cend(); ++row) {
        const QByteArray name = row.key().toLatin1();
        const QMetaProperty property =
            object->metaObject()->property(object->metaObject()->indexOfProperty(name));
        const QVariant value = property.read(object.get());
        QVERIFY2(property.hasNotifySignal() || property.isConstant(), name);
        QCOMPARE(name + ": " + withoutElements(row->type), name + ": " + typeInQml(property, value));
        if (!row->before.isEmpty() && row->before != QLatin1String("empty"))
            QCOMPARE(name + ": " + row->before, name + ": " + inJson(value));
    }
}

void TestQmlDocument::namesEveryFigure()
{
    const QString figures =
        m_document.section(QStringLiteral("**Figures.**"), 1).section(QStringLiteral("**Frames.**"), 0, 0);
    const QMetaObject &type = canbus::LinkFigures::staticMetaObject;
    QVERIFY(type.propertyCount() > 20);
    for (int index = 0; index < type.propertyCount(); ++index) {
        const char *const name = type.property(index).name();
        QVERIFY2(figures.contains('`' + QLatin1String(name) + '`'), name);
    }
}

QTEST_GUILESS_MAIN(TestQmlDocument)
#include "tst_qmldocument.moc"
