#pragma once

#include "canbusexport.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QMutex>
#include <QtCore/QObject>
#include <QtCore/QSet>
#include <QtCore/QVariant>

#include <initializer_list>

namespace canbus {

/// The last frame of each category that the box has sent. A command carries the id of the last frame of its
/// category, and takes it from here.
///
/// A record is a list of byte arrays: the frame's id, its sub-type in the categories that have one (climate,
/// gauges, vehicle, parking assist), its payload. Records are added and replaced, never removed.
///
/// The parser thread writes, the main thread reads: a lock of its own guards the map, and what is returned
/// is the caller's. Made on first use, destroyed when the process exits.
///
/// @thread{Any.}
class CANBUS_EXPORT CanBusDataMap : public QObject {
    Q_OBJECT

public:
    /// The one map.
    /// @return never null
    static CanBusDataMap *instance();

    /// Stores a category's record in the place of the former.
    /// @param id  the category, 0..255
    /// @param list  the record
    void setData(unsigned char id, QList<QVariant> list);

    /// As setData(), for a record of byte arrays: it takes the place of the former item by item.
    /// @param id  the category, 0..255
    /// @param fields  the record
    void setRecord(unsigned char id, std::initializer_list<QByteArray> fields);

    /// The id of the category's last frame.
    /// @param id  the category, 0..255
    /// @return one byte, or none when there was no frame
    QByteArray getId(unsigned char id);

    /// The category's record.
    /// @param id  the category, 0..255
    /// @return an empty list when there is none
    QList<QVariant> getData(unsigned char id);

    /// Whether the category has a record.
    /// @param id  the category, 0..255
    /// @return true also for an empty record
    bool isHasData(unsigned char id);

private:
    CanBusDataMap() = default;

    QMutex m_mutex;                       // guards all below
    QMap<int, QList<QVariant>> m_records; // keyed by the category, widened without sign
    QSet<int> m_shared;                   // whose list somebody else has or had, too
};

} // namespace canbus
