#include "tfheaderbuilder.h"

#include "tffilterjsontable.h"
#include "tfheaderfieldconfigdata.h"
#include "tfobjectviewconfigtable.h"
#include "tfsummaryjsontable.h"
#include "tfviewconfigtable.h"

#include "expression/expressionparse.h"
#include "mulittable/tfheaderdatastruct.h"

#include <QRegExp>
#include <QRegularExpression>

namespace TFSubject {

bool usesCrossColumns(const TFViewConfigTable* view, const TFSummaryJsonTable* summary)
{
    return view && view->isCross() && summary && summary->columnTable();
}

HeaderFieldInfo referenceField(const QString& fieldName, bool cross,
                               const TFSummaryJsonTable* summary,
                               const TFObjectViewConfigTable* objectView)
{
    if (cross)
        return summary ? summary->headerFieldInfo(fieldName) : HeaderFieldInfo();
    return objectView ? objectView->headerFieldInfo(fieldName) : HeaderFieldInfo();
}

QString expandCaption(const QString& caption, const QMap<QString, QVariant>& filters,
                      const ExpressionParseSource& parser)
{
    // The test and the capture see "." match a line break, the replacement
    // does not; a caption with one inside its braces thus keeps its text.
    QRegExp braces(QStringLiteral("\\{.*\\}"));
    if (!caption.contains(braces))
        return caption;
    QRegExp inner(QStringLiteral(".*\\{(.*)\\}.*"));
    inner.indexIn(caption);
    const QString expression = inner.cap(1);

    QVariant result;
    if (ExpressionParse* expressionParse = parser())
        expressionParse->parse(expression, result, filters);
    QString expanded = caption;
    expanded.replace(QRegularExpression(QStringLiteral("\\{.*\\}")),
                     QStringLiteral("%1").arg(result.toString()));
    return expanded;
}

void buildHeader(TFTreeStruct* root, const TFViewConfigTable* view,
                 const TFObjectViewConfigTable* objectView, const TFSummaryJsonTable* summary,
                 const ExpressionParseSource& parser)
{
    const bool cross = usesCrossColumns(view, summary);
    QList<HeaderFieldInfo> fields;
    if (cross) {
        fields = summary->columnTable()->fields();
    } else {
        TFHeaderFieldConfigData* bands = view ? view->headerTable() : nullptr;
        if (!bands)
            return;
        bands->mergeWith(objectView);
        fields = bands->fields();
    }
    if (fields.isEmpty())
        return;

    // A caption expression sees each filter's caption with its default.
    QMap<QString, QVariant> filterValues;
    if (const TFFilterJsonTable* filters = view ? view->filterTable() : nullptr) {
        const QList<TFTableModelData::FilterData> list = filters->filters();
        for (const TFTableModelData::FilterData& filter : list)
            filterValues.insert(filter.Caption, filter.DefualtValue);
    }

    for (HeaderFieldInfo& field : fields) {
        const HeaderFieldInfo reference = referenceField(field.fieldName, cross, summary, objectView);
        if (reference.caption != field.caption && !reference.caption.isEmpty())
            field.caption = reference.caption;
        // A field without a reference record gets width 0, the default width.
        if (reference.width < field.width)
            field.width = reference.width;
        field.caption = expandCaption(field.caption, filterValues, parser);
    }

    buildHeaderTree(root, fields, view && view->isGroup(), view ? view->groupFields() : QString());
}

} // namespace TFSubject
