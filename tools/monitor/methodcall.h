#pragma once

#include "outcome.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtCore/QVector>

namespace canbus::monitor {

/// An object by the name that it has in output and in calls.
struct Target {
    QString name;
    QObject *object;
};
using Targets = QVector<Target>;

/// A call that is known to be possible.
struct PreparedCall {
    Target target;
    QMetaMethod method;
    QVariantList arguments; ///< of the method's parameter types
};

/// Reads `GROUP.CONTROL[=ARG,...]` and finds the method that it means, by its name, the number of its
/// arguments and, where several remain, by which of them takes these arguments.
Outcome<PreparedCall> prepareCall(const Targets &targets, const QString &text);

/// Makes the call, on the calling thread, which must be the object's.
/// @return what the method returned; invalid where it returns nothing, or what Qt cannot copy
QVariant invoke(const PreparedCall &call);

} // namespace canbus::monitor
