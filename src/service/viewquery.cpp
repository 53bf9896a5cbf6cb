#include "viewquery.h"

#include <algorithm>

#include "servicedatabase.h"

#include <QJsonObject>
#include <QMap>

namespace SubjectService {

namespace {

bool isEmptyParameter(const QJsonValue &value)
{
    return value.isNull() || value.isUndefined() || (value.isString() && value.toString().isEmpty())
           || (value.isArray() && value.toArray().isEmpty());
}

bool parameterCondition(const ParameterSpec &p, const QJsonValue &value, const ColumnSet &columns,
                        SqlFragment *out, QString *error)
{
    if (!p.search.isEmpty()) {
        if (!value.isString() && !value.isDouble()) {
            *error = QStringLiteral("value of wrong type for %1: a text is expected").arg(p.key);
            return false;
        }
        QStringList parts;
        for (const QString &column : p.search) {
            SqlFragment piece;
            if (!FilterExpression::translateCondition(columns.value(column.toUpper()), QStringLiteral("like"),
                                                      value, &piece, error))
                return false;
            parts << piece.sql;
            out->bindings << piece.bindings;
        }
        out->sql = QLatin1Char('(') + parts.join(QLatin1String(" OR ")) + QLatin1Char(')');
        return true;
    }
    if (!p.blockColumn.isEmpty()) {
        if (!value.isArray()) {
            *error = QStringLiteral("value of wrong type for %1: a list of sector codes is expected").arg(p.key);
            return false;
        }
        ColumnInfo sector{QStringLiteral("SECT_ID"), ColumnKind::Integer};
        SqlFragment in;
        if (!FilterExpression::translateCondition(sector, QStringLiteral("in"), value, &in, error))
            return false;
        out->sql = QStringLiteral("\"%1\" IN (SELECT SECU_ID FROM block_member WHERE %2)")
                       .arg(columns.value(p.blockColumn.toUpper()).name, in.sql);
        out->bindings = in.bindings;
        return true;
    }
    const QString op = value.isArray() && p.op == QLatin1String("==") ? QStringLiteral("in") : p.op;
    return FilterExpression::translateCondition(columns.value(p.column.toUpper()), op, value, out, error);
}

} // namespace

ViewQuery::ViewQuery(const ServiceDatabase &database, const ViewDefinition &view)
    : m_database(database), m_view(view)
{
}

bool ViewQuery::whereClause(const RequestBody &body, const ColumnSet &columns, const ViewDefinition *view,
                            SqlFragment *where, QString *error)
{
    QList<FilterCondition> conditions;
    if (!FilterExpression::parse(body.filter, &conditions, error))
        return false;
    // The page asks for a view's configuration with the filters of the view it
    // showed before; conditions on fields this view doesn't have are left out.
    if (view && body.hasFlag && body.flag == 0) {
        conditions.erase(std::remove_if(conditions.begin(), conditions.end(),
                                        [&columns](const FilterCondition &c) {
                                            return !columns.contains(c.field.toUpper());
                                        }),
                         conditions.end());
    }
    SqlFragment filter;
    if (!FilterExpression::translate(conditions, body.filterParams, columns, &filter, error))
        return false;
    QStringList parts;
    if (!filter.sql.isEmpty())
        parts << filter.sql;
    where->bindings = filter.bindings;
    if (view) {
        for (auto it = body.parameters.constBegin(); it != body.parameters.constEnd(); ++it) {
            const auto declared = view->parameters.constFind(it.key());
            if (declared == view->parameters.constEnd() || isEmptyParameter(it.value()))
                continue;
            SqlFragment piece;
            if (!parameterCondition(declared.value(), it.value(), columns, &piece, error))
                return false;
            parts << piece.sql;
            where->bindings << piece.bindings;
        }
    }
    where->sql = parts.isEmpty() ? QString() : QStringLiteral(" WHERE ") + parts.join(QLatin1String(" AND "));
    return true;
}

bool ViewQuery::orderClause(const QList<QPair<QString, int>> &order, const QString &defaultOrder,
                            const ColumnSet &columns, QString *sql, QString *error)
{
    QList<QPair<QString, int>> terms = order;
    if (terms.isEmpty()) {
        for (const QString &term : defaultOrder.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            const QStringList parts = term.split(QLatin1Char(' '), Qt::SkipEmptyParts);
            terms.append({parts.value(0), parts.value(1).compare(QLatin1String("DESC"), Qt::CaseInsensitive) == 0 ? -1 : 1});
        }
    }
    QStringList pieces;
    for (const auto &term : qAsConst(terms)) {
        const auto column = columns.constFind(term.first.toUpper());
        if (column == columns.constEnd()) {
            *error = QStringLiteral("unknown field in order: %1").arg(term.first);
            return false;
        }
        pieces << QStringLiteral("\"%1\" %2").arg(column->name, term.second < 0 ? QLatin1String("DESC") : QLatin1String("ASC"));
    }
    // A stable order, so that pages never overlap; running the same way as the
    // first term lets SQLite walk an index on that column instead of sorting.
    pieces << (!terms.isEmpty() && terms.first().second < 0 ? QStringLiteral("rowid DESC") : QStringLiteral("rowid"));
    *sql = QStringLiteral(" ORDER BY ") + pieces.join(QLatin1String(", "));
    return true;
}

bool ViewQuery::fetch(const RequestBody &body, int offset, int limit, QJsonArray *rows, qint64 *total,
                      QString *error) const
{
    if (m_view.hasCross)
        return fetchCross(body, offset, limit, rows, total, error);

    const ColumnSet columns = m_database.columns(m_view.source);
    const QString table = m_database.tableName(m_view.source);
    SqlFragment where;
    QString order;
    if (!whereClause(body, columns, &m_view, &where, error)
        || !orderClause(body.order, m_view.defaultOrder, columns, &order, error))
        return false;

    QStringList selected;
    for (const QString &field : m_view.sourceFields())
        selected << QStringLiteral("\"%1\"").arg(columns.value(field.toUpper()).name);

    // The ordered rowids of the whole result are fetched once per filter and
    // order; a page is then its slice of them, looked up by rowid.
    const QString from = QStringLiteral(" FROM \"%1\"").arg(table);
    const ServiceDatabase::RowIds ids =
        m_database.selectRowIds(QStringLiteral("SELECT rowid") + from + where.sql + order, where.bindings, error);
    if (!ids)
        return false;
    *total = ids->size();
    const int pageLimit = limit <= 0 ? maximumRows : qMin(limit, maximumRows);
    const int first = qMin(offset, ids->size());
    const int last = int(qMin(qint64(first) + pageLimit, qint64(ids->size())));
    if (first >= last)
        return true;
    QVariantList bindings;
    QStringList marks;
    for (int i = first; i < last; ++i) {
        bindings << ids->at(i);
        marks << QStringLiteral("?");
    }
    QJsonArray unordered;
    if (!m_database.select(QStringLiteral("SELECT rowid AS \"__rowid\",") + selected.join(QLatin1Char(',')) + from
                               + QStringLiteral(" WHERE rowid IN (") + marks.join(QLatin1Char(',')) + QLatin1Char(')'),
                           bindings, &unordered, error))
        return false;
    QHash<qint64, QJsonObject> byId;
    for (const QJsonValue &value : qAsConst(unordered)) {
        QJsonObject row = value.toObject();
        const qint64 id = qint64(row.take(QLatin1String("__rowid")).toDouble());
        byId.insert(id, row);
    }
    for (int i = first; i < last; ++i)
        rows->append(byId.value(ids->at(i)));
    return true;
}

bool ViewQuery::fetchCross(const RequestBody &body, int offset, int limit, QJsonArray *rows, qint64 *total,
                           QString *error) const
{
    const ColumnSet columns = m_database.columns(m_view.source);
    SqlFragment where;
    QString order;
    QList<QPair<QString, int>> terms = body.order;
    for (const ColumnSpec &c : m_view.cross.rows) {
        // The pivot keeps the order in which row keys first appear.
        bool present = false;
        for (const auto &t : qAsConst(terms))
            present = present || t.first.compare(c.field, Qt::CaseInsensitive) == 0;
        if (!present)
            terms.append({c.field, 1});
    }
    terms.append({m_view.cross.across, 1});
    if (!whereClause(body, columns, &m_view, &where, error)
        || !orderClause(terms, QString(), columns, &order, error))
        return false;

    QStringList selected;
    for (const QString &field : m_view.sourceFields())
        selected << QStringLiteral("\"%1\"").arg(columns.value(field.toUpper()).name);
    QJsonArray source;
    if (!m_database.select(QStringLiteral("SELECT %1 FROM \"%2\"%3%4")
                               .arg(selected.join(QLatin1Char(',')), m_database.tableName(m_view.source), where.sql, order),
                           where.bindings, &source, error))
        return false;

    QList<QString> keys;
    QMap<QString, QJsonObject> pivot;
    QStringList across;
    for (const QJsonValue &value : qAsConst(source)) {
        const QJsonObject row = value.toObject();
        QStringList keyParts;
        for (const ColumnSpec &c : m_view.cross.rows)
            keyParts << row.value(c.field).toVariant().toString();
        const QString key = keyParts.join(QChar(0x1f));
        if (!pivot.contains(key)) {
            keys.append(key);
            QJsonObject out;
            for (const ColumnSpec &c : m_view.cross.rows)
                out.insert(c.field, row.value(c.field));
            for (const QString &f : m_view.dataFields)
                out.insert(f, row.value(f));
            pivot.insert(key, out);
        }
        const QJsonValue acrossValue = row.value(m_view.cross.across);
        const QString acrossText = acrossValue.isDouble() ? QString::number(qint64(acrossValue.toDouble()))
                                                          : acrossValue.toString();
        if (!across.contains(acrossText))
            across.append(acrossText);
        QJsonObject &out = pivot[key];
        for (const ColumnSpec &c : m_view.cross.values)
            out.insert(acrossText + QStringLiteral("__") + c.field, row.value(c.field));
    }
    std::sort(across.begin(), across.end());
    m_acrossValues = across;
    *total = keys.size();
    const int end = limit <= 0 ? qMin(keys.size(), offset + maximumRows) : qMin(keys.size(), offset + limit);
    for (int i = offset; i < end; ++i)
        rows->append(pivot.value(keys.at(i)));
    return true;
}

} // namespace SubjectService
