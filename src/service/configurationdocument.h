#pragma once

#include "viewdefinition.h"

#include <QJsonArray>
#include <QJsonObject>

namespace SubjectService {

// Assembles the configuration document of a view in the form the terminal
// reads: the tables "Data", "View_Config", "Object_View_Config", "Summary" and
// "Object_View", with bands, filters, child views and chart carried as JSON
// text inside the strings of the EXTEND rows.
namespace ConfigurationDocument {

QJsonArray viewConfig(const ViewDefinition &view);
QJsonArray objectViewConfig(const ViewDefinition &view);
QJsonArray objectView(const ViewDefinition &view);
QJsonArray bands(const ViewDefinition &view);

struct Paging
{
    qint64 rowCount = 0;
    int pageIndex = 1;
    int pageSize = 0;
};
// The paging items, and for a cross view the column list of the delivered rows.
QJsonArray summary(const Paging &paging, const QJsonArray &gridColumns = {});
// The lower-case column list of a cross view for the values of its across field.
QJsonArray gridColumns(const ViewDefinition &view, const QStringList &acrossValues);

QJsonObject document(const ViewDefinition &view, const QJsonArray &rows, const QJsonArray &summaryItems);

int bandDepth(const QList<ColumnSpec> &columns);

} // namespace ConfigurationDocument
} // namespace SubjectService
