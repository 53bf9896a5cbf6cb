#pragma once

#include "filterexpression.h"
#include "requestbody.h"
#include "viewdefinition.h"

#include <QJsonArray>

namespace SubjectService {

class ServiceDatabase;

// The rows of one view for one request: the filter text, the view's
// data-source parameters and the order become one SELECT with bound values;
// a cross view is pivoted after the SELECT.
class ViewQuery
{
public:
    // A reply never carries more rows than this, whatever was asked.
    static constexpr int maximumRows = 20000;

    ViewQuery(const ServiceDatabase &database, const ViewDefinition &view);

    // offset and limit select the page; limit 0 means the whole set.
    bool fetch(const RequestBody &body, int offset, int limit, QJsonArray *rows, qint64 *total,
               QString *error) const;
    // For a cross view: the values of the across field that the fetched rows hold.
    QStringList acrossValues() const { return m_acrossValues; }

    // The WHERE and ORDER BY of a request over any table; shared with the
    // list objects of /bas/ds/data.
    static bool whereClause(const RequestBody &body, const ColumnSet &columns,
                            const ViewDefinition *view, SqlFragment *where, QString *error);
    static bool orderClause(const QList<QPair<QString, int>> &order, const QString &defaultOrder,
                            const ColumnSet &columns, QString *sql, QString *error);

private:
    bool fetchCross(const RequestBody &body, int offset, int limit, QJsonArray *rows, qint64 *total,
                    QString *error) const;

    const ServiceDatabase &m_database;
    const ViewDefinition &m_view;
    mutable QStringList m_acrossValues;
};

} // namespace SubjectService
