#pragma once

#include "bandgrid_global.h"

#include <QHeaderView>

namespace BandGrid {

class TableView;

// The horizontal header of a table view: rows of band captions over the
// column captions. A band's caption spans exactly the visible columns below
// it and is centred over them; a column not under a band takes the full
// height. Both the scrolling part and the frozen part of a view use one of
// these over the same bands, so the two always agree.
class BANDGRID_EXPORT BandHeaderView : public QHeaderView
{
    Q_OBJECT
public:
    BandHeaderView(TableView *owner, QWidget *parent = nullptr);

    TableView *owner() const { return m_owner; }
    // The owner is going away: from now on this is a plain header.
    void detach() { m_owner = nullptr; }

    // Height of one caption row; the header is (band rows + 1) of them.
    int captionRowHeight() const;
    QSize sizeHint() const override;

    // Where a band or a column caption is painted, in viewport coordinates.
    // An empty rectangle for a band with no visible column here.
    QRect bandRect(int band) const;
    QRect sectionRect(int logicalIndex) const;
    // The band whose caption is under a point, or -1.
    int bandAt(const QPoint &pos) const;

    // The last press fell on a band caption, and not on a column's.
    bool pressedOnBand() const { return m_pressedOnBand; }

    // A line at the right edge marks where frozen columns end.
    void setFrozenEdge(bool on);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    bool viewportEvent(QEvent *event) override;

private:
    void paintCaption(QPainter &painter, const QRect &rect, const QString &text,
                      Qt::Alignment alignment, int sortArrow) const;
    QString columnCaption(int logicalIndex) const;
    bool coveredByOverlay(int logicalIndex) const;

    TableView *m_owner;
    bool m_pressedOnBand = false;
    bool m_frozenEdge = false;
};

} // namespace BandGrid
