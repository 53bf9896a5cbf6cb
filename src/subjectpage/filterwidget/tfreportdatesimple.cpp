#include "filterwidget/tfreportdatesimple.h"

#include "expression/expressionparse.h"
#include "filterwidget/tfperiodtexts.h"

#include <QComboBox>
#include <QDateTime>
#include <QDebug>
#include <QHBoxLayout>
#include <QLabel>
#include <QRegExp>

TFReportDateSimple::TFReportDateSimple(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFBaseFilterWidget(data, parent)
    , m_year(new QComboBox(this))
    , m_period(new QComboBox(this))
    , m_label(new QLabel(this))
{
    layOutInRow({m_label, m_year, m_period}, 6);
    TFPeriod::useFocusDelegate(m_year);
    TFPeriod::useFocusDelegate(m_period);
    fill();
    applyDefault();
}

void TFReportDateSimple::fill()
{
    const TFTableModelData::FilterData row = filterData();
    if (row.NameValues.isEmpty()) {
        m_year->addItems(TFPeriod::yearsDownTo(1992));
    } else {
        for (const QString &part : row.NameValues.split(';', Qt::SkipEmptyParts)) {
            const QStringList pieces = part.split('=', Qt::SkipEmptyParts);
            if (pieces.size() == 2) {
                m_years.insert(pieces.first(), pieces.last());
                m_periods.insert(pieces.first(), pieces.last());
            }
        }
        m_year->addItems(m_years.keys());
        m_period->addItems(m_periods.keys());
        m_year->setCurrentText(row.DefualtValue);
    }
    // The period box shows the names of the report table itself.
    if (row.ClassName == QLatin1String("ReportDateSimple5"))
        m_period->addItems({QStringLiteral("半年报"), QStringLiteral("年度")});
    else if (row.ClassName == QLatin1String("ReportDateSimple2"))
        m_period->addItems({QStringLiteral("一季度"), QStringLiteral("二季度"), QStringLiteral("三季度"),
                            QStringLiteral("四季度")});
    else
        m_period->addItems({QStringLiteral("一季度"), QStringLiteral("半年报"), QStringLiteral("三季度"),
                            QStringLiteral("年度")});
}

void TFReportDateSimple::applyDefault()
{
    const TFTableModelData::FilterData row = filterData();
    m_label->setText(row.Caption);
    QString text = row.DefualtValue;
    if (text.contains(QLatin1String("date"))) {
        text.remove(QLatin1String("=date")).remove('\'');
        const QDate date = QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
        if (!date.isValid())
            return;
        m_year->setCurrentText(TFPeriod::yearText(date.year()));
        for (int i = 0; i < m_period->count(); ++i) {
            if (TFPeriod::monthsOfPeriod(m_period->itemText(i)) == date.month()) {
                m_period->setCurrentIndex(i);
                break;
            }
        }
        return;
    }
    QRegExp call(QStringLiteral("\\$([\\w,\\d]+)\\((-?\\d*)\\)"));
    if (call.indexIn(text) != -1 && call.captureCount() >= 2) {
        // Worked out, and left unapplied: the boxes stay on their first entries.
        if (text.startsWith('='))
            text.remove(0, 1);
        ExpressionParse parse;
        const QDate date = QDate::fromString(parse.evalFunction(text), QStringLiteral("yyyy-MM-dd"));
        qDebug() << "report date default" << text << date;
    }
}

QDate TFReportDateSimple::periodEnd() const
{
    const int year = TFPeriod::bare(m_year->currentText()).toInt();
    const int months = TFPeriod::monthsOfPeriod(m_period->currentText());
    return QDate(year, 1, 1).addMonths(months).addDays(-1);
}

FilterParam::Cntrl TFReportDateSimple::getCntrl()
{
    const TFTableModelData::FilterData row = filterData();
    FilterParam::Cntrl cntrl;
    cntrl.key = row.FieldName;
    cntrl.caption = row.Caption;
    cntrl.op = FilterParam::serviceOperator(row.Operator);
    const QDate end = periodEnd();
    if (row.ParameterCategory == QLatin1String("1"))
        cntrl.value = end.toString(QStringLiteral("yyyy-MM-dd"));
    else if (row.ParameterCategory == QLatin1String("2"))
        cntrl.value = FilterParam::serviceDateText(QDateTime(end, QTime(0, 0)));
    else
        cntrl.value = QStringLiteral("");
    return cntrl;
}
