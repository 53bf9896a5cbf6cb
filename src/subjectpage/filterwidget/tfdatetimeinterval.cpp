#include "filterwidget/tfdatetimeinterval.h"

#include "expression/tfcustommath.h"

#include <QDateEdit>
#include <QHBoxLayout>
#include <QLabel>
#include <QRegExp>

TFDatetimeInterval::TFDatetimeInterval(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFBaseFilterWidget(data, parent)
    , m_label(new QLabel(data.Caption, this))
    , m_start(new QDateEdit(this))
    , m_dash(new QLabel(QStringLiteral("一"), this))
    , m_end(new QDateEdit(this))
    , m_math(TFCustomMath::instance())
{
    m_start->setObjectName(QStringLiteral("startDate"));
    m_end->setObjectName(QStringLiteral("endDate"));
    for (QDateEdit *edit : {m_start, m_end}) {
        edit->setCalendarPopup(true);
        edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    }
    layOutInRow({m_label, m_start, m_dash, m_end}, 2);

    QString text = data.DefualtValue;
    const QStringList parts = text.remove(QLatin1Char('=')).split(QLatin1Char(';'), Qt::SkipEmptyParts);
    QDate start;
    QDate end;
    if (parts.size() >= 2) {
        start = QDate::fromString(resolvePart(parts.at(0), m_math), QStringLiteral("yyyy-MM-dd"));
        end = QDate::fromString(resolvePart(parts.at(1), m_math), QStringLiteral("yyyy-MM-dd"));
    } else {
        start = end = m_math->now().date();
    }
    if (start.isValid())
        m_start->setDate(start);
    if (end.isValid())
        m_end->setDate(end);
    m_end->setMinimumDate(m_start->date());
    connect(m_start, &QDateEdit::dateChanged, m_end, &QDateEdit::setMinimumDate);
}

QString TFDatetimeInterval::resolvePart(const QString &part, const TFCustomMath *math)
{
    if (part.contains(QLatin1String("date"))) {
        QString date = part;
        date.remove(QStringLiteral("date'"));
        date.chop(1);
        return date;
    }
    QRegExp call(QStringLiteral("\\$([\\w,\\d]+)\\((-?\\d*)\\)"));
    if (call.indexIn(part) >= 0 && call.captureCount() >= 2 && math) {
        QList<QVariant> args;
        if (!call.cap(2).isEmpty())
            args.append(call.cap(2));
        QVariant result;
        if (math->callFunction(call.cap(1), args, result) && result.isValid())
            return result.toString();
    }
    return part;
}

FilterParam::Cntrl TFDatetimeInterval::getCntrl()
{
    const TFTableModelData::FilterData data = filterData();
    const QString format = QStringLiteral("yyyy-MM-dd hh:mm:ss");
    FilterParam::Cntrl cntrl;
    cntrl.key = data.FieldName;
    cntrl.caption = data.Caption;
    cntrl.valueType = data.ValueType;
    cntrl.value = QStringLiteral("%1,%2").arg(QDateTime(m_start->date(), QTime(0, 0, 0)).toString(format),
                                              QDateTime(m_end->date(), QTime(23, 59, 59)).toString(format));
    cntrl.op = QStringLiteral(">=,<=");
    cntrl.multiField = true;
    return cntrl;
}
