#include "filterwidget/tfcombobox.h"

#include "filterwidget/tfcacheconfig.h"
#include "filterwidget/tffocusdelegate.h"
#include "filterwidget/tfremotelist.h"
#include "mulittable/tfheaderunit.h"

#include <QComboBox>
#include <QDebug>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>

namespace {

const char kNotChosen[] = "未选择";

} // namespace

TFComboBox::TFComboBox(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFBaseFilterWidget(data, parent)
    , m_box(new QComboBox(this))
    , m_label(new QLabel(this))
    , m_dm(this)
{
    m_box->setItemDelegate(new TFFocusDelegate(m_box));
    layOutInRow({m_label, m_box}, 6);
    createConnects();
    fill();
}

void TFComboBox::createConnects()
{
    connect(m_box, &QComboBox::textActivated, this, &TFComboBox::onActivated);
    connect(this, &TFComboBox::signalItemDataUpdate, this, &TFComboBox::slotOnItemDataUpdate);
}

bool TFComboBox::isCachedField() const
{
    const QString field = filterData().FieldName;
    return field == QLatin1String("AREA") || field == QLatin1String("CST_NUM");
}

void TFComboBox::fill()
{
    const TFTableModelData::FilterData row = filterData();
    if (row.DataSourceName.isEmpty() && !row.NameValues.isEmpty()) {
        for (const QString &part : row.NameValues.split(';', Qt::SkipEmptyParts)) {
            const QStringList pieces = part.split('=', Qt::SkipEmptyParts);
            if (pieces.size() == 2)
                m_items.insert(pieces.at(0), pieces.at(1));
        }
    }
    if (!row.DataSourceName.isEmpty()) {
        requestRemoteList(m_dm, row, [this](const QMap<QString, QString> &entries) {
            emit signalItemDataUpdate(entries);
        });
    }

    if (row.ClassName == QLatin1String("UnitFactorCombobox") && m_items.isEmpty()) {
        // Made a second time, so that one choice signals twice.
        createConnects();
        m_box->clear();
        for (const TFHeaderUnit &unit : unitsOfCategory(row.UnitCategory))
            m_box->addItem(unit.unitName);
        m_isUnit = true;
        m_unitCategory = row.UnitCategory;
    } else if (isCachedField()) {
        m_items.clear();
        const QList<TFCacheConfig::CodeRecord> records = TFCacheConfig::instance()->query(row.DataSource, row.Filter);
        if (records.isEmpty())
            return;
        for (const TFCacheConfig::CodeRecord &record : records)
            m_box->addItem(record.NAME);
    } else {
        for (auto it = m_items.cbegin(); it != m_items.cend(); ++it)
            m_box->addItem(it.key());
    }
    applyDefault();
    m_label->setText(row.Caption);
}

void TFComboBox::applyDefault()
{
    const QString value = filterData().DefualtValue.remove('=');
    if (m_isUnit) {
        m_box->setCurrentText(value);
        return;
    }
    for (auto it = m_items.cbegin(); it != m_items.cend(); ++it) {
        if (it.value().toString() == value || it.key() == value) {
            m_box->setCurrentIndex(m_box->findText(it.key()));
            return;
        }
    }
}

void TFComboBox::setCurrentText(const QString &text)
{
    m_box->setCurrentText(text);
}

void TFComboBox::onActivated(const QString &text)
{
    qDebug() << " createConnects text " << text;
    emit signalCurrentIndexChanged(unitCodeOfName(text), m_unitCategory);
}

void TFComboBox::slotOnItemDataUpdate(QMap<QString, QString> data)
{
    m_box->addItem(QString::fromUtf8(kNotChosen));
    int widest = 0;
    const QFontMetrics metrics(m_box->font());
    for (auto it = data.cbegin(); it != data.cend(); ++it) {
        m_box->addItem(it.key());
        widest = qMax(widest, metrics.horizontalAdvance(it.key()));
    }
    int width = widest + 80;
    if (width < m_box->width())
        width = m_box->width() + 20;
    m_box->setFixedWidth(width);
}

FilterParam::Cntrl TFComboBox::getCntrl()
{
    const TFTableModelData::FilterData row = filterData();
    FilterParam::Cntrl cntrl;
    cntrl.key = row.FieldName;
    cntrl.op = FilterParam::serviceOperator(row.Operator);
    cntrl.valueType = row.ValueType;
    cntrl.caption = row.Caption;
    const QString text = m_box->currentText();
    if (row.FieldName == QLatin1String("PROVINCE")) {
        cntrl.value = text;
    } else if (isCachedField()) {
        cntrl.value = QStringLiteral("");
        for (const TFCacheConfig::CodeRecord &record : TFCacheConfig::instance()->query(row.DataSource, row.Filter)) {
            if (record.NAME == text) {
                cntrl.value = record.VALUE;
                break;
            }
        }
    } else if (m_items.contains(text)) {
        cntrl.value = m_items.value(text);
    }
    return cntrl;
}
