#pragma once

#include "bandgrid_global.h"

#include <QIcon>
#include <QObject>
#include <QString>
#include <QVariant>

namespace BandGrid {

class Band;
class TableView;

// What columns and bands have in common: a caption, an alignment, a place
// under a band, and visibility.
class BANDGRID_EXPORT ColumnBase : public QObject
{
    Q_OBJECT
public:
    int index() const { return m_index; }
    TableView *view() const { return m_view; }

    QString caption() const { return m_caption; }
    void setCaption(const QString &caption);

    // Unset (0) means the model's alignment for cells, centred for captions.
    Qt::Alignment textAlignment() const { return m_alignment; }
    void setTextAlignment(Qt::Alignment alignment);

    virtual bool isVisible() const = 0;
    virtual void setVisible(bool visible) = 0;

    // The band this stands under; -1 for none. An index that names no band,
    // or a band that would make a cycle, is refused.
    int bandIndex() const { return m_bandIndex; }
    bool setBandIndex(int bandIndex);
    Band *parentBand() const;

protected:
    ColumnBase(TableView *view, int index);
    virtual bool acceptsParent(const Band *band) const;
    void notify();

    TableView *m_view;
    int m_index;
    QString m_caption;
    Qt::Alignment m_alignment;
    int m_bandIndex = -1;

    friend class TableView;
};

// A caption over a run of columns; bands nest under other bands to any depth.
class BANDGRID_EXPORT Band : public ColumnBase
{
    Q_OBJECT
public:
    bool isVisible() const override { return m_visible; }
    void setVisible(bool visible) override;

    // Set and visible, and with at least one visible column below it.
    bool isShown() const;

    bool isBottomBand() const;
    bool isDescendantOf(const Band *band) const;
    // 0 for a band at the top, one more for each band above it.
    int level() const;

protected:
    bool acceptsParent(const Band *band) const override;

private:
    Band(TableView *view, int index, const QString &caption);
    bool m_visible = true;
    friend class TableView;
    friend class TableViewPrivate;
};

// One column of the model, as the view shows it.
class BANDGRID_EXPORT Column : public ColumnBase
{
    Q_OBJECT
public:
    bool isVisible() const override;
    void setVisible(bool visible) override;

    int width() const;
    void setWidth(int width);

    FixedKind fixedKind() const { return m_fixedKind; }
    void setFixedKind(FixedKind kind);

    EditorKind editorKind() const { return m_editorKind; }
    void setEditorKind(EditorKind kind);

    // A button at the right edge of every cell; clicks come out of
    // buttonClicked with the row of the user's model.
    int addButton(const QIcon &icon = QIcon(), const QString &toolTip = QString());
    int buttonCount() const { return m_buttons.size(); }
    QString buttonToolTip(int button) const;
    QIcon buttonIcon(int button) const;

    // The role sorting reads from the user's model; DisplayRole until set.
    int sortRole() const { return m_sortRole; }
    void setSortRole(int role);
    bool isSortLocaleAware() const { return m_sortLocaleAware; }
    void setSortLocaleAware(bool on);

    // 0 groups the view by this column, -1 stops it; one level of grouping.
    int groupIndex() const;
    void setGroupIndex(int groupIndex);

    // A role of a row of the user's model, in this column.
    QVariant value(int sourceRow, int role = Qt::DisplayRole) const;

signals:
    void buttonClicked(int sourceRow, int column, int button);

private:
    Column(TableView *view, int index);

    struct Button { QIcon icon; QString toolTip; };
    bool m_visible = true;
    int m_width = -1; // -1: the header's default
    FixedKind m_fixedKind = FixedKind::None;
    EditorKind m_editorKind = EditorKind::Text;
    QVector<Button> m_buttons;
    int m_sortRole = Qt::DisplayRole;
    bool m_sortLocaleAware = true;
    friend class TableView;
    friend class TableViewPrivate;
};

} // namespace BandGrid
