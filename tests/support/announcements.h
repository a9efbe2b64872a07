#pragma once

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QMetaMethod>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <utility>

/// Records every signal that the object's own class declares, in order, with its arguments as text:
/// "updateGaugeShift(true)", "updateGaugeValue([0, 255])", "updateGaugeComText(['AB', ''])".
///
/// For objects on the test's own thread: what they emit comes directly.
class Announcements : public QObject {
public:
    explicit Announcements(QObject *sender)
    {
        const QMetaObject *type = sender->metaObject();
        for (int i = type->methodOffset(); i < type->methodCount(); ++i) {
            if (type->method(i).methodType() == QMetaMethod::Signal)
                record(sender, type->method(i));
        }
    }

    /// What was emitted since the last call.
    QStringList take() { return std::exchange(m_heard, QStringList()); }

    /// As take(), of this signal alone.
    QStringList take(const QString &signal) { return take().filter(signal + QLatin1Char('(')); }

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override
    {
        const int index = QObject::qt_metacall(call, id, arguments);
        if (index < 0 || call != QMetaObject::InvokeMetaMethod)
            return index;
        m_heard += describe(m_signals.at(index), arguments);
        return -1;
    }

private:
    // The slots are those that qt_metacall() adds behind QObject's own, one for each signal.
    void record(QObject *sender, const QMetaMethod &signal)
    {
        const int slot = QObject::staticMetaObject.methodCount() + m_signals.size();
        m_signals.append(signal);
        QMetaObject::connect(sender, signal.methodIndex(), this, slot, Qt::DirectConnection);
    }

    static QString describe(const QMetaMethod &signal, void **arguments)
    {
        QStringList texts;
        const QList<QByteArray> types = signal.parameterTypes();
        for (int i = 0; i < types.size(); ++i)
            texts += textOf(types.at(i), arguments[i + 1]);
        return QLatin1String(signal.name()) + QLatin1Char('(') + texts.join(QLatin1String(", "))
            + QLatin1Char(')');
    }

    // By the type's name and not through QVariant, which would register the type behind the test's back.
    static QString textOf(const QByteArray &type, const void *value)
    {
        if (type == "int")
            return text(*static_cast<const int *>(value));
        if (type == "bool")
            return text(*static_cast<const bool *>(value));
        if (type == "QString")
            return text(*static_cast<const QString *>(value));
        if (type == "QStringList")
            return text<QString>(*static_cast<const QStringList *>(value));
        if (type == "QList<int>")
            return text<int>(*static_cast<const QList<int> *>(value));
        if (type == "QList<bool>")
            return text<bool>(*static_cast<const QList<bool> *>(value));
        if (type == "QMap<int,bool>")
            return text(*static_cast<const QMap<int, bool> *>(value));
        return QLatin1String("a value of the unknown type ") + QLatin1String(type);
    }

    static QString text(int number) { return QString::number(number); }
    static QString text(bool flag) { return QLatin1String(flag ? "true" : "false"); }
    static QString text(const QString &string) { return QLatin1Char('\'') + string + QLatin1Char('\''); }

    template <class T>
    static QString text(const QList<T> &list)
    {
        QStringList texts;
        for (const T &value : list)
            texts += text(value);
        return QLatin1Char('[') + texts.join(QLatin1String(", ")) + QLatin1Char(']');
    }

    static QString text(const QMap<int, bool> &map)
    {
        QStringList texts;
        for (auto it = map.begin(); it != map.end(); ++it)
            texts += text(it.key()) + QLatin1String(": ") + text(it.value());
        return QLatin1Char('{') + texts.join(QLatin1String(", ")) + QLatin1Char('}');
    }

    QList<QMetaMethod> m_signals;
    QStringList m_heard;
};
