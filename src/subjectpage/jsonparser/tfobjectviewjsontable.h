#pragma once

#include "tfbasejsontable.h"

#include <QString>

// "Object_View": the view's name, from the first element of the array.
class TFObjectViewJsonTable : public TFBaseJsonTable
{
    Q_OBJECT
public:
    explicit TFObjectViewJsonTable(QObject* parent = nullptr);
    ~TFObjectViewJsonTable() override;

    void initWith(const QJsonValue& value) override;
    int tableType() const override { return ObjectViewTable; }

    QString name() const { return m_name; }

private:
    QString m_name;
};
