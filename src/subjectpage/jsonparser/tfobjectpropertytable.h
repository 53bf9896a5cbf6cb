#pragma once

#include "tfbasejsontable.h"

#include <QList>
#include <QString>

// A list of object properties, read from the "DATA" member of its value. No
// document that the parser reads reaches it; the factory still makes it for
// its identifier, as part of the format's vocabulary.
class TFObjectPropertyTable : public TFBaseJsonTable
{
    Q_OBJECT
public:
    struct ObjectProperty
    {
        double OBJ_ID = 0;
        QString REF_RELA;
        QString PROP_SOUR;
        QString PROP_TYP;
        QString PROP_NAME;
        QString PROP_CAP;
    };

    explicit TFObjectPropertyTable(QObject* parent = nullptr);
    ~TFObjectPropertyTable() override;

    void initWith(const QJsonValue& value) override;
    int tableType() const override { return ObjectPropertyTable; }

    QList<ObjectProperty> properties() const { return m_properties; }

private:
    QList<ObjectProperty> m_properties;
};
