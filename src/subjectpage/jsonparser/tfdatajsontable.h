#pragma once

#include "tfbasejsontable.h"

#include <QList>
#include <QVariantMap>

// "Data": the rows of a page as the service sends them, one map from field
// name to value per row, in document order.
class TFDataJsonTable : public TFBaseJsonTable
{
    Q_OBJECT
public:
    explicit TFDataJsonTable(QObject* parent = nullptr);
    ~TFDataJsonTable() override;

    void initWith(const QJsonValue& value) override;
    int tableType() const override { return DataTable; }

    QList<QVariantMap> rows() const { return m_rows; }
    void setRows(const QList<QVariantMap>& rows) { m_rows = rows; }

private:
    QList<QVariantMap> m_rows;
};
