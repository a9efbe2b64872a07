#include "fieldrows.h"

namespace boxsim {

const QVector<FieldRow> &fieldRows()
{
    static const QVector<FieldRow> rows = versionRows() + screensRows() + climateRows() + gaugesRows()
        + vehicleRows() + parkingRows() + textScreenRows() + measuredRows() + faultRows();
    return rows;
}

const QVector<Field> &allFields()
{
    static const QVector<Field> fields = [] {
        QVector<Field> list;
        for (const FieldRow &row : fieldRows())
            list.append(row.field);
        return list;
    }();
    return fields;
}

} // namespace boxsim
