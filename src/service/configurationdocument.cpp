#include "configurationdocument.h"

#include <QJsonDocument>

namespace SubjectService {
namespace ConfigurationDocument {

namespace {

QString jsonText(const QJsonArray &array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

QString jsonText(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

// The field description with keys in upper-case form ("Bands") or in
// lower-case form ("GridColumns").
QJsonObject fieldObject(const ColumnSpec &c, const QString &ownerBand, int level, int sn, bool lowerCase)
{
    QJsonObject o;
    auto put = [&o, lowerCase](const char *key, const QJsonValue &value) {
        QString name = QString::fromLatin1(key);
        if (lowerCase) {
            // "SN" becomes "sn", "FieldName" becomes "fieldName".
            name = name == QLatin1String("SN") ? QStringLiteral("sn") : name.left(1).toLower() + name.mid(1);
        }
        o.insert(name, value);
    };
    put("ColumnType", c.columnType);
    put("OwnerBand", ownerBand);
    put("FieldName", c.field);
    put("Url", c.url);
    put("ValueType", c.valueType);
    put("UnboundExpression", c.expression);
    put("UnitCategory", c.unitCategory);
    put("PrevUnitFactor", double(c.prevUnitFactor));
    put("ShowUnitFactor", double(c.showUnitFactor));
    put("ShowUnit", c.showUnit);
    put("CaptionShowType", c.captionShowType);
    put("Caption", c.caption);
    put("Width", c.width);
    put("FormatString", c.format);
    put("Visible", !c.hidden);
    put("NoSort", c.noSort);
    put("CellStyleExpression", c.cellStyle);
    put("TextAlignment", c.align);
    put("ShowStatus", c.hidden ? 0 : c.status.toInt());
    put("SN", sn);
    put("Level", level);
    put("StatExpression", c.statExpression);
    return o;
}

void appendBands(const QList<ColumnSpec> &columns, const QString &owner, int level, int *sn,
                 bool lowerCase, QJsonArray *out)
{
    for (const ColumnSpec &c : columns) {
        out->append(fieldObject(c, owner, level, ++*sn, lowerCase));
        if (c.isBand)
            appendBands(c.children, c.field, level + 1, sn, lowerCase, out);
    }
}

QJsonObject otsConfig(const ColumnSpec &c, int level, int sn)
{
    QJsonObject o;
    o.insert(QStringLiteral("FieldName"), c.field);
    o.insert(QStringLiteral("Caption"), c.caption);
    o.insert(QStringLiteral("ColumnType"), c.columnType);
    o.insert(QStringLiteral("Url"), c.url);
    o.insert(QStringLiteral("Level"), level);
    o.insert(QStringLiteral("SN"), sn);
    o.insert(QStringLiteral("ValueType"), c.valueType);
    o.insert(QStringLiteral("Visible"), !c.hidden);
    o.insert(QStringLiteral("ShowUnit"), c.showUnit);
    o.insert(QStringLiteral("FormatString"), c.format);
    o.insert(QStringLiteral("TextAlignment"), c.align);
    o.insert(QStringLiteral("NoSort"), c.noSort);
    o.insert(QStringLiteral("PrevUnitFactor"), double(c.prevUnitFactor));
    o.insert(QStringLiteral("ShowUnitFactor"), double(c.showUnitFactor));
    o.insert(QStringLiteral("CaptionShowType"), c.captionShowType);
    o.insert(QStringLiteral("Width"), c.width);
    o.insert(QStringLiteral("UnboundExpression"), c.expression);
    o.insert(QStringLiteral("UnitCategory"), c.unitCategory);
    o.insert(QStringLiteral("CellStyleExpression"), c.cellStyle);
    return o;
}

void appendFieldRows(const ViewDefinition &view, const QList<ColumnSpec> &columns, int level, int *sn,
                     QJsonArray *out)
{
    for (const ColumnSpec &c : columns) {
        ++*sn;
        if (c.isBand) {
            appendFieldRows(view, c.children, level + 1, sn, out);
            continue;
        }
        QJsonObject row;
        row.insert(QStringLiteral("prop_typ"), QStringLiteral("FIELD"));
        row.insert(QStringLiteral("obj_vw_id"), double(view.id));
        row.insert(QStringLiteral("obj_prop_name"), c.field);
        row.insert(QStringLiteral("obj_prop_cap"), c.caption);
        row.insert(QStringLiteral("vw_sts"), c.hidden ? QStringLiteral("0") : c.status);
        row.insert(QStringLiteral("vw_fmt"), c.format);
        row.insert(QStringLiteral("dft_val"), QString());
        row.insert(QStringLiteral("prop_sn"), QString::number(*sn));
        row.insert(QStringLiteral("cnv_cfg"), QString());
        row.insert(QStringLiteral("ots_cfg"), jsonText(otsConfig(c, level, *sn)));
        out->append(row);
    }
}

QJsonObject propertyRow(const ViewDefinition &view, const QString &name, const QJsonValue &value)
{
    QJsonObject row;
    row.insert(QStringLiteral("obj_vw_id"), double(view.id));
    row.insert(QStringLiteral("prop_typ"), QStringLiteral("VIEW"));
    row.insert(QStringLiteral("prop_name"), name);
    if (value.isBool()) {
        // isShowFilter is read as a JSON boolean, every other flag as the text "1".
        row.insert(QStringLiteral("prop_val"), value);
    } else if (value.isDouble()) {
        row.insert(QStringLiteral("prop_val"), QString::number(qint64(value.toDouble())));
    } else {
        row.insert(QStringLiteral("prop_val"), value.toString());
    }
    if (name.compare(QLatin1String("BandsLevel"), Qt::CaseInsensitive) == 0)
        row.insert(QStringLiteral("BandsLevel"), row.value(QLatin1String("prop_val")).toString().toInt());
    return row;
}

QJsonObject extendRow(const ViewDefinition &view, const QString &name, const QString &text)
{
    QJsonObject row;
    row.insert(QStringLiteral("obj_vw_id"), double(view.id));
    row.insert(QStringLiteral("prop_typ"), QStringLiteral("EXTEND"));
    row.insert(QStringLiteral("prop_name"), name);
    row.insert(QStringLiteral("prop_val"), QString());
    row.insert(QStringLiteral("ext_prop_val"), text);
    return row;
}

} // namespace

int bandDepth(const QList<ColumnSpec> &columns)
{
    int depth = 0;
    for (const ColumnSpec &c : columns)
        depth = qMax(depth, c.isBand ? 1 + bandDepth(c.children) : 1);
    return depth;
}

QJsonArray bands(const ViewDefinition &view)
{
    QJsonArray out;
    int sn = 0;
    appendBands(view.columns, QStringLiteral("0"), 1, &sn, false, &out);
    return out;
}

QJsonArray viewConfig(const ViewDefinition &view)
{
    QJsonObject properties = view.properties;
    if (!properties.contains(QLatin1String("ObjViewType")))
        properties.insert(QStringLiteral("ObjViewType"),
                          view.isChart() ? QStringLiteral("ViewDataChart") : QStringLiteral("ViewDataGrid"));
    if (view.hasCross)
        properties.insert(QStringLiteral("IsCross"), QStringLiteral("1"));
    if (!view.children.isEmpty() && !properties.contains(QLatin1String("isShowChild")))
        properties.insert(QStringLiteral("isShowChild"), QStringLiteral("1"));
    if (!view.columns.isEmpty() && !properties.contains(QLatin1String("BandsLevel")))
        properties.insert(QStringLiteral("BandsLevel"), bandDepth(view.columns));

    QJsonArray rows;
    for (auto it = properties.constBegin(); it != properties.constEnd(); ++it)
        rows.append(propertyRow(view, it.key(), it.value()));
    if (!view.columns.isEmpty())
        rows.append(extendRow(view, QStringLiteral("Bands"), jsonText(bands(view))));
    if (!view.filters.isEmpty())
        rows.append(extendRow(view, QStringLiteral("filters"), jsonText(view.filters)));
    if (!view.children.isEmpty()) {
        QJsonArray children;
        for (const ChildSpec &child : view.children) {
            QJsonObject o;
            o.insert(QStringLiteral("Caption"), child.caption);
            o.insert(QStringLiteral("Propertyparams"), child.link);
            o.insert(QStringLiteral("ObjShowName"), QString::number(child.view));
            children.append(o);
        }
        rows.append(extendRow(view, QStringLiteral("childView"), jsonText(children)));
    }
    if (view.isChart())
        rows.append(extendRow(view, QStringLiteral("ChartViewConfig"), jsonText(view.chart)));
    return rows;
}

QJsonArray objectViewConfig(const ViewDefinition &view)
{
    QJsonArray rows;
    int sn = 0;
    appendFieldRows(view, view.columns, 1, &sn, &rows);
    // Fields that travel without a column still tell their type.
    for (const QString &field : view.dataFields) {
        ColumnSpec c;
        c.field = field;
        c.caption = field;
        c.valueType = QStringLiteral("String");
        c.hidden = true;
        QList<ColumnSpec> one{c};
        appendFieldRows(view, one, 1, &sn, &rows);
    }
    return rows;
}

QJsonArray objectView(const ViewDefinition &view)
{
    QJsonObject row;
    row.insert(QStringLiteral("obj_vw_id"), double(view.id));
    row.insert(QStringLiteral("obj_vw_name"), view.name);
    return QJsonArray{row};
}

QJsonArray summary(const Paging &paging, const QJsonArray &gridColumns)
{
    auto item = [](const char *name, qint64 value) {
        QJsonObject o;
        o.insert(QStringLiteral("Item"), QLatin1String(name));
        o.insert(QStringLiteral("value"), double(value));
        return o;
    };
    QJsonArray items{item("rcount", paging.rowCount), item("pindex", paging.pageIndex),
                     item("psize", paging.pageSize)};
    if (!gridColumns.isEmpty()) {
        QJsonObject o;
        o.insert(QStringLiteral("Item"), QStringLiteral("GridColumns"));
        o.insert(QStringLiteral("value"), jsonText(gridColumns));
        items.append(o);
    }
    return items;
}

QJsonArray gridColumns(const ViewDefinition &view, const QStringList &acrossValues)
{
    QJsonArray out;
    int sn = 0;
    appendBands(view.cross.rows, QString(), 1, &sn, true, &out);
    for (const QString &value : acrossValues) {
        ColumnSpec band;
        band.isBand = true;
        band.columnType = QStringLiteral("Band");
        band.field = QStringLiteral("B_") + value;
        band.caption = view.cross.bandCaption.arg(value);
        for (ColumnSpec leaf : view.cross.values) {
            leaf.field = value + QStringLiteral("__") + leaf.field;
            band.children.append(leaf);
        }
        appendBands({band}, QString(), 1, &sn, true, &out);
    }
    appendBands(view.cross.totals, QString(), 1, &sn, true, &out);
    return out;
}

QJsonObject document(const ViewDefinition &view, const QJsonArray &rows, const QJsonArray &summaryItems)
{
    QJsonObject document;
    document.insert(QStringLiteral("Data"), rows);
    document.insert(QStringLiteral("View_Config"), viewConfig(view));
    document.insert(QStringLiteral("Object_View_Config"), objectViewConfig(view));
    document.insert(QStringLiteral("Summary"), summaryItems);
    document.insert(QStringLiteral("Object_View"), objectView(view));
    return document;
}

} // namespace ConfigurationDocument
} // namespace SubjectService
