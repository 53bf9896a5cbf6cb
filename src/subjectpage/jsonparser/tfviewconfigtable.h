#pragma once

#include "tfbasejsontable.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QVariant>

class TFChartViewJsonTable;
class TFChildViewJsonTable;
class TFFilterJsonTable;
class TFHeaderFieldConfigData;

// "View_Config": the property rows of a view. The rows are read twice: once
// for the flags the view acts on, once into entries, where an "EXTEND" row
// carries a table of its own as JSON text (bands, child views, filters,
// chart). The table is filled once; its flags are not reset by a later read.
class TFViewConfigTable : public TFBaseJsonTable
{
    Q_OBJECT
public:
    struct Entry
    {
        int obj_vw_id = 0;
        QString prop_typ;
        QString prop_name;
        QString prop_val;
        TFBaseJsonTable* table = nullptr;   // owned by the view table; null unless EXTEND with a known name
    };

    explicit TFViewConfigTable(QObject* parent = nullptr);
    ~TFViewConfigTable() override;

    void initWith(const QJsonValue& value) override;
    int tableType() const override { return ViewConfigTable; }

    int viewId() const { return m_viewId; }
    bool isShowChild() const { return m_showChild; }
    bool isCross() const { return m_cross; }
    bool isTurnOver() const { return m_turnOver; }
    bool isOrder() const { return m_order; }
    bool isGetChartData() const { return m_getChartData; }
    bool isGroup() const { return m_group; }
    bool isShowFilter() const { return m_showFilter; }
    int frozenCount() const { return m_frozenCount; }
    int bandsLevel() const { return m_bandsLevel; }
    QString groupFields() const { return m_groupFields; }
    QString groupFormatString() const { return m_groupFormat; }
    QString vGridColHeaderField() const { return m_vGridColHeaderField; }
    bool hasVGridColHeaderField() const { return !m_vGridColHeaderField.isEmpty(); }

    // The first entry's table of that kind, or null.
    TFHeaderFieldConfigData* headerTable() const;
    TFChartViewJsonTable* chartTable() const;
    TFChildViewJsonTable* childTable() const;
    TFFilterJsonTable* filterTable() const;

    QString sectorNum() const;
    QString rootSectorNum() const;
    // The "order" row as a request parameter: ("order", {field: 1 or -1}),
    // or an empty name and a null value when the view has no sort order.
    QPair<QString, QVariant> orderProperty() const;
    QString childViewParams(qint64 objVwId) const;

    const QList<Entry>& entries() const { return m_entries; }

private:
    void clear();
    void readFlags(const QJsonObject& element);
    Entry readEntry(const QJsonObject& element);
    TFBaseJsonTable* firstTable(int tableId) const;

    QList<Entry> m_entries;
    int m_viewId = -1;
    bool m_showChild = false;
    bool m_cross = false;
    bool m_turnOver = false;
    bool m_order = false;
    bool m_getChartData = false;
    bool m_group = false;
    bool m_showFilter = false;
    int m_frozenCount = 0;
    int m_bandsLevel = 1;
    QString m_groupFields;
    QString m_groupFormat;
    QString m_vGridColHeaderField;
};
