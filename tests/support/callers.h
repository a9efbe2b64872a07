#pragma once

#include <QtCore/QList>
#include <QtCore/QMetaMethod>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

/// Calls back from one signal a few times: what is called may have the signal emitted again.
class Caller : public QObject {
public:
    static constexpr int kMostCalls = 3;

    Caller(QObject *speaker, const QMetaMethod &signal, std::function<void()> call)
        : m_signal(speaker->metaObject()->className() + QStringLiteral("::")
                   + QString::fromLatin1(signal.methodSignature()))
        , m_call(std::move(call))
    {
        QMetaObject::connect(speaker, signal.methodIndex(), this, QObject::staticMetaObject.methodCount(),
                             Qt::DirectConnection);
    }

    QString signal() const { return m_signal; }
    int calls() const { return m_calls; }

    // The slot is the one that it adds behind QObject's own.
    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override
    {
        const int index = QObject::qt_metacall(call, id, arguments);
        if (index < 0 || call != QMetaObject::InvokeMetaMethod)
            return index;
        if (++m_calls <= kMostCalls)
            m_call();
        return -1;
    }

private:
    QString m_signal;
    std::function<void()> m_call;
    int m_calls = 0;
};

using Callers = std::vector<std::unique_ptr<Caller>>;

/// Calls back from every signal of each of these, directly.
inline Callers connectCallers(const QList<QObject *> &all, const std::function<void()> &call)
{
    Callers callers;
    for (QObject *speaker : all) {
        const QMetaObject *type = speaker->metaObject();
        for (int index = QObject::staticMetaObject.methodCount(); index < type->methodCount(); ++index) {
            const QMetaMethod signal = type->method(index);
            if (signal.methodType() == QMetaMethod::Signal)
                callers.push_back(std::make_unique<Caller>(speaker, signal, call));
        }
    }
    return callers;
}
