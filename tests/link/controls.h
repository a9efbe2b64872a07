#pragma once

#include "chance.h"

#include <QtCore/QByteArray>
#include <QtCore/QMetaMethod>
#include <QtCore/QVector>

/// Every control that the library offers to the user interface and that sends something, found through the
/// meta-object system, with the arguments that it can have.
class Controls {
public:
    Controls();

    int count() const { return m_controls.size(); }

    /// Uses one of them, with any arguments. @return its name
    QByteArray use(Chance &chance) const;

    /// Plays the host: another display, reverse gear, a clock that is not to be trusted.
    static QByteArray playHost(Chance &chance);

    /// Asks a group or the facade for all that it holds. It may announce anything.
    static QByteArray askForAll(Chance &chance);

private:
    struct Control {
        QObject *object;
        QMetaMethod method;
    };

    void addFrom(QObject *object);

    QVector<Control> m_controls;
};
