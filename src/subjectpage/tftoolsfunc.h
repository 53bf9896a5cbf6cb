#pragma once

#include <QString>
#include <QVariant>

// Conversion of a filter value to the typed value that a request carries.
// The type names come from configuration and have no case.
namespace TFToolsFunc {

// "datetime" gives the text in square brackets, "decimal" a 64-bit integer
// read in base 10 (so "1.5" gives 0), "string" the text, "intlist" a list of
// 64-bit integers split by "," or else by ";"; any other type gives the text.
QVariant valueTrans(const QString &source, const QString &type);

// Lists ("intlist", "stringlist") pass unchanged; any other value goes
// through the text form above.
QVariant valueTrans(const QVariant &source, const QString &type);

} // namespace TFToolsFunc
