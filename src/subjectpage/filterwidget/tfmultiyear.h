#pragma once

#include "filterwidget/tfbasefilterwidget.h"

#include <QList>
#include <QMap>
#include <QString>

class QAction;
class QLabel;
class QMenu;
class QToolButton;
class TFCustomMath;

// Years to pick from a menu: one year ("SimpleYear"), or any number of them
// ("MultYear"), which then filter with "in". The years come from NameValues
// pairs, from two range bounds, or are this year down to 1999.
class TFMultiYear : public TFBaseFilterWidget
{
    Q_OBJECT
public:
    TFMultiYear(const TFTableModelData::FilterData &data, bool multiple, QWidget *parent = nullptr);

    FilterParam::Cntrl getCntrl() override;

    QToolButton *button() const { return m_button; }
    QMenu *menu() const { return m_menu; }
    QLabel *label() const { return m_label; }
    bool isMultiple() const { return m_multiple; }
    QList<int> chosenIndices() const { return m_chosen; }
    // The menu's entries by index.
    QMap<int, QString> entries() const { return m_indexText; }

public slots:
    void slotActionCheckStatusChanged(bool checked);
    void slotActionClickStatusChanged(bool checked);

private:
    void fill();
    void applyDefault();
    void addAction(int index, const QString &text);
    QString chosenText() const;
    TFCustomMath *math();

    QToolButton *m_button;
    QMenu *m_menu;
    QLabel *m_label;
    bool m_multiple;
    QList<int> m_chosen;
    QMap<int, QString> m_indexText;
    QList<QAction *> m_actions;
    TFCustomMath *m_math = nullptr;
};
