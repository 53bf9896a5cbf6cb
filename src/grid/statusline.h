#pragma once

#include "bandgrid_global.h"

#include <QLabel>
#include <QLocale>
#include <QPointer>

namespace BandGrid {

struct GridTexts;
struct SelectionSummary;
class TableView;

// The line under a grid that tells what the selected cells hold, as a
// spreadsheet does: how many there are and, of those that hold numbers in
// their column's sort role, the sum and the average. It reads the selection
// once per turn of the event loop, however many changes that turn brought.
class BANDGRID_EXPORT StatusLine : public QLabel
{
    Q_OBJECT
public:
    explicit StatusLine(QWidget *parent = nullptr);

    void setView(TableView *view);
    TableView *view() const { return m_view; }

    // Reads the selection now and shows it.
    void refresh();

    // "Count: 3    Sum: 1,234.5    Average: 411.5"; an empty selection
    // gives an empty text, and one without numbers only the count.
    static QString format(const SelectionSummary &summary, const GridTexts &texts,
                          const QLocale &locale = QLocale());

protected:
    void showEvent(QShowEvent *event) override;

private:
    void scheduleRefresh();

    QPointer<TableView> m_view;
    QList<QMetaObject::Connection> m_connections;
    bool m_pending = false;
};

} // namespace BandGrid
