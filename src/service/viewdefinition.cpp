#include "viewdefinition.h"

namespace SubjectService {

namespace {

const QMap<QString, QString> &columnKinds()
{
    static const QMap<QString, QString> kinds = {
        {QStringLiteral("unit"), QStringLiteral("BandedGridColumnWithUnit")},
        {QStringLiteral("link"), QStringLiteral("HyperLinkEdit")},
        {QStringLiteral("memo"), QStringLiteral("MemoExEdit")},
        {QStringLiteral("rating"), QStringLiteral("BandedGridColumnWithRating")},
    };
    return kinds;
}

bool readColumn(const QJsonObject &o, ColumnSpec *c, QString *error)
{
    c->isBand = o.contains(QLatin1String("band"));
    c->field = c->isBand ? o.value(QLatin1String("band")).toString() : o.value(QLatin1String("field")).toString();
    if (c->field.isEmpty()) {
        *error = QStringLiteral("a column without field or band name");
        return false;
    }
    c->caption = o.value(QLatin1String("caption")).toString();
    c->valueType = o.value(QLatin1String("type")).toString(c->isBand ? QString() : QStringLiteral("String"));
    c->width = o.value(QLatin1String("width")).toInt();
    c->format = o.value(QLatin1String("format")).toString();
    c->align = o.value(QLatin1String("align")).toInt();
    c->hidden = o.value(QLatin1String("hidden")).toBool();
    c->status = o.value(QLatin1String("status")).toString(QStringLiteral("1"));
    const QString kind = o.value(QLatin1String("kind")).toString();
    c->columnType = c->isBand ? QStringLiteral("Band") : columnKinds().value(kind, kind);
    c->url = o.value(QLatin1String("url")).toString();
    const QJsonObject unit = o.value(QLatin1String("unit")).toObject();
    if (!unit.isEmpty()) {
        c->unitCategory = unit.value(QLatin1String("category")).toInt();
        c->showUnitFactor = qint64(unit.value(QLatin1String("factor")).toDouble(1));
        c->prevUnitFactor = qint64(unit.value(QLatin1String("prev")).toDouble(1));
        c->showUnit = unit.value(QLatin1String("show")).toString();
        c->captionShowType = unit.value(QLatin1String("captionShow")).toInt(1);
        if (!c->isBand && kind.isEmpty())
            c->columnType = columnKinds().value(QStringLiteral("unit"));
    }
    c->expression = o.value(QLatin1String("expression")).toString();
    c->cellStyle = o.value(QLatin1String("style")).toString();
    c->noSort = o.value(QLatin1String("noSort")).toBool();
    c->statExpression = o.value(QLatin1String("stat")).toString();
    const QJsonArray children = o.value(QLatin1String("columns")).toArray();
    for (const QJsonValue &child : children) {
        ColumnSpec column;
        if (!readColumn(child.toObject(), &column, error))
            return false;
        c->children.append(column);
    }
    if (c->isBand && c->children.isEmpty()) {
        *error = QStringLiteral("band %1 has no columns").arg(c->field);
        return false;
    }
    return true;
}

bool readColumns(const QJsonArray &array, QList<ColumnSpec> *out, QString *error)
{
    for (const QJsonValue &value : array) {
        ColumnSpec column;
        if (!readColumn(value.toObject(), &column, error))
            return false;
        out->append(column);
    }
    return true;
}

void collectLeaves(const QList<ColumnSpec> &columns, QList<const ColumnSpec *> *out)
{
    for (const ColumnSpec &c : columns) {
        if (c.isBand)
            collectLeaves(c.children, out);
        else
            out->append(&c);
    }
}

} // namespace

QList<const ColumnSpec *> ViewDefinition::leaves() const
{
    QList<const ColumnSpec *> out;
    collectLeaves(columns, &out);
    return out;
}

QStringList ViewDefinition::sourceFields() const
{
    QStringList fields;
    auto add = [&fields](const QString &field) {
        if (!field.isEmpty() && !fields.contains(field, Qt::CaseInsensitive))
            fields.append(field);
    };
    if (hasCross) {
        for (const ColumnSpec &c : cross.rows)
            add(c.field);
        add(cross.across);
        for (const ColumnSpec &c : cross.values)
            add(c.field);
    } else {
        for (const ColumnSpec *c : leaves()) {
            if (c->expression.isEmpty())
                add(c->field);
        }
    }
    for (const QString &f : dataFields)
        add(f);
    if (isChart()) {
        add(chart.value(QLatin1String("XFieldName")).toString());
        const QJsonArray series = chart.value(QLatin1String("ChartDataConfigs")).toArray();
        for (const QJsonValue &s : series)
            add(s.toObject().value(QLatin1String("FieldName")).toString());
    }
    return fields;
}

bool ViewDefinition::fromJson(const QJsonObject &o, ViewDefinition *view, QString *error)
{
    *view = ViewDefinition();
    view->id = qint64(o.value(QLatin1String("id")).toDouble());
    view->name = o.value(QLatin1String("name")).toString();
    view->topic = qint64(o.value(QLatin1String("topic")).toDouble());
    view->source = o.value(QLatin1String("source")).toString();
    view->defaultOrder = o.value(QLatin1String("defaultOrder")).toString();
    view->properties = o.value(QLatin1String("properties")).toObject();
    if (view->id <= 0 || view->name.isEmpty() || view->source.isEmpty()) {
        *error = QStringLiteral("a view needs id, name and source");
        return false;
    }
    if (!readColumns(o.value(QLatin1String("columns")).toArray(), &view->columns, error))
        return false;
    for (const QJsonValue &f : o.value(QLatin1String("dataFields")).toArray())
        view->dataFields.append(f.toString());

    const QJsonObject parameters = o.value(QLatin1String("parameters")).toObject();
    for (auto it = parameters.constBegin(); it != parameters.constEnd(); ++it) {
        const QJsonObject p = it.value().toObject();
        ParameterSpec parameter;
        parameter.key = it.key();
        parameter.column = p.value(QLatin1String("column")).toString();
        parameter.op = p.value(QLatin1String("op")).toString(QStringLiteral("=="));
        for (const QJsonValue &s : p.value(QLatin1String("search")).toArray())
            parameter.search.append(s.toString());
        parameter.blockColumn = p.value(QLatin1String("block")).toString();
        if (parameter.column.isEmpty() && parameter.search.isEmpty() && parameter.blockColumn.isEmpty()) {
            *error = QStringLiteral("parameter %1 names no column").arg(parameter.key);
            return false;
        }
        view->parameters.insert(parameter.key, parameter);
    }

    view->filters = o.value(QLatin1String("filters")).toArray();
    for (const QJsonValue &c : o.value(QLatin1String("children")).toArray()) {
        const QJsonObject child = c.toObject();
        view->children.append({qint64(child.value(QLatin1String("view")).toDouble()),
                               child.value(QLatin1String("caption")).toString(),
                               child.value(QLatin1String("link")).toString()});
    }
    view->chart = o.value(QLatin1String("chart")).toObject();

    const QJsonObject cross = o.value(QLatin1String("cross")).toObject();
    if (!cross.isEmpty()) {
        view->hasCross = true;
        view->cross.across = cross.value(QLatin1String("across")).toString();
        view->cross.bandCaption = cross.value(QLatin1String("bandCaption")).toString(QStringLiteral("%1"));
        if (!readColumns(cross.value(QLatin1String("rows")).toArray(), &view->cross.rows, error)
            || !readColumns(cross.value(QLatin1String("values")).toArray(), &view->cross.values, error)
            || !readColumns(cross.value(QLatin1String("totals")).toArray(), &view->cross.totals, error))
            return false;
        if (view->cross.across.isEmpty() || view->cross.rows.isEmpty() || view->cross.values.isEmpty()) {
            *error = QStringLiteral("a cross view needs across, rows and values");
            return false;
        }
    }
    if (view->columns.isEmpty() && !view->isChart() && !view->hasCross) {
        *error = QStringLiteral("view %1 has neither columns, chart nor cross").arg(view->id);
        return false;
    }
    return true;
}

} // namespace SubjectService
