#include "tfdatajsontable.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QVariantList>

TFDataJsonTable::TFDataJsonTable(QObject* parent)
    : TFBaseJsonTable(parent)
{
}

TFDataJsonTable::~TFDataJsonTable() = default;

void TFDataJsonTable::initWith(const QJsonValue& value)
{
    m_rows.clear();
    if (!value.isArray())
        return;
    // An element that is no object is an empty row, but a row all the same,
    // so the row count stays that of the array. The rows of a reply repeat
    // the same keys, so each key text is made once and shared by all rows:
    // a whole data set holds millions of them.
    const QJsonArray elements = value.toArray();
    m_rows.reserve(elements.size());
    QHash<QString, QString> keys;
    for (const QJsonValue element : elements) {
        QVariantMap row;
        const QJsonObject object = element.toObject();
        for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
            const QString key = it.key();
            auto shared = keys.constFind(key);
            if (shared == keys.constEnd())
                shared = keys.insert(key, key);
            row.insert(*shared, it.value().toVariant());
        }
        m_rows.append(row);
    }
}
