#pragma once

#include "announcements.h"
#include "hexbytes.h"
#include "logrecorder.h"

#include <QtTest/QTest>

#include <functional>
#include <memory>

/// What becomes of the title and the labels of a group, which are alike in those groups that have nothing
/// else in these payloads. The test of such a group derives from this and names its operations.
class GroupTextsTest : public QObject {
    Q_OBJECT

protected:
    template <class Group>
    using Decoder = void (Group::*)(QByteArray);

    template <class Group>
    GroupTextsTest(Decoder<Group> title, const char *titleSignal, Decoder<Group> labels,
                   const char *labelsSignal)
        : m_makeGroup([] { return std::make_unique<Group>(); })
        , m_title([title](QObject &group, const QByteArray &payload) {
            (static_cast<Group &>(group).*title)(payload);
        })
        , m_labels([labels](QObject &group, const QByteArray &payload) {
            (static_cast<Group &>(group).*labels)(payload);
        })
        , m_titleSignal(titleSignal)
        , m_labelsSignal(labelsSignal)
    {
    }

private Q_SLOTS:
    void readsTheTitle_data();
    void readsTheTitle();
    void announcesATitleOnlyWhenItChanges();
    void announcesAnEmptyTitleEachTime();
    void announcesATitleThatCleaningAltersEachTime();
    void comparesTheTitleWithTheCleanedOne();
    void logsTheTitle();
    void readsTheLabels_data();
    void readsTheLabels();
    void announcesLabelsOnlyWhenTheyChange();
    void announcesAnEmptyLabelListEachTime();
    void logsTheLabels();

private:
    using Receive = std::function<void(QObject &, const QByteArray &)>;

    QString titleSignal(const QString &text) const { return m_titleSignal + "('" + text + "')"; }
    QString labelsSignal(const QString &list) const { return m_labelsSignal + '(' + list + ')'; }

    std::function<std::unique_ptr<QObject>()> m_makeGroup;
    Receive m_title;
    Receive m_labels;
    QString m_titleSignal;
    QString m_labelsSignal;
};

inline void GroupTextsTest::readsTheTitle_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("title");

    QTest::newRow("all bytes") << bytes("41 42 43") << "ABC";
    QTest::newRow("up to the zero byte") << bytes("41 42 00 43") << "AB";
    QTest::newRow("one byte") << bytes("41") << "A";
    QTest::newRow("a zero byte alone") << bytes("00") << "";
    QTest::newRow("nothing before the zero byte") << bytes("00 41") << "";
    QTest::newRow("UTF-8") << bytes("c3a4 e4bda0 00") << QString::fromUtf8("\xc3\xa4\xe4\xbd\xa0");
    QTest::newRow("without what is no UTF-8") << bytes("41 ff 42 00") << "AB";
    QTest::newRow("nothing but what is no UTF-8") << bytes("ff") << "";
    QTest::newRow("without a replacement character that was sent") << bytes("41 efbfbd 42") << "AB";
}

inline void GroupTextsTest::readsTheTitle()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, title);

    const std::unique_ptr<QObject> group = m_makeGroup();
    Announcements heard(group.get());
    m_title(*group, payload);
    QCOMPARE(heard.take(), QStringList {titleSignal(title)});
}

inline void GroupTextsTest::announcesATitleOnlyWhenItChanges()
{
    const std::unique_ptr<QObject> group = m_makeGroup();
    m_title(*group, bytes("41 42"));
    Announcements heard(group.get());
    m_title(*group, bytes("41 42"));
    m_title(*group, bytes("41 42 00 43"));
    QCOMPARE(heard.take(), QStringList());
    m_title(*group, bytes("41 43"));
    QCOMPARE(heard.take(), QStringList {titleSignal("AC")});
}

inline void GroupTextsTest::announcesAnEmptyTitleEachTime()
{
    const std::unique_ptr<QObject> group = m_makeGroup();
    Announcements heard(group.get());
    m_title(*group, bytes("00"));
    m_title(*group, bytes("00"));
    QCOMPARE(heard.take(), (QStringList {titleSignal(""), titleSignal("")}));
}

inline void GroupTextsTest::announcesATitleThatCleaningAltersEachTime()
{
    const std::unique_ptr<QObject> group = m_makeGroup();
    Announcements heard(group.get());
    m_title(*group, bytes("41 ff"));
    m_title(*group, bytes("41 ff"));
    QCOMPARE(heard.take(), (QStringList {titleSignal("A"), titleSignal("A")}));
}

inline void GroupTextsTest::comparesTheTitleWithTheCleanedOne()
{
    const std::unique_ptr<QObject> group = m_makeGroup();
    m_title(*group, bytes("41 ff"));
    Announcements heard(group.get());
    m_title(*group, bytes("41"));
    QCOMPARE(heard.take(), QStringList());
}

inline void GroupTextsTest::logsTheTitle()
{
    const std::unique_ptr<QObject> group = m_makeGroup();
    LogRecorder log;
    m_title(*group, bytes("41 ff 00"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"41ff00", "\"A\""}));
    m_title(*group, bytes("41"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"41ff00", "\"A\"", "41"}));
    QCOMPARE(log.messages("[ERR]"), QStringList());
}

inline void GroupTextsTest::readsTheLabels_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("labels");

    QTest::newRow("two labels") << bytes("41 42 00 43 00") << "['AB', 'C']";
    QTest::newRow("an empty label") << bytes("00") << "['']";
    QTest::newRow("an empty label between two") << bytes("41 00 00 42 00") << "['A', '', 'B']";
    QTest::newRow("without bytes behind the last zero byte") << bytes("41 00 00 42") << "['A', '']";
    QTest::newRow("no zero byte") << bytes("41 42") << "[]";
    QTest::newRow("without what is no UTF-8") << bytes("41 ff 42 00 ff 00") << "['AB', '']";
}

inline void GroupTextsTest::readsTheLabels()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, labels);

    const std::unique_ptr<QObject> group = m_makeGroup();
    Announcements heard(group.get());
    m_labels(*group, payload);
    QCOMPARE(heard.take(), QStringList {labelsSignal(labels)});
}

inline void GroupTextsTest::announcesLabelsOnlyWhenTheyChange()
{
    const std::unique_ptr<QObject> group = m_makeGroup();
    m_labels(*group, bytes("41 00"));
    Announcements heard(group.get());
    m_labels(*group, bytes("41 00"));
    QCOMPARE(heard.take(), QStringList());
    m_labels(*group, bytes("41 00 42 00"));
    QCOMPARE(heard.take(), QStringList {labelsSignal("['A', 'B']")});
    m_labels(*group, bytes("42 00"));
    QCOMPARE(heard.take(), QStringList {labelsSignal("['B']")});
}

inline void GroupTextsTest::announcesAnEmptyLabelListEachTime()
{
    const std::unique_ptr<QObject> group = m_makeGroup();
    Announcements heard(group.get());
    m_labels(*group, bytes("41"));
    m_labels(*group, bytes("41"));
    QCOMPARE(heard.take(), (QStringList {labelsSignal("[]"), labelsSignal("[]")}));
}

inline void GroupTextsTest::logsTheLabels()
{
    const std::unique_ptr<QObject> group = m_makeGroup();
    LogRecorder log;
    m_labels(*group, bytes("41 00"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"(\"A\")", "(\"A\")"}));
    m_labels(*group, bytes("41 00"));
    QCOMPARE(log.messages("[DBG]"), (QStringList {"(\"A\")", "(\"A\")", "(\"A\")"}));
}
