#pragma once

#include "jsonparser/headerfieldinfo.h"
#include "mulittable/tfsubjecttablemodel.h"

#include <QFrame>
#include <QList>
#include <QPointer>
#include <QString>

class QMouseEvent;
class QToolButton;
class TFLinkColours;
class TFTreeStruct;

namespace BandGrid {
class Band;
class Column;
class Grid;
class TableView;
}

// What a click on a link cell hands to TFSujectTableView::editorLinkActivated:
// the row of the model, the column, and the anchor the cell's text led to.
class EditorLinkEventArgs
{
public:
    EditorLinkEventArgs(BandGrid::Column *column, int row, const QString &anchor);

    int row() const { return m_row; }
    QString anchor() const { return m_anchor; }
    BandGrid::Column *column() const { return m_column; }
    // A role of the clicked row in the clicked column; false without a
    // column or a model.
    bool getValue(int role, QVariant &out) const;
    // A role of the clicked row in another column.
    QVariant cellValue(int column, int role) const;

private:
    BandGrid::Column *m_column;
    int m_row;
    QString m_anchor;
};

// The grid of a table: sets up the banded grid control from the band tree of
// its model, with widths, editors, links, frozen columns, grouping and hidden
// columns. A tree of depth 3 or more (bands under the root) gives a banded
// table, a flatter one a plain table.
class TFSujectTableView : public QFrame
{
    Q_OBJECT
public:
    explicit TFSujectTableView(QWidget *parent = nullptr);
    ~TFSujectTableView() override;

    // The rebind flag is not read: every call sets up the grid anew.
    void setModel(TFSubjectTableModel *model, bool rebind = false);
    TFSubjectTableModel *model() const { return m_model; }

    void setFrozenCount(int count);
    void setGroupColumn(int column);
    void expandAll();
    void setColumnsAlignment(int alignment);
    void setVGridHeader(const QString &fieldName);
    void applyColumnSettings(const QList<HeaderFieldInfo *> &records);
    // Hides the leaves marked hidden; hiddenCount gets how many were hidden.
    void hideColumn(int &hiddenCount);
    void bindBander();

    BandGrid::Grid *grid() const { return m_grid; }
    BandGrid::TableView *view() const { return m_view; }
    QToolButton *cornerWidget() const { return m_corner; }
    int depth() const { return m_depth; }
    int number() const { return m_number; }

    // The band made for the node of that field name, or null; an empty
    // name finds nothing.
    BandGrid::Band *findBand(const QString &fieldName) const;

    // The width a record gets: -9 measures the caption (and its unit) in
    // the view's font, other values above 0 stand, the rest gives 104.
    static int columnWidth(const HeaderFieldInfo &record, const QFont &font);
    // Fills every ${FIELD} of the link's query from the row's cells.
    static QString substituteLink(const QString &link, const QMap<QString, QVariant> &values);

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    void sigGetMoreData(int page);
    void linkActivated(QString link);
    void linkHovered(QString link);
    void linkUnhovered();
    void sigSectionClicked(int, Qt::SortOrder);
    void sigSimulateMouseReleaseEvent(QMouseEvent *event);
    void clicked(int row);

public slots:
    void editorLinkActivated(EditorLinkEventArgs *args);

private:
    void createBands();
    void applyOptions();
    void applyTheme();
    void applyGridFont();
    void onModelReset();
    void onHeaderDataChanged();
    void onCellButtonClicked(int row, int column);
    void onLinkActivated(const QString &anchor, const QModelIndex &sourceIndex);

    QToolButton *m_corner;
    BandGrid::Grid *m_grid;
    int m_number = 2;
    int m_depth = 1;
    TFTreeStruct *m_header = nullptr;
    BandGrid::TableView *m_view = nullptr;
    QPointer<TFSubjectTableModel> m_model;
    QPointer<TFLinkColours> m_linkColours;
};
