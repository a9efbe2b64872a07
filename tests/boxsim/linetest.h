#pragma once

#include "boxsim/line/line.h"

#include <QtCore/QTemporaryDir>

#include <memory>

/// A test of the box's end of a line: each test function has a folder of its own for the link.
class LineTest : public QObject {
protected:
    void makeFolder()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        if (!m_folder->isValid())
            qFatal("%s", qPrintable(m_folder->errorString()));
        m_link = m_folder->filePath("box");
    }

    /// Opens a pseudo-terminal behind the link.
    std::unique_ptr<boxsim::Line> open() const
    {
        QString error;
        std::unique_ptr<boxsim::Line> line = boxsim::openPty(m_link, &error);
        if (!line)
            qWarning("%s", qPrintable(error));
        return line;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_link;
};
