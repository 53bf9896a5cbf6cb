#include "requesthandler.h"

#include "catalogue.h"
#include "configurationdocument.h"
#include "requestbody.h"
#include "servicedatabase.h"
#include "viewquery.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace SubjectService {

namespace {

constexpr int kNavigationObject = 38;
constexpr int kBlockObject = 43;
constexpr int kConstantObject = 390;

QByteArray failure(const QString &msg)
{
    qDebug() << "request refused:" << msg;
    return RequestHandler::envelope(0, msg, QJsonValue::Null);
}

} // namespace

RequestHandler::RequestHandler(const Catalogue &catalogue, const ServiceDatabase &database)
    : m_catalogue(catalogue), m_database(database)
{
}

QByteArray RequestHandler::envelope(int state, const QString &msg, const QJsonValue &data)
{
    QJsonObject o;
    o.insert(QStringLiteral("state"), state);
    o.insert(QStringLiteral("msg"), msg);
    o.insert(QStringLiteral("extend"), QJsonValue::Null);
    o.insert(QStringLiteral("data"), data);
    return QJsonDocument(o).toJson(QJsonDocument::Compact);
}

QByteArray RequestHandler::subjectData(const QByteArray &json) const
{
    RequestBody body;
    QString error;
    if (!RequestBody::read(json, &body, &error))
        return failure(error);
    if (!body.hasViewId)
        return failure(QStringLiteral("obj_vw_id is missing"));
    if (!body.hasFlag)
        return failure(QStringLiteral("flag is missing"));
    return viewReply(body);
}

QByteArray RequestHandler::viewReply(const RequestBody &body) const
{
    const ViewDefinition *view = m_catalogue.view(body.viewId);
    if (!view)
        return failure(QStringLiteral("unknown view: %1").arg(body.viewId));

    const int viewPageSize = view->properties.value(QLatin1String("pageSize")).toVariant().toInt();
    qint64 firstRow = 0;
    int limit = 0;
    int pageIndex = 1;
    if (body.flag == 0) {
        pageIndex = body.hasPaging ? body.page : 1;
        limit = body.hasPaging ? body.size : (viewPageSize > 0 ? viewPageSize : 200);
        firstRow = qint64(pageIndex - 1) * limit;
    } else if (body.flag == 1 && body.hasPaging) {
        pageIndex = body.page;
        limit = body.size;
        firstRow = qint64(pageIndex - 1) * limit;
    }
    if (firstRow + limit > 2000000000)
        return failure(QStringLiteral("page out of range"));
    const int offset = int(firstRow);

    ViewQuery query(m_database, *view);
    QJsonArray rows;
    qint64 total = 0;
    QString error;
    if (!query.fetch(body, offset, limit, &rows, &total, &error))
        return failure(error);

    ConfigurationDocument::Paging paging;
    paging.rowCount = total;
    paging.pageIndex = pageIndex;
    paging.pageSize = limit > 0 ? limit : int(rows.size());
    const QJsonArray gridColumns = view->hasCross
                                       ? ConfigurationDocument::gridColumns(*view, query.acrossValues())
                                       : QJsonArray();
    const QJsonArray summary = ConfigurationDocument::summary(paging, gridColumns);

    if (body.flag == 1) {
        QJsonObject page;
        page.insert(QStringLiteral("Data"), rows);
        page.insert(QStringLiteral("Summary"), summary);
        return envelope(1, QString(), page);
    }
    return envelope(1, QString(), ConfigurationDocument::document(*view, rows, summary));
}

QByteArray RequestHandler::dataSourceData(const QByteArray &json) const
{
    RequestBody body;
    QString error;
    if (!RequestBody::read(json, &body, &error))
        return failure(error);
    if (!body.hasObjId) {
        if (body.objName.isEmpty())
            return failure(QStringLiteral("neither objId nor objName"));
        return listReply(body);
    }
    switch (body.objId) {
    case kNavigationObject: {
        const QJsonValue rootValue = body.parameters.value(QLatin1String("P_NODE_CODE"));
        const qint64 root = qint64(rootValue.toVariant().toLongLong());
        if (!rootValue.isDouble() && !(rootValue.isString() && QString::number(root) == rootValue.toString()))
            return failure(QStringLiteral("P_NODE_CODE must be a number"));
        QJsonArray rows;
        if (!m_catalogue.navigationRows(root, m_serviceBase, &rows))
            return failure(QStringLiteral("unknown navigation root: %1").arg(root));
        // The terminal fills its cache of constants from this reply, so the
        // constants travel along as rows that attach to no node of the tree.
        QJsonArray constants;
        QString constantsError;
        if (m_database.select(QStringLiteral("SELECT VALUE, NAME, TYPE, TYPE_DESC, FILTER1 FROM constant ORDER BY rowid"),
                              {}, &constants, &constantsError)) {
            for (const QJsonValue &c : qAsConst(constants)) {
                QJsonObject row = c.toObject();
                row.insert(QStringLiteral("NODE_CODE"), -1);
                row.insert(QStringLiteral("P_NODE_CODE"), -2);
                rows.append(row);
            }
        }
        return envelope(1, QString(), rows);
    }
    case kBlockObject:
        return tableReply(QStringLiteral("block"), body, QStringLiteral("SECT_ID"));
    case kConstantObject:
        return tableReply(QStringLiteral("constant"), body, QString());
    default:
        return failure(QStringLiteral("unknown objId: %1").arg(body.objId));
    }
}

QByteArray RequestHandler::tableReply(const QString &table, const RequestBody &body, const QString &order) const
{
    const ColumnSet columns = m_database.columns(table);
    SqlFragment where;
    QString orderSql;
    QString error;
    if (!ViewQuery::whereClause(body, columns, nullptr, &where, &error)
        || !ViewQuery::orderClause(body.order, order, columns, &orderSql, &error))
        return failure(error);
    QJsonArray rows;
    if (!m_database.select(QStringLiteral("SELECT * FROM \"%1\"").arg(m_database.tableName(table)) + where.sql + orderSql,
                           where.bindings, &rows, &error))
        return failure(error);
    return envelope(1, QString(), rows);
}

QByteArray RequestHandler::listReply(const RequestBody &body) const
{
    const ListSpec *list = m_catalogue.list(body.objName);
    if (!list)
        return failure(QStringLiteral("unknown objName: %1").arg(body.objName));
    const ColumnSet columns = m_database.columns(list->source);
    SqlFragment where;
    QString error;
    if (!ViewQuery::whereClause(body, columns, nullptr, &where, &error))
        return failure(error);
    QJsonArray rows;
    // A list is a set of names; the control sorts it by name anyway.
    const QString sql = QStringLiteral("SELECT DISTINCT \"%1\" AS NAME, \"%2\" AS VALUE FROM \"%3\"")
                            .arg(columns.value(list->nameColumn.toUpper()).name,
                                 columns.value(list->valueColumn.toUpper()).name,
                                 m_database.tableName(list->source));
    if (!m_database.select(sql + where.sql + QStringLiteral(" ORDER BY NAME"), where.bindings, &rows, &error))
        return failure(error);
    return envelope(1, QString(), rows);
}

} // namespace SubjectService
