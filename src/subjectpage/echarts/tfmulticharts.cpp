#include "tfmulticharts.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QVBoxLayout>

TFMultiCharts::TFMultiCharts(QWidget *parent)
    : TFBaseView(parent)
    , m_label(new QLabel(this))
{
    setObjectName(QStringLiteral("TFMultiCharts"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_label->setAlignment(Qt::AlignCenter);
    layout->addWidget(m_label);
}

QString TFMultiCharts::text() const
{
    return m_label->text();
}

void TFMultiCharts::clear()
{
    m_rows.clear();
}

bool TFMultiCharts::parseConfig(const QJsonValue &config, bool isNew)
{
    Q_UNUSED(isNew)
    // The caption is the name of the view's object row.
    const QJsonArray objectView = config.toObject().value(QStringLiteral("Object_View")).toArray();
    m_caption = objectView.first().toObject().value(QStringLiteral("obj_vw_name")).toString();
    m_label->setText(QStringLiteral("chart: %1").arg(m_caption));
    return true;
}

bool TFMultiCharts::handleResponse(const QJsonValue &, const QString &, int)
{
    return true;
}

bool TFMultiCharts::isDataSourceFilter(const QString &)
{
    return false;
}

void TFMultiCharts::setFilterArgs(QMap<QString, QVariant>) {}

QList<FilterParam::Cntrl> TFMultiCharts::getCntrls()
{
    return {};
}

QList<TFTableModelData::FilterData> TFMultiCharts::filterList()
{
    return {};
}

int TFMultiCharts::viewType()
{
    return ChartView;
}

QString TFMultiCharts::caption()
{
    return m_caption;
}

bool TFMultiCharts::isCross()
{
    return false;
}
