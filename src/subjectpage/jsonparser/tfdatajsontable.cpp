#include "tfdatajsontable.h"

#include <QJsonArray>
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
    // so the row count stays that of the array.
    const QVariantList elements = value.toArray().toVariantList();
    for (const QVariant& element : elements)
        m_rows.append(element.toMap());
}
