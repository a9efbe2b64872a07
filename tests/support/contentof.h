#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>

/// The content of a file, which has to be there.
inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
    return file.readAll();
}
