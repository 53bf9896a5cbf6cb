#pragma once

#include "headerfieldinfo.h"
#include "tfbasejsontable.h"

#include <QList>
#include <QString>
#include <QVariant>

class TFHeaderFieldConfigData;

// What the service says about a query as a whole: row count, page, page size
// and, for a cross table, the column list ("GridColumns", in lower-case key
// form). The parser makes a new summary for each configuration and fills it
// again in place for each later page, so paging figures and the column table
// last until an item overwrites them.
class TFSummaryJsonTable : public TFBaseJsonTable
{
    Q_OBJECT
public:
    struct SummaryItem
    {
        QString item;
        QVariant value;             // null for a column list
    };

    explicit TFSummaryJsonTable(QObject* parent = nullptr);
    ~TFSummaryJsonTable() override;

    void initWith(const QJsonValue& value) override;
    int tableType() const override { return SummaryTable; }

    int rowCount() const { return m_rowCount; }
    int pageIndex() const { return m_pageIndex; }
    int pageSize() const { return m_pageSize; }

    // The column list of a cross table, owned by this table, or null.
    TFHeaderFieldConfigData* columnTable() const { return m_columnTable; }
    // The first column of that name in the column list, or an empty record.
    HeaderFieldInfo headerFieldInfo(const QString& fieldName) const;

    QList<SummaryItem> items() const { return m_items; }

private:
    QList<SummaryItem> m_items;
    int m_rowCount = 0;
    int m_pageIndex = 0;
    int m_pageSize = 200;
    TFHeaderFieldConfigData* m_columnTable = nullptr;
};
