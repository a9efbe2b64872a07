#include "oneline.h"

namespace canbus {

namespace {

bool breaksLines(QChar character)
{
    return character.category() == QChar::Other_Control || character.category() == QChar::Separator_Line
        || character.category() == QChar::Separator_Paragraph;
}

QString escaped(QChar character)
{
    switch (character.unicode()) {
    case u'\n':
        return QStringLiteral("\\n");
    case u'\r':
        return QStringLiteral("\\r");
    case u'\t':
        return QStringLiteral("\\t");
    default:
        break;
    }
    const int digits = character.unicode() > 0xff ? 4 : 2;
    const QString number = QString::number(character.unicode(), 16).rightJustified(digits, QLatin1Char('0'));
    return (digits == 4 ? QStringLiteral("\\u") : QStringLiteral("\\x")) + number;
}

} // namespace

QString onOneLine(const QString &text)
{
    QString line;
    line.reserve(text.size());
    for (const QChar character : text) {
        if (breaksLines(character))
            line += escaped(character);
        else
            line += character;
    }
    return line;
}

} // namespace canbus
