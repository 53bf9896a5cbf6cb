#include "tfbasejsontable.h"

TFBaseJsonTable::TFBaseJsonTable(QObject* parent)
    : QObject(parent)
{
}

TFBaseJsonTable::~TFBaseJsonTable() = default;
