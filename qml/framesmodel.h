#pragma once

#include <QtCore/QAbstractListModel>
#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QTime>

namespace canbus::qml {

/// The last frames on the line, the newest first, for a ListView.
class FramesModel : public QAbstractListModel {
    Q_OBJECT

public:
    static constexpr int kCapacity = 32;

    enum class Direction {
        Received,
        Sent,
    };

    /// What a delegate reads: `time`, `direction` and `hex`, all texts.
    enum Role {
        TimeRole = Qt::UserRole,
        DirectionRole,
        HexRole,
    };

    explicit FramesModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Adds a frame; beyond the capacity the oldest one goes.
    void add(Direction direction, const QTime &time, const QByteArray &frame);
    void clear();

    /// Bytes as they are shown: "9f 02 21".
    static QString hex(const QByteArray &bytes);

private:
    struct Entry {
        Direction direction;
        QTime time;
        QByteArray frame;
    };

    QList<Entry> m_entries; // the newest first
};

} // namespace canbus::qml
