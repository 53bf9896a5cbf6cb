#include "filterwidget/tffilterwidget.h"

#include "filterwidget/flowlayout.h"
#include "filterwidget/tfbasefilterwidget.h"
#include "filterwidget/tffiltersubwidgetfactory.h"

#include "expression/tfcustommath.h"
#include "tftoolsfunc.h"

#include <QComboBox>
#include <QDebug>

namespace {

// The first ancestor whose class is named so; no cast is needed to find it.
QObject *ancestorNamed(const QObject *object, const char *className)
{
    for (QObject *up = object->parent(); up; up = up->parent()) {
        if (qstrcmp(up->metaObject()->className(), className) == 0)
            return up;
    }
    return nullptr;
}

// One value position of a control that reports several, as its own entry.
QList<FilterParam::Cntrl> expand(const FilterParam::Cntrl &cntrl)
{
    QList<FilterParam::Cntrl> entries;
    const QStringList keys = cntrl.key.split(QLatin1Char(','), Qt::SkipEmptyParts);
    const QStringList values = cntrl.value.toString().split(QLatin1Char(','), Qt::SkipEmptyParts);
    const QStringList ops = cntrl.op.split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (keys.isEmpty() || values.isEmpty())
        return entries;
    for (int i = 0; i < values.size(); ++i) {
        FilterParam::Cntrl entry = cntrl;
        entry.key = i < keys.size() ? keys.at(i) : keys.first();
        entry.value = values.at(i);
        entry.op = i < ops.size() ? ops.at(i) : ops.value(0);
        entry.index = i;
        entry.multiField = false;
        entries.append(entry);
    }
    return entries;
}

} // namespace

TFFilterWidget::TFFilterWidget(QWidget *parent)
    : QFrame(parent)
    , m_layout(new FlowLayout(this, 5, 12, 5))
    , m_math(TFCustomMath::instance())
{
    setObjectName(QStringLiteral("filterWidget"));
}

TFFilterWidget::~TFFilterWidget() = default;

void TFFilterWidget::setFilterData(const QList<TFTableModelData::FilterData> &rows)
{
    m_rows = rows;
    clearControls();
    for (const TFTableModelData::FilterData &row : rows) {
        // A marker row, and a button the bar never shows.
        if (row.ClassName == QLatin1String("GroupFlagControl") || row.ClassName == QLatin1String("SimpleButtonSort"))
            continue;
        if (TFBaseFilterWidget *control = TFFilterCtlFactory::createWidget(row, this)) {
            m_controls.append(control);
            m_layout->addWidget(control);
        }
    }
}

void TFFilterWidget::clearControls()
{
    while (QLayoutItem *item = m_layout->takeAt(0))
        delete item;
    qDeleteAll(m_controls);
    m_controls.clear();
}

QList<FilterParam::Cntrl> TFFilterWidget::getCntrls() const
{
    QList<FilterParam::Cntrl> cntrls;
    for (TFBaseFilterWidget *control : m_controls) {
        FilterParam::Cntrl cntrl = control->getCntrl();
        if (cntrl.key.isEmpty())
            continue;
        cntrl.objName = control->objectName();
        resolveDynamicDefault(cntrl);
        cntrls.append(cntrl);
    }
    return cntrls;
}

void TFFilterWidget::resolveDynamicDefault(FilterParam::Cntrl &cntrl) const
{
    QString function;
    QString caption;
    if (!m_math || !FilterParam::readDynamicDefault(cntrl.value.toString(), &function, &caption))
        return;
    QVariant source;
    for (TFBaseFilterWidget *control : m_controls) {
        const FilterParam::Cntrl other = control->getCntrl();
        if (other.caption == caption) {
            source = other.value;
            break;
        }
    }
    if (!source.isValid())
        return;
    QList<QVariant> args;
    const QString text = source.toString();
    if (text.isEmpty()) {
        // no arguments
    } else if (text.contains(QLatin1Char(','), Qt::CaseInsensitive)) {
        for (const QString &part : text.split(QLatin1Char(',')))
            args.append(part);
    } else {
        args.append(source);
    }
    QVariant result;
    if (m_math->callFunction(function, args, result) && result.isValid())
        cntrl.value = result;
}

QVariant TFFilterWidget::translate(const QString &key, const QVariant &value, const QString &valueType) const
{
    // A global argument of the composite screen beats what the control holds.
    if (QObject *frame = ancestorNamed(this, "TFFrameSubjectZHP")) {
        const QMap<QString, QVariant> global = frame->property("glFilterArgs").toMap();
        if (!global.isEmpty() && global.contains(key))
            return TFToolsFunc::valueTrans(global.value(key).toString(), valueType);
    }
    // A control without a value (a list whose text has no value behind it)
    // keeps none, so that the entry is dropped instead of sent as "".
    if (!value.isValid())
        return value;
    return TFToolsFunc::valueTrans(value, valueType);
}

void TFFilterWidget::finalFilter(QList<FilterParam::DataSourceFilter> &dataSourceFilters,
                                 QList<FilterParam::CustomFilter> &customFilters)
{
    QList<FilterParam::Cntrl> expanded;
    for (const FilterParam::Cntrl &cntrl : getCntrls()) {
        if (cntrl.key.isEmpty())
            continue;
        const QList<FilterParam::Cntrl> entries = cntrl.multiField ? expand(cntrl) : QList<FilterParam::Cntrl>{cntrl};
        for (FilterParam::Cntrl entry : entries) {
            entry.value = translate(entry.key, entry.value, entry.valueType);
            expanded.append(entry);
        }
    }

    for (FilterParam::Cntrl &entry : expanded) {
        if (entry.key.isEmpty() || !entry.value.isValid())
            continue;
        updateF9Filters(entry);

        const bool dataSource = isDataSourceFilter(entry.key);
        if (dataSource != entry.dataSourceFilter)
            qDebug() << "isDataSrc:" << dataSource << "filter cntrl data source flag:" << entry.dataSourceFilter;
        if (dataSource) {
            dataSourceFilters.append(FilterParam::DataSourceFilter{entry.key, entry.value});
            continue;
        }

        QList<QVariant> values{entry.value};
        if (entry.valueType.contains(QLatin1String("list"), Qt::CaseInsensitive))
            values = entry.value.toList();
        if (entry.key == QLatin1String("PROVINCE")) {
            // "未选择" is the province list's entry for "any province".
            if (values.isEmpty() || values.first() == QVariant(QString())
                || values.first() == QVariant(QStringLiteral("未选择")))
                continue;
        }
        customFilters.append(FilterParam::CustomFilter{
            entry.key, entry.key + QStringLiteral("_%1").arg(entry.index), entry.op, values});
    }
}

void TFFilterWidget::updateF9Filters(FilterParam::Cntrl &cntrl)
{
    if (cntrl.objName.compare(QLatin1String("F9SecuIdCntrl"), Qt::CaseInsensitive) != 0
        && cntrl.objName.compare(QLatin1String("F9COMIDCntrl"), Qt::CaseInsensitive) != 0)
        return;
    QObject *found = ancestorNamed(this, "TFSubjectMainFrame");
    if (!found) {
        qDebug() << "F9 cntrl:" << cntrl.objName << cntrl.key << "=" << cntrl.value << " op:" << cntrl.op;
        return;
    }
    const QString text = found->property("f9Args").toMap().value(cntrl.key).toString();
    if (text.isEmpty())
        return;
    cntrl.value = text;
    qDebug() << "F9 cntrl 0:" << cntrl.key << "=" << cntrl.value << " op:" << cntrl.op;
}

bool TFFilterWidget::isDataSourceFilter(const QString &key) const
{
    if (key == QLatin1String("keywords"))
        return true;
    for (const TFTableModelData::FilterData &row : m_rows) {
        if (row.FieldName == key)
            return row.ClassName != QLatin1String("LabelControl") && row.ParameterCategory == QLatin1String("1");
    }
    return false;
}

void TFFilterWidget::setUnitText(const QString &text)
{
    for (TFBaseFilterWidget *control : m_controls) {
        if (control->objectName() != QLatin1String("UnitFactorCombobox"))
            continue;
        if (QComboBox *box = control->findChild<QComboBox *>())
            box->setCurrentText(text);
        return;
    }
}

void TFFilterWidget::reset()
{
    // A view about to load another configuration keeps nothing of the last.
    setFilterData(QList<TFTableModelData::FilterData>());
}

void TFFilterWidget::slotSimpleButtonGetDataClicked()
{
    emit sigGetDataButtonClicked(QString());
}

void TFFilterWidget::slotSimpleButtonSaveToExcel(int type)
{
    emit signalSimpleButtonSaveToExcel(type, QStringLiteral("excel"));
}

void TFFilterWidget::updateDynamicArgs()
{
    if (!m_dynamicArgsCarrier)
        return;
    const QMap<QString, QVariant> args = m_dynamicArgsCarrier->property("dynamicArgs").toMap();
    if (args != m_dynamicArgs)
        m_dynamicArgs = args;
}
