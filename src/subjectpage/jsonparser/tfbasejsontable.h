#pragma once

#include <QJsonValue>
#include <QObject>
#include <QString>

// Base of the tables that a view's configuration document is read into. Each
// table reads its own part of the document and is asked about it later; a
// table never reports a failure, a value of the wrong shape just leaves it
// empty.
class TFBaseJsonTable : public QObject
{
    Q_OBJECT
public:
    // The identifiers under which the parser keeps its tables. The numbering
    // is part of the document format: 5 and 6 exist in the name map but have
    // no table class.
    enum TableId {
        NoTable = 0,
        DataTable = 1,
        ObjectPropertyTable = 2,
        ObjectViewTable = 3,
        ViewConfigTable = 4,
        SummaryTable = 7,
        HeaderFieldTable = 8,
        ChildViewTable = 9,
        FilterTable = 10,
        ChartViewTable = 11,
        ObjectViewConfigTable = 12
    };

    explicit TFBaseJsonTable(QObject* parent = nullptr);
    ~TFBaseJsonTable() override;

    // Discards what the table held and fills it from its part of the
    // document, so a table can be filled again.
    virtual void initWith(const QJsonValue& value) = 0;
    virtual int tableType() const = 0;

signals:
    // A child view was found while reading (obj_vw_id, caption).
    void sigJsonData(qint64 obj_vw_id, QString caption);
};
