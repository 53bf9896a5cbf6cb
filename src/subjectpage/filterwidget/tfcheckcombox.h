#pragma once

#include "filterwidget/tfbasefilterwidget.h"
#include "net/tfdm.h"

#include <QList>
#include <QMap>
#include <QString>

class QLabel;
class QListWidget;
class QListWidgetItem;
class QMenu;
class QToolButton;
class QWidgetAction;

// A list of values to tick any number of. The list comes from NameValues or
// from the data object named by DataSourceName; an "All" item ticks or
// unticks every entry. Its object name becomes "CustomCheckCombobox".
class TFCheckCombox : public TFBaseFilterWidget
{
    Q_OBJECT
public:
    explicit TFCheckCombox(const TFTableModelData::FilterData &data, QWidget *parent = nullptr);

    FilterParam::Cntrl getCntrl() override;
    // Whether the list comes from a data object of the service.
    bool isRemote() const { return !filterData().DataSourceName.isEmpty(); }

    QToolButton *button() const { return m_button; }
    QMenu *menu() const { return m_menu; }
    QListWidget *listWidget() const { return m_list; }
    QLabel *label() const { return m_label; }
    // The ticked entries' indices, in the order they were ticked.
    QList<int> checkedIndices() const { return m_checked; }
    // The button's text before it is cut to the button's room.
    QString fullText() const { return m_fullText; }

signals:
    void signalItemCheckStatusChanged(QListWidgetItem *checkStausChangedItem, bool status);
    void signalItemDataUpdate(QMap<QString, QString> data);

public slots:
    void slotItemPressed(QListWidgetItem *item);
    void slotItemClicked(QListWidgetItem *item);
    void slotCheckStatusChanged(QListWidgetItem *item, bool status);
    void slotOnItemDataUpdate(QMap<QString, QString> data);

private:
    void fill();
    void applyDefault();
    void checkAll(bool checked);
    void updateText();
    void showMenuAgain();
    QString keyOfText(const QString &text) const;

    QToolButton *m_button;
    QMenu *m_menu;
    QWidgetAction *m_action;
    QListWidget *m_list;
    QLabel *m_label;
    QList<int> m_checked;
    QMap<int, QString> m_indexText;
    QMap<QString, QString> m_textValue;
    QListWidgetItem *m_allItem = nullptr;
    int m_allIndex = -1;
    QString m_fullText;
    TFDm m_dm;
};
