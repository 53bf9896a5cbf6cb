#pragma once

#include "headerfieldinfo.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

#include <functional>

class ExpressionParse;
class TFObjectViewConfigTable;
class TFSummaryJsonTable;
class TFTreeStruct;
class TFViewConfigTable;

namespace TFSubject {

// The expression parser of a view is made only when a caption or a cell
// needs it.
using ExpressionParseSource = std::function<ExpressionParse*()>;

// A cross view takes its columns from the summary's column list, when it
// has one; every other view from the "Bands" list.
bool usesCrossColumns(const TFViewConfigTable* view, const TFSummaryJsonTable* summary);

// The field's record in the table that settles its caption, width and value
// type: the summary's column list of a cross view, otherwise the object's
// field table. An empty record when there is none.
HeaderFieldInfo referenceField(const QString& fieldName, bool cross,
                               const TFSummaryJsonTable* summary,
                               const TFObjectViewConfigTable* objectView);

// Replaces an expression in braces by its value over the filters' captions
// and default values. Only the text of the last braces is evaluated, and the
// value stands for everything from the first "{" to the last "}".
QString expandCaption(const QString& caption, const QMap<QString, QVariant>& filters,
                      const ExpressionParseSource& parser);

// Builds the view's band header into root from its tables. Without a column
// list, or with an empty one, the tree is left as it is.
void buildHeader(TFTreeStruct* root, const TFViewConfigTable* view,
                 const TFObjectViewConfigTable* objectView, const TFSummaryJsonTable* summary,
                 const ExpressionParseSource& parser);

} // namespace TFSubject
