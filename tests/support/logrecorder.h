#pragma once

#include <QtCore/QList>
#include <QtCore/QLoggingCategory>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <utility>

/// One message as it reached Qt's message handler.
struct LogLine {
    QtMsgType type;
    QString category;
    QString text;
};

/// Records everything that is logged on any thread while it exists, with debug lines switched on.
///
/// The library's own lines are kept off the test's output; all others are passed on as well. One at a time.
class LogRecorder {
public:
    LogRecorder()
        : m_debugWasEnabled(QLoggingCategory::defaultCategory()->isDebugEnabled())
    {
        clear();
        former() = qInstallMessageHandler(&LogRecorder::handle);
        QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, true);
    }

    ~LogRecorder()
    {
        QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, m_debugWasEnabled);
        qInstallMessageHandler(former());
    }

    /// All messages so far, in the order of their arrival.
    QList<LogLine> lines() const
    {
        QMutexLocker lock(&store().mutex);
        QList<LogLine> copy = store().lines;
        copy.detach(); // what is shared, a thread that goes on logging would change
        return copy;
    }

    /// What stands behind the separator "--" in the lines of this level, in order.
    /// @param tag  "[DBG]" or "[ERR]"
    QStringList messages(const QString &tag) const
    {
        QStringList found;
        for (const LogLine &line : lines()) {
            if (line.text.startsWith(tag))
                found += line.text.section(QStringLiteral(" -- "), 1);
        }
        return found;
    }

    /// How many messages of this level contain the text.
    int count(const QString &tag, const QString &text) const { return messages(tag).filter(text).size(); }

    /// Whether a message of this level contains the text.
    bool contains(const QString &tag, const QString &text) const { return count(tag, text) > 0; }

    void clear()
    {
        QMutexLocker lock(&store().mutex);
        store().lines.clear();
    }

private:
    Q_DISABLE_COPY(LogRecorder)

    struct Store {
        QMutex mutex; // guards lines
        QList<LogLine> lines;
    };

    static Store &store()
    {
        // Never destroyed: a thread may still be logging when the test program ends.
        static Store *const it = new Store;
        return *it;
    }

    static QtMessageHandler &former()
    {
        static QtMessageHandler handler = nullptr;
        return handler;
    }

    /// One compiler names a function f(const T&), another one f(const T &): here all read like the first.
    static QString spelledAlike(const QString &text)
    {
        const int end = text.indexOf(QLatin1String(" -- "));
        QString function = text.left(end);
        function.replace(QLatin1String(" &"), QLatin1String("&"))
            .replace(QLatin1String(" *"), QLatin1String("*"));
        return end < 0 ? text : function + text.mid(end);
    }

    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        {
            QMutexLocker lock(&store().mutex);
            store().lines.append({type, QString::fromUtf8(context.category), spelledAlike(text)});
        }
        const bool ours =
            text.startsWith(QLatin1String("[DBG] ")) || text.startsWith(QLatin1String("[ERR] "));
        if (!ours && former())
            former()(type, context, text);
    }

    bool m_debugWasEnabled;
};
