#include "text.h"

namespace canbus {

void splitZeroTerminated(QStringList &list, const QByteArray &data, int from)
{
    for (int end = data.indexOf('\0', from); end != -1; end = data.indexOf('\0', from)) {
        QString text = QString::fromUtf8(data.constData() + from, end - from);
        removeReplacementCharacters(text);
        list.append(text);
        from = end + 1;
    }
}

void removeReplacementCharacters(QString &text)
{
    text.remove(QChar(QChar::ReplacementCharacter));
}

QString textUpToZero(const QByteArray &data, int from)
{
    if (from < 0 || from >= data.size())
        return {};
    const int end = data.indexOf('\0', from);
    return QString::fromUtf8(data.constData() + from, (end == -1 ? data.size() : end) - from);
}

} // namespace canbus
