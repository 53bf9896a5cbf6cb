#pragma once

#include <QTableView>

namespace BandGrid {

class TableView;
class BandHeaderView;

// The overlay that shows a table view's frozen columns. It shares the
// owner's proxies, selection and delegate, shows only the frozen columns,
// and never scrolls sideways; the owner keeps its place and rows in step.
class FrozenColumnsView : public QTableView
{
    Q_OBJECT
public:
    explicit FrozenColumnsView(TableView *owner);

    BandHeaderView *bandHeader() const;
    void relayout() { updateGeometries(); }

protected:
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    bool viewportEvent(QEvent *event) override;

private:
    TableView *m_owner;
};

} // namespace BandGrid
