#pragma once

#include "filterwidget/tfbasefilterwidget.h"
#include "net/tfdm.h"

#include <QMap>
#include <QString>
#include <QVariant>

class QComboBox;
class QLabel;

// A list of values to pick one from. The list comes from the literal
// NameValues, from the data object named by DataSourceName (a list of names,
// usable as a filter only under PROVINCE), from the unit table (the
// "UnitFactorCombobox", whose choice rescales the table) or from the cached
// code table (fields AREA and CST_NUM).
class TFComboBox : public TFBaseFilterWidget
{
    Q_OBJECT
public:
    explicit TFComboBox(const TFTableModelData::FilterData &data, QWidget *parent = nullptr);

    FilterParam::Cntrl getCntrl() override;
    // Whether the list comes from a data object of the service.
    bool isRemote() const { return !filterData().DataSourceName.isEmpty(); }
    void setCurrentText(const QString &text);

    QComboBox *comboBox() const { return m_box; }
    QLabel *label() const { return m_label; }
    bool isUnitList() const { return m_isUnit; }

signals:
    void signalCurrentIndexChanged(int unitCode, int unitCategory);
    void signalItemDataUpdate(QMap<QString, QString> data);

public slots:
    void slotOnItemDataUpdate(QMap<QString, QString> data);

private:
    void createConnects();
    void fill();
    void applyDefault();
    void onActivated(const QString &text);
    bool isCachedField() const;

    QComboBox *m_box;
    QLabel *m_label;
    QMap<QString, QVariant> m_items;    // literal entries, text to value
    bool m_isUnit = false;
    int m_unitCategory = -1;
    TFDm m_dm;
};
