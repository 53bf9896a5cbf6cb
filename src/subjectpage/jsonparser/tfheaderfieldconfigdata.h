#pragma once

#include "headerfieldinfo.h"
#include "tfbasejsontable.h"

#include <QList>

class TFObjectViewConfigTable;

// The column list of a view: the "Bands" entry of the view configuration,
// with keys in upper case ("FieldName"), and the "GridColumns" item of a cross
// table's summary, with the same keys in lower case ("fieldName"). Its value
// is a JSON string holding an array text.
class TFHeaderFieldConfigData : public TFBaseJsonTable
{
    Q_OBJECT
public:
    TFHeaderFieldConfigData(QObject* parent, bool upperCaseKeys);
    ~TFHeaderFieldConfigData() override;

    void initWith(const QJsonValue& value) override;
    int tableType() const override { return HeaderFieldTable; }

    bool hasUpperCaseKeys() const { return m_upperCaseKeys; }

    // Takes the display settings of each field from the object's field
    // table; caption, band structure, level and order stay those of this list.
    void mergeWith(const TFObjectViewConfigTable* table);

    QList<HeaderFieldInfo> fields() const { return m_fields; }

private:
    HeaderFieldInfo readField(const QJsonObject& object) const;

    QList<HeaderFieldInfo> m_fields;
    bool m_upperCaseKeys;
};
