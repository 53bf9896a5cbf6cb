#include "filterwidget/tffilterfactory.h"

#include <QJsonObject>

namespace {

QString behindFirstDot(const QString &piece)
{
    const int dot = piece.indexOf(QLatin1Char('.'));
    return dot < 0 ? piece : piece.mid(dot + 1);
}

} // namespace

TFFilterFactory::TFFilterFactory(QObject *parent)
    : QObject(parent)
{
}

void TFFilterFactory::parse(const QString &text, const RowData &fields)
{
    QStringList names;
    names.reserve(fields.size());
    for (const TFTableModelData::tagCellValue &cell : fields)
        names.append(cell.fieldName);
    parse(text, names);
}

void TFFilterFactory::parse(const QString &text, const QStringList &fieldNames)
{
    m_links.clear();
    const QStringList pairs = text.split(QLatin1Char(';'));
    for (const QString &pair : pairs) {
        const QStringList pieces = pair.split(QLatin1Char('='), Qt::SkipEmptyParts);
        if (pieces.size() != 2)
            continue;
        const QString &left = pieces.at(0);
        const QString &right = pieces.at(1);
        const QString source = fieldNames.contains(left) ? left : behindFirstDot(left);
        const QString target = behindFirstDot(right);
        if (source.isEmpty() || target.isEmpty())
            continue;
        Link link;
        link.targetField = target;
        link.sourceField = source;
        link.isDataSource = right.contains(QStringLiteral("数据源"), Qt::CaseInsensitive);
        m_links.append(link);
    }
}

QString TFFilterFactory::target(const QString &field) const
{
    for (const Link &link : m_links) {
        if (link.targetField == field)
            return link.sourceField;
    }
    return QString();
}

FilterParam::DataSourceFilter TFFilterFactory::orderFilter(const QString &orderText)
{
    if (orderText.isEmpty())
        return FilterParam::DataSourceFilter();
    QJsonObject order;
    const QStringList terms = orderText.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString &term : terms) {
        const QStringList words = term.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (words.size() != 2)
            continue;
        const bool descending = words.at(1).compare(QLatin1String("DESC"), Qt::CaseInsensitive) == 0;
        order.insert(words.at(0), descending ? -1 : 1);
    }
    return FilterParam::DataSourceFilter{QStringLiteral("order"), QVariant::fromValue(order)};
}
