#pragma once

#include "headerfieldinfo.h"
#include "tfbasejsontable.h"

#include <QList>

// "Object_View_Config": one entry per field of the object behind the view,
// each with its status and its display settings (the JSON text of ots_cfg).
class TFObjectViewConfigTable : public TFBaseJsonTable
{
    Q_OBJECT
public:
    struct FieldRecord
    {
        QString prop_typ;
        QString obj_vw_id = QStringLiteral("-1");
        QString obj_prop_name;      // the key of all look-ups
        QString obj_prop_cap;
        QString vw_sts;             // "1" or "6": visible
        QString vw_fmt;
        QString dft_val;
        HeaderFieldInfo info;       // read from ots_cfg
        QString prop_sn;
        QString cnv_cfg;
    };

    explicit TFObjectViewConfigTable(QObject* parent = nullptr);
    ~TFObjectViewConfigTable() override;

    void initWith(const QJsonValue& value) override;
    int tableType() const override { return ObjectViewConfigTable; }

    // The display settings of the first record of that field, or an empty
    // record.
    HeaderFieldInfo headerFieldInfo(const QString& fieldName) const;
    // A field that the table does not know is visible.
    bool isFieldVisible(const QString& fieldName) const;

    QList<FieldRecord> records() const { return m_records; }

    // Reads one ots_cfg text; a text that is no JSON object gives an empty
    // record, without a word.
    static HeaderFieldInfo readDisplaySettings(const QByteArray& otsCfg);

private:
    const FieldRecord* findRecord(const QString& fieldName) const;

    QList<FieldRecord> m_records;
};
