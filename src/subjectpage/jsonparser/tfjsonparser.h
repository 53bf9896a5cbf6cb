#pragma once

#include "tffilterjsontable.h"
#include "tftablemodeldata.h"

#include <QJsonValue>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPair>
#include <QString>
#include <QVariant>
#include <QVariantMap>

class ExpressionParse;
class TFBaseJsonTable;
class TFObjectViewConfigTable;
class TFSummaryJsonTable;
class TFTreeStruct;
class TFViewConfigTable;

namespace TFSubject {

// Reads a view's configuration document into its tables, one table object
// per top-level name, and answers the view's questions from them.
class TFJsonParser : public QObject
{
    Q_OBJECT
public:
    explicit TFJsonParser(QObject* parent = nullptr);
    ~TFJsonParser() override;

    // Replaces every table by those of the document. False only for an
    // undefined document or without a header tree; a document that is no
    // object, or has no known member, still counts as read.
    bool parseConfig(const QJsonValue& document, TFTreeStruct* header);

    // A later page: its rows, and its summary where it has one. The header
    // tree stays that of the configuration.
    bool parseData(const QJsonValue& payload);
    // The export's own reply, envelope included, as plain values under the
    // leaves of header; the parser's tables are not touched.
    bool parseData(const QByteArray& json, QList<QList<QVariant>>* out, TFTreeStruct* header);

    // The cell rows of the current page.
    QList<RowData> rows() const { return m_rows; }

    // The band tree handed to the last parseConfig; owned by the caller.
    TFTreeStruct* header() const { return m_header; }

    // The table of that identifier, or null.
    TFBaseJsonTable* table(int tableId) const { return m_tables.value(tableId, nullptr); }
    TFViewConfigTable* viewConfigTable() const;
    TFObjectViewConfigTable* objectViewConfigTable() const;
    TFSummaryJsonTable* summaryTable() const;

    QList<QVariantMap> dataMaps() const;
    QString objectViewName() const;
    QList<TFTableModelData::FilterData> filterData() const;
    QString childViewParams(qint64 objVwId) const;

    // Answered from the view configuration; false, 0 or empty without it.
    bool isCross() const;
    bool isGroup() const;
    bool isShowChild() const;
    bool hasVGridColHeaderField() const;
    int frozenCount() const;
    QString vGridColHeaderField() const;
    QPair<QString, QVariant> orderProperty() const;

    // Paging figures of the summary; -1 without one.
    int rowCount() const;
    int pageIndex() const;
    int pageSize() const;

signals:
    void signalSubTableJsonData(qint64 obj_vw_id, QString caption);
    void sigSectorNumChanged(QString sectorNum);
    void sigNoData();

private:
    void deleteTables();
    void buildHeader();
    void buildRows();
    ExpressionParse* expressionParse();

    TFTreeStruct* m_header = nullptr;
    TFTreeStruct* m_internalTree = nullptr;
    QMap<int, TFBaseJsonTable*> m_tables;
    QList<RowData> m_rows;
    QString m_text;
    ExpressionParse* m_expressionParse = nullptr;     // made on first use
};

} // namespace TFSubject
