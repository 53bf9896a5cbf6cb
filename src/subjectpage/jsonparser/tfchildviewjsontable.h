#pragma once

#include "tfbasejsontable.h"

#include <QList>
#include <QString>

// The views that follow a selected row of the main table: the "childView"
// entry of the view configuration, a JSON string holding an array text.
// Each child with a view identifier is announced by sigJsonData while the
// table is read, so its own configuration can be fetched at once.
class TFChildViewJsonTable : public TFBaseJsonTable
{
    Q_OBJECT
public:
    struct ChildView
    {
        QString propertyParams;     // handed to the child
        qint64 objVwId = 0;         // from "ObjShowName", which holds a number as text
        QString caption;
    };

    explicit TFChildViewJsonTable(QObject* parent = nullptr);
    ~TFChildViewJsonTable() override;

    void initWith(const QJsonValue& value) override;
    int tableType() const override { return ChildViewTable; }

    // The parameters of the first child with that view identifier, or an
    // empty text.
    QString propertyParams(qint64 objVwId) const;

    QList<ChildView> children() const { return m_children; }

private:
    QList<ChildView> m_children;
};
