#include "tfbaseview.h"

#include "filterwidget/tffilterfactory.h"

#include <QDateTime>
#include <QDebug>

namespace {

const TFTableModelData::tagCellValue *cellNamed(const RowData &row, const QString &fieldName)
{
    for (const TFTableModelData::tagCellValue &cell : row) {
        if (cell.fieldName == fieldName)
            return &cell;
    }
    return nullptr;
}

} // namespace

TFBaseView::TFBaseView(QWidget *parent)
    : QFrame(parent)
{
}

TFBaseView::~TFBaseView() = default;

void TFBaseView::reset(qint64 viewId)
{
    Q_UNUSED(viewId)
}

void TFBaseView::startLoading()
{
}

void TFBaseView::noData()
{
}

void TFBaseView::finished()
{
}

FilterParam::DataSourceFilter TFBaseView::order()
{
    return FilterParam::DataSourceFilter();
}

int TFBaseView::viewType()
{
    return -1;
}

QTime TFBaseView::startTime()
{
    return QTime::currentTime();
}

void TFBaseView::setChildFilters(const QList<FilterParam::Cntrl> &controls, const RowData &row,
                                 const QString &linkText)
{
    TFFilterFactory links;
    links.parse(linkText, row);
    const QList<TFTableModelData::FilterData> rows = filterList();
    m_params.clear();
    m_filters.clear();

    for (const TFTableModelData::FilterData &filter : rows) {
        QString field = filter.FieldName;
        if (field.isEmpty())
            continue;
        if (filter.Operator.toLower() != QLatin1String("between")) {
            const QString source = links.target(field);
            FilterParam::Cntrl control;
            control.key = field;
            control.valueType = filter.ValueType;
            if (source.isEmpty()) {
                control.value = filter.DefualtValue;
            } else {
                const TFTableModelData::tagCellValue *cell = cellNamed(row, source);
                QVariant value = cell ? cell->value : QVariant();
                if (value.type() == QVariant::DateTime)
                    value = value.toString();
                if (control.valueType.isEmpty() && cell)
                    control.valueType = cell->valueType;
                if (value.isNull()) {
                    for (const FilterParam::Cntrl &other : controls) {
                        if (other.key == source) {
                            value = other.value;
                            break;
                        }
                    }
                    if (!value.isValid() && cell)
                        value = cell->value;
                }
                control.value = value;
            }
            control.op = FilterParam::serviceOperator(filter.Operator);
            control.dataSourceFilter = filter.ClassName != QLatin1String("LabelControl")
                                       && filter.ParameterCategory == QLatin1String("1");
            if (control.dataSourceFilter)
                addParam(control);
            else
                addFilter(control);
            continue;
        }

        for (const FilterParam::Cntrl &source : controls) {
            if (source.key.isEmpty() || !source.multiField)
                continue;
            const QStringList keys = source.key.split(QLatin1Char(','), Qt::SkipEmptyParts);
            const QStringList values = source.value.toString().split(QLatin1Char(','), Qt::SkipEmptyParts);
            if (keys.isEmpty() || values.isEmpty())
                continue;
            for (int i = 0; i < values.size(); ++i) {
                FilterParam::Cntrl control;
                control.key = field;
                control.index = i;
                control.value = values.at(i);
                control.valueType = source.valueType;
                control.op = i < 2 ? QStringLiteral("<=") : QStringLiteral(">=");
                if (source.dataSourceFilter) {
                    addParam(control);
                } else {
                    // The suffix stays on the name for the next value too:
                    // F, then F_start for the key of the second.
                    field += control.op == QLatin1String("<=") ? QStringLiteral("_start")
                                                               : QStringLiteral("_end");
                    addFilter(control, field);
                }
            }
        }
    }
    m_params.append(order());
}

void TFBaseView::addParam(const FilterParam::Cntrl &control)
{
    if (control.valueType == QLatin1String("DateTime")) {
        const QString text = control.value.toString().remove(QLatin1Char('='));
        const QDate date = QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
        if (date.isValid()) {
            m_params.append({control.key, text});
        } else {
            const QDateTime time = QDateTime::fromMSecsSinceEpoch(text.toLongLong());
            m_params.append({control.key, time.toString(QStringLiteral("[yyyy-MM-dd]"))});
        }
        return;
    }
    m_params.append({control.key, control.value});
}

void TFBaseView::addFilter(const FilterParam::Cntrl &control, const QString &paramName)
{
    FilterParam::CustomFilter filter;
    filter.fieldName = control.key;
    filter.paramName = paramName.isEmpty() ? control.key : paramName;
    filter.op = control.op;
    filter.values = {control.value};
    m_filters.append(filter);
}
