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
/// a flag: no value is formatted and the operands are not even evaluated. Usable on every thread.
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
    uint value;
};
inline Hex hex(quint8 value)
{
    return {value};
}

/// Bytes to be written in Qt's debug form (quoted, with escapes) instead of hexadecimal text.
struct AsIs {
    const QByteArray &bytes;
};
inline AsIs asIs(const QByteArray &bytes)
{
    return {bytes};
}

inline bool isDebugEnabled()
{
    // Gone after the destruction of Qt's statics: then there is nobody to write to.
    const QLoggingCategory *category = QLoggingCategory::defaultCategory();
    return category && category->isDebugEnabled();
}

inline bool isErrorEnabled()
{
    const QLoggingCategory *category = QLoggingCategory::defaultCategory();
    return category && category->isCriticalEnabled();
}

/// One line in the making: collects its values and hands the line over when it goes out of scope.
/// Made by the macros below only.
class CANBUS_EXPORT Line {
public:
    /// @param level  QtDebugMsg or QtCriticalMsg
    Line(QtMsgType level, const Origin &origin);
    ~Line();

    Line &operator<<(const char *text); ///< UTF-8, written without quotes
    Line &operator<<(bool flag);        ///< "true" or "false"
    Line &operator<<(int number);       ///< decimal
    Line &operator<<(Hex number);
    Line &operator<<(const QByteArray &bytes); ///< hexadecimal text, two digits a byte
    Line &operator<<(AsIs raw);

    /// Everything else is written as QDebug writes it (texts in quotes, lists in parentheses).
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

/// A debug or error line of the given operation. A `for` and not an `if`, so that an `else` behind it
/// cannot bind to it.
#define CANBUS_DEBUG_AT(origin)                                                                              \
    for (bool canbusLogs = ::canbus::logging::isDebugEnabled(); canbusLogs; canbusLogs = false)              \
    ::canbus::logging::Line(QtDebugMsg, origin)
#define CANBUS_ERROR_AT(origin)                                                                              \
    for (bool canbusLogs = ::canbus::logging::isErrorEnabled(); canbusLogs; canbusLogs = false)              \
    ::canbus::logging::Line(QtCriticalMsg, origin)

/// A debug or error line of the calling operation.
#define CANBUS_DEBUG() CANBUS_DEBUG_AT(CANBUS_HERE)
#define CANBUS_ERROR() CANBUS_ERROR_AT(CANBUS_HERE)
