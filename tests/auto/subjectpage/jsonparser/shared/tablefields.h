#pragma once

#include "jsonparser/tfchartviewjsontable.h"
#include "jsonparser/tfchildviewjsontable.h"
#include "jsonparser/tfdatajsontable.h"
#include "jsonparser/tffilterjsontable.h"
#include "jsonparser/tfheaderfieldconfigdata.h"
#include "jsonparser/tfobjectpropertytable.h"
#include "jsonparser/tfobjectviewconfigtable.h"
#include "jsonparser/tfobjectviewjsontable.h"
#include "jsonparser/tfsummaryjsontable.h"
#include "jsonparser/tfviewconfigtable.h"

#include "jsontext.h"

#include <QStringList>

#include <memory>

// Renders what a configuration table holds as one line of text, so that a
// data table can say in one column what a read must give. Only the fields
// that differ from the format's defaults are written, as "Name=value" joined
// by ";"; the records of a list are joined by " | ", an all-default record
// is "()". The defaults are written here as the format gives them, not taken
// from the code under test.
namespace TableFields {

class Line
{
public:
    Line& text(const char* name, const QString& value, const QString& byDefault = QString())
    {
        if (value != byDefault)
            m_parts.append(QString::fromLatin1(name) + '=' + value);
        return *this;
    }
    Line& number(const char* name, qint64 value, qint64 byDefault = 0)
    {
        return text(name, QString::number(value), QString::number(byDefault));
    }
    Line& real(const char* name, double value) { return text(name, QString::number(value), "0"); }
    Line& flag(const char* name, bool value) { return text(name, value ? "true" : "false", "false"); }
    Line& raw(const QString& part)
    {
        m_parts.append(part);
        return *this;
    }
    QString str() const { return m_parts.isEmpty() ? QStringLiteral("()") : m_parts.join(';'); }

private:
    QStringList m_parts;
};

template <typename List, typename Render>
QString records(const List& list, Render render)
{
    QStringList texts;
    for (const auto& record : list)
        texts.append(render(record));
    return texts.join(QStringLiteral(" | "));
}

inline QString field(const HeaderFieldInfo& f)
{
    return Line()
        .number("id", f.id).text("columnType", f.columnType).text("ownerBand", f.ownerBand)
        .text("fieldName", f.fieldName).text("url", f.url).text("valueType", f.valueType)
        .text("unboundExpression", f.unboundExpression).number("unitCategory", f.unitCategory)
        .number("prevUnitFactor", f.prevUnitFactor).number("showUnitFactor", f.showUnitFactor)
        .text("showUnit", f.showUnit).number("captionShowType", f.captionShowType).text("caption", f.caption)
        .number("width", f.width).text("formatString", f.formatString).flag("visible", f.visible)
        .flag("noSort", f.noSort).text("cellStyleExpression", f.cellStyleExpression)
        .number("textAlignment", f.textAlignment).number("showStatus", f.showStatus).number("sn", f.sn)
        .number("level", f.level).text("statExpression", f.statExpression)
        .str();
}

inline QString filter(const TFTableModelData::FilterData& f)
{
    return Line()
        .text("DefualtValue", f.DefualtValue).text("FieldName", f.FieldName).text("ShowValue", f.ShowValue)
        .number("Width", f.Width).text("ParameterCategory", f.ParameterCategory, "0")
        .flag("BeginGroup", f.BeginGroup).text("Filter", f.Filter).text("DataSource", f.DataSource)
        .text("Operator", f.Operator).text("NameValues", f.NameValues).number("UnitCategory", f.UnitCategory)
        .text("ValueType", f.ValueType).text("FilterCntrl", f.FilterCntrl).text("ClassName", f.ClassName)
        .text("Value", f.Value).text("ImageIndex", f.ImageIndex, "0").text("Caption", f.Caption)
        .text("ControlParameters", f.ControlParameters).text("DataSourceFilter", f.DataSourceFilter)
        .text("DataSourceFilterParams", f.DataSourceFilterParams).text("DataSourceName", f.DataSourceName)
        .str();
}

inline QString series(const ChartDataConfig& s)
{
    return Line()
        .text("DataValues", s.DataValues).text("FieldName", s.FieldName).text("LegendLable", s.LegendLable)
        .text("LegendLableFormat", s.LegendLableFormat).text("ChartType", s.ChartType)
        .text("ValueFormatString", s.ValueFormatString).flag("IsVisible", s.IsVisible)
        .number("UnitCategory", s.UnitCategory).number("PrevUnitFactor", s.PrevUnitFactor)
        .real("ShowUnitFactor", s.ShowUnitFactor).text("ShowUnit", s.ShowUnit)
        .number("CaptionShowType", s.CaptionShowType).text("YShaftType", s.YShaftType)
        .number("SetStackGroup", s.SetStackGroup)
        .str();
}

// The chart's own members, then one record per series.
inline QString chart(const ChartViewConfig& c)
{
    const QString head = Line()
        .text("ChartXData", c.ChartXData).text("Title", c.Title).text("YTitle", c.YTitle)
        .number("XDisplayDataPattern", c.XDisplayDataPattern).number("XDisplayStep", c.XDisplayStep)
        .text("ChartType", c.ChartType).text("XFieldName", c.XFieldName)
        .text("XItemNamesFormat", c.XItemNamesFormat).flag("IsSwitchXAxis", c.IsSwitchXAxis).text("Style", c.Style)
        .number("AnnoAngle", c.AnnoAngle).flag("ToolBarVisible", c.ToolBarVisible)
        .number("LegendPosition", c.LegendPosition).flag("IsTurnXAxis", c.IsTurnXAxis)
        .text("XValueType", c.XValueType).text("DefaultDataChartType", c.DefaultDataChartType)
        .text("YSetMinMaxValue", c.YSetMinMaxValue).text("YSetNullValue", c.YSetNullValue)
        .str();
    if (c.ChartDataConfigs.isEmpty())
        return head;
    return head + " | " + records(c.ChartDataConfigs, series);
}

inline QString variant(const QVariant& value)
{
    if (value.isNull())
        return QStringLiteral("null");
    if (value.userType() == qMetaTypeId<QJsonObject>())
        return jsonText(value.value<QJsonObject>());
    return value.toString();
}

inline QString table(const TFBaseJsonTable* table);

// The view's flags and look-ups; its entries are rendered by viewEntries.
inline QString viewFlags(const TFViewConfigTable& t)
{
    const QPair<QString, QVariant> order = t.orderProperty();
    Line line;
    line.number("viewId", t.viewId(), -1).flag("showChild", t.isShowChild()).flag("cross", t.isCross())
        .flag("turnOver", t.isTurnOver()).flag("order", t.isOrder()).flag("getChartData", t.isGetChartData())
        .flag("group", t.isGroup()).flag("showFilter", t.isShowFilter()).number("frozenCount", t.frozenCount())
        .number("bandsLevel", t.bandsLevel(), 1).text("groupFields", t.groupFields())
        .text("groupFormat", t.groupFormatString()).text("vGridColHeaderField", t.vGridColHeaderField())
        .flag("hasVGridColHeaderField", t.hasVGridColHeaderField()).text("sectorNum", t.sectorNum())
        .text("rootSectorNum", t.rootSectorNum());
    if (!order.first.isEmpty() || !order.second.isNull())
        line.raw("orderProperty=" + order.first + ':' + variant(order.second));
    return line.str();
}

// One entry per element as "id/type/name=value"; an entry's table follows
// with its id and content, marked "*" where the view's getter of that kind
// returns it.
inline QString viewEntries(const TFViewConfigTable& t)
{
    const QList<const TFBaseJsonTable*> first { t.headerTable(), t.childTable(), t.filterTable(), t.chartTable() };
    return records(t.entries(), [&](const TFViewConfigTable::Entry& e) {
        QString text = QStringLiteral("%1/%2/%3=%4").arg(e.obj_vw_id).arg(e.prop_typ, e.prop_name, e.prop_val);
        if (e.table) {
            text += QStringLiteral(" #%1%2[%3]").arg(e.table->tableType()).arg(first.contains(e.table) ? "*" : "")
                        .arg(table(e.table));
            if (e.table->parent())
                text += " parented";
        }
        return text;
    });
}

inline QString objectFields(const TFObjectViewConfigTable& t)
{
    return records(t.records(), [&](const TFObjectViewConfigTable::FieldRecord& r) {
        Line line;
        line.text("prop_typ", r.prop_typ).text("obj_vw_id", r.obj_vw_id, "-1").text("obj_prop_name", r.obj_prop_name)
            .text("obj_prop_cap", r.obj_prop_cap).text("vw_sts", r.vw_sts).text("vw_fmt", r.vw_fmt)
            .text("dft_val", r.dft_val).text("prop_sn", r.prop_sn).text("cnv_cfg", r.cnv_cfg)
            .flag("shown", t.isFieldVisible(r.obj_prop_name));
        if (field(r.info) != "()")
            line.raw("ots_cfg[" + field(r.info) + ']');
        return line.str();
    });
}

inline QString summary(const TFSummaryJsonTable& t)
{
    Line line;
    line.number("rowCount", t.rowCount()).number("pageIndex", t.pageIndex()).number("pageSize", t.pageSize(), 200);
    QStringList items;
    for (const TFSummaryJsonTable::SummaryItem& item : t.items())
        items.append(item.item + ':' + variant(item.value));
    if (!items.isEmpty())
        line.raw("items=" + items.join(','));
    if (const TFHeaderFieldConfigData* columns = t.columnTable()) {
        line.raw(QStringLiteral("columns%1[%2]")
                     .arg(columns->parent() == &t && !columns->hasUpperCaseKeys() ? "" : "(misplaced)")
                     .arg(records(columns->fields(), field)));
    }
    // An earlier column table is deleted, not kept beside the new one.
    if (t.children().size() != (t.columnTable() ? 1 : 0))
        line.number("children", t.children().size());
    return line.str();
}

inline QString table(const TFBaseJsonTable* t)
{
    if (auto* data = qobject_cast<const TFDataJsonTable*>(t)) {
        return records(data->rows(), [](const QVariantMap& row) {
            return jsonText(QJsonObject::fromVariantMap(row));
        });
    }
    if (auto* view = qobject_cast<const TFViewConfigTable*>(t))
        return viewFlags(*view);
    if (auto* fields = qobject_cast<const TFObjectViewConfigTable*>(t))
        return objectFields(*fields);
    if (auto* name = qobject_cast<const TFObjectViewJsonTable*>(t))
        return Line().text("name", name->name()).str();
    if (auto* properties = qobject_cast<const TFObjectPropertyTable*>(t)) {
        return records(properties->properties(), [](const TFObjectPropertyTable::ObjectProperty& p) {
            return Line().real("OBJ_ID", p.OBJ_ID).text("REF_RELA", p.REF_RELA).text("PROP_SOUR", p.PROP_SOUR)
                .text("PROP_TYP", p.PROP_TYP).text("PROP_NAME", p.PROP_NAME).text("PROP_CAP", p.PROP_CAP).str();
        });
    }
    if (auto* summaryTable = qobject_cast<const TFSummaryJsonTable*>(t))
        return summary(*summaryTable);
    if (auto* header = qobject_cast<const TFHeaderFieldConfigData*>(t))
        return records(header->fields(), field);
    if (auto* filters = qobject_cast<const TFFilterJsonTable*>(t))
        return records(filters->filters(), filter);
    if (auto* chartTable = qobject_cast<const TFChartViewJsonTable*>(t))
        return chart(chartTable->config());
    if (auto* children = qobject_cast<const TFChildViewJsonTable*>(t)) {
        return records(children->children(), [](const TFChildViewJsonTable::ChildView& c) {
            return Line().number("objVwId", c.objVwId).text("caption", c.caption)
                .text("propertyParams", c.propertyParams).str();
        });
    }
    return QStringLiteral("?");
}

// A new table of a kind: the name of its member in the document, of its
// "EXTEND" entry, "GridColumns" for a summary's column list, and
// "View_Config entries" for the view table whose entries are rendered.
inline std::unique_ptr<TFBaseJsonTable> make(const QString& kind)
{
    if (kind == "Data") return std::make_unique<TFDataJsonTable>();
    if (kind.startsWith("View_Config")) return std::make_unique<TFViewConfigTable>();
    if (kind == "Object_View_Config") return std::make_unique<TFObjectViewConfigTable>();
    if (kind == "Object_View") return std::make_unique<TFObjectViewJsonTable>();
    if (kind == "Object_Property") return std::make_unique<TFObjectPropertyTable>();
    if (kind == "Summary") return std::make_unique<TFSummaryJsonTable>();
    if (kind == "Bands") return std::make_unique<TFHeaderFieldConfigData>(nullptr, true);
    if (kind == "GridColumns") return std::make_unique<TFHeaderFieldConfigData>(nullptr, false);
    if (kind == "filters") return std::make_unique<TFFilterJsonTable>();
    if (kind == "ChartViewConfig") return std::make_unique<TFChartViewJsonTable>();
    if (kind == "childView") return std::make_unique<TFChildViewJsonTable>();
    qFatal("no table kind %s", qPrintable(kind));
    return nullptr;
}

// The value a data table's input stands for: the tables that carry JSON
// text inside a string take the input as that text, the others take it as
// a JSON value.
inline QJsonValue value(const QString& kind, const QString& input)
{
    static const QStringList textKinds { "Bands", "GridColumns", "filters", "ChartViewConfig", "childView" };
    return textKinds.contains(kind) ? QJsonValue(input) : jsonValue(input);
}

inline QString render(const QString& kind, const TFBaseJsonTable& t)
{
    if (kind == "View_Config entries")
        return viewEntries(static_cast<const TFViewConfigTable&>(t));
    return table(&t);
}

} // namespace TableFields
