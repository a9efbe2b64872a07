#include "framesmodel.h"

namespace canbus::qml {

FramesModel::FramesModel(QObject *parent)
    : QAbstractListModel(parent)
{
}

int FramesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_entries.size();
}

QVariant FramesModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Entry &entry = m_entries.at(index.row());
    switch (role) {
    case TimeRole:
        return entry.time.toString(QStringLiteral("HH:mm:ss.zzz"));
    case DirectionRole:
        return entry.direction == Direction::Sent ? QStringLiteral("sent") : QStringLiteral("received");
    case HexRole:
        return hex(entry.frame);
    default:
        return {};
    }
}

QHash<int, QByteArray> FramesModel::roleNames() const
{
    return {{TimeRole, "time"}, {DirectionRole, "direction"}, {HexRole, "hex"}};
}

void FramesModel::add(Direction direction, const QTime &time, const QByteArray &frame)
{
    if (m_entries.size() == kCapacity) {
        beginRemoveRows({}, kCapacity - 1, kCapacity - 1);
        m_entries.removeLast();
        endRemoveRows();
    }
    beginInsertRows({}, 0, 0);
    m_entries.prepend({direction, time, frame});
    endInsertRows();
}

void FramesModel::clear()
{
    beginResetModel();
    m_entries.clear();
    endResetModel();
}

QString FramesModel::hex(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex(' '));
}

} // namespace canbus::qml
