#pragma once

#include "boxsim/scenario/jsontree.h"

#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <vector>

namespace boxsim {

/// The first mistake of a document, by its line.
class Mistakes {
public:
    void add(int line, const QString &text);

    bool none() const { return m_line == 0; }
    int line() const { return m_line; }
    QString text() const { return m_text; }

private:
    int m_line = 0;
    QString m_text;
};

/// A value of a document with the way to it, for checks that say where a mistake is.
///
/// Each reading function notes a mistake when the value is not what it takes, and gives a harmless value
/// then: reading goes on, and what came of it is not used.
class JsonPlace {
public:
    /// The document's outermost value, which is called `subject` in a mistake.
    JsonPlace(const JsonValue &value, const QString &subject, Mistakes *mistakes);

    int line() const { return m_line; }

    const QString &name() const { return m_name; }

    const JsonValue &value() const { return *m_value; }

    /// The value as QVariant: bool, double, QString, QVariantList; an empty map for any object.
    QVariant toVariant() const;

    qint64 wholeNumber(qint64 least, qint64 most) const;
    bool flag() const;

    /// Text without line breaks and the like, and not empty.
    QString oneLine() const;

    /// Bytes as hexadecimal text, blanks between them or not.
    QByteArray bytes() const;

    /// One of the names.
    QString choice(const QStringList &names) const;

    /// The items of a list.
    std::vector<JsonPlace> items() const;

    /// The members of an object, each name once.
    std::vector<JsonPlace> members() const;

    /// Whether this is an object with no members but these, and each once.
    bool isObjectOf(const QStringList &names) const;

    bool has(const QString &name) const;

    /// The member of an object that has it.
    JsonPlace operator[](const QString &name) const;

    /// Those of the names that the object has.
    QStringList present(const QStringList &names) const;

    /// Notes a mistake: what was wrong, with the value's name in front of it.
    void refuse(const QString &what) const;

    /// Notes a mistake in a sentence that has a subject of its own.
    void refuseSaying(const QString &sentence) const;

    /// Notes that the value is not what is taken.
    void expect(const QString &what) const;

private:
    JsonPlace(const JsonValue &value, int line, const QString &way, const QString &name, Mistakes *mistakes);

    QString inside() const;

    const JsonValue *m_value;
    int m_line;
    QString m_way; ///< to the list or object around it
    QString m_name;
    bool m_isRoot = false;
    Mistakes *m_mistakes;
};

} // namespace boxsim
