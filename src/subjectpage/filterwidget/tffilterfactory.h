#pragma once

#include "filterwidget/filterparam.h"
#include "jsonparser/tftablemodeldata.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

// Reads the link text between a row of a main table and a child view,
// "A.FIELD1=数据源.FIELD2;...": the right piece names the child's filter field,
// the left one the row's field that feeds it. Also turns an order clause
// into the "order" key of a request.
class TFFilterFactory : public QObject
{
    Q_OBJECT
public:
    struct Link
    {
        bool isDataSource = false;  // the right piece names "数据源"
        QString targetField;        // the child's field
        QString sourceField;        // the row's field
    };

    explicit TFFilterFactory(QObject *parent = nullptr);

    // Reads the links anew. A left piece that names a field of the records
    // stays whole; otherwise both pieces are cut behind their first ".".
    void parse(const QString &text, const RowData &fields);
    void parse(const QString &text, const QStringList &fieldNames);

    // The row's field for a child field: the first link's, or a null string.
    QString target(const QString &field) const;

    QList<Link> links() const { return m_links; }

    // "FIELD1 DESC,FIELD2 ASC" as the key "order" with {"FIELD1":-1,"FIELD2":1};
    // an empty text gives an empty filter, a term of other than two words
    // is passed over.
    static FilterParam::DataSourceFilter orderFilter(const QString &orderText);

private:
    QList<Link> m_links;
    QString m_spareText1;
    QString m_spareText2;
    QString m_spareText3;
};
