#pragma once

#include "canbusexport.h"

#include <QtCore/QByteArray>
#include <QtCore/QDebug>
#include <QtCore/QLoggingCategory>
#include <QtCore/QString>

/// Logging in the library's common form, one line a message:
///
///     [DBG] 4711 void canbus::CanBusPlayer::init(canbus::CanbusProtocol*) 62 -- can uart is open
///
/// that is the level tag, the kernel's id of the calling thread, the full signature of the operation, the
/// source line, "--", the message and its values. Lines go to the Qt message handler in the category
/// "default": debug lines at debug level, error lines at critical level.
///
/// Usage: `CANBUS_DEBUG() << "retry" << count;`. While a level is switched off, its line costs the test of
/// a flag: no value is formatted and the operands are not even evaluated.
///
/// @thread{Any.}
namespace canbus::logging {

/// The operation on whose behalf a line is written. Shared code takes it from its caller, so that a line
/// names the operation that the reader of the log knows.
struct Origin {
    const char *file;      ///< source file, static storage
    int line;              ///< source line
    const char *signature; ///< full function signature, static storage
};

/// A number to be written in hexadecimal digits, without prefix or padding.
struct Hex {
    /// The number.
    uint value;
};
/// Marks a byte to be written in hexadecimal digits.
/// @param value  the byte
/// @return for `<<`
/// @thread{Any.}
inline Hex hex(quint8 value)
{
    return {value};
}

/// Bytes to be written in Qt's debug form (quoted, with escapes) instead of hexadecimal text.
struct AsIs {
    /// The bytes, which must outlive the line.
    const QByteArray &bytes;
};
/// Marks bytes to be written in Qt's debug form.
/// @param bytes  any; they must outlive the line
/// @return for `<<`
/// @thread{Any.}
inline AsIs asIs(const QByteArray &bytes)
{
    return {bytes};
}

/// Whether debug lines are written.
/// @return false also when the process is so far at its end that nobody could write them
/// @thread{Any.}
inline bool isDebugEnabled()
{
    // Gone after the destruction of Qt's statics: then there is nobody to write to.
    const QLoggingCategory *category = QLoggingCategory::defaultCategory();
    return category && category->isDebugEnabled();
}

/// Whether error lines are written.
/// @return false also when the process is so far at its end that nobody could write them
/// @thread{Any.}
inline bool isErrorEnabled()
{
    const QLoggingCategory *category = QLoggingCategory::defaultCategory();
    return category && category->isCriticalEnabled();
}

/// One line in the making: collects its values and hands the line over when it goes out of scope.
/// Made by the macros below only.
///
/// @thread{That of its maker; any.}
class CANBUS_EXPORT Line {
public:
    /// Begins with the common form's head.
    /// @param level  QtDebugMsg or QtCriticalMsg
    /// @param origin  the operation that the line is written for
    Line(QtMsgType level, const Origin &origin);
    /// Hands the line to Qt's message handler.
    ~Line();

    /// Adds a text without quotes.
    /// @param text  UTF-8, zero-terminated
    /// @return the line
    Line &operator<<(const char *text);
    /// Adds "true" or "false".
    /// @param flag  any
    /// @return the line
    Line &operator<<(bool flag);
    /// Adds a decimal number.
    /// @param number  any
    /// @return the line
    Line &operator<<(int number);
    /// Adds a number in hexadecimal digits.
    /// @param number  as hex() makes it
    /// @return the line
    Line &operator<<(Hex number);
    /// Adds bytes as hexadecimal text, two digits a byte.
    /// @param bytes  any
    /// @return the line
    Line &operator<<(const QByteArray &bytes);
    /// Adds bytes in Qt's debug form.
    /// @param raw  as asIs() makes it
    /// @return the line
    Line &operator<<(AsIs raw);

    /// Adds everything else as QDebug writes it (texts in quotes, lists in parentheses).
    /// @param value  of a type that QDebug can write
    /// @return the line
    template <class T>
    Line &operator<<(const T &value)
    {
        m_text += QLatin1Char(' ');
        QDebug(&m_text).nospace() << value;
        return *this;
    }

private:
    Q_DISABLE_COPY(Line)

    QtMsgType m_level;
    Origin m_origin;
    QString m_text;
};

} // namespace canbus::logging

/// The calling operation as an Origin.
#define CANBUS_HERE (::canbus::logging::Origin {__FILE__, __LINE__, Q_FUNC_INFO})

// A `for` and not an `if`, so that an `else` behind it cannot bind to it.

/// A debug line of the given operation.
/// @param origin  a logging::Origin
/// @thread{Any.}
#define CANBUS_DEBUG_AT(origin)                                                                              \
    for (bool canbusLogs = ::canbus::logging::isDebugEnabled(); canbusLogs; canbusLogs = false)              \
    ::canbus::logging::Line(QtDebugMsg, origin)
/// An error line of the given operation.
/// @param origin  a logging::Origin
/// @thread{Any.}
#define CANBUS_ERROR_AT(origin)                                                                              \
    for (bool canbusLogs = ::canbus::logging::isErrorEnabled(); canbusLogs; canbusLogs = false)              \
    ::canbus::logging::Line(QtCriticalMsg, origin)

/// A debug line of the calling operation.
/// @thread{Any.}
#define CANBUS_DEBUG() CANBUS_DEBUG_AT(CANBUS_HERE)
/// An error line of the calling operation.
/// @thread{Any.}
#define CANBUS_ERROR() CANBUS_ERROR_AT(CANBUS_HERE)
