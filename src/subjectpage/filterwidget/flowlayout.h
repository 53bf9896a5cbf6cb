#pragma once

#include <QLayout>
#include <QList>
#include <QStyle>

// Places its items left to right and wraps to a new line when the next item
// would pass the right edge. A line is as tall as its tallest item. A
// negative spacing asks the style: first for the parent's default, then for
// the spacing between two controls of the item's kind.
class FlowLayout : public QLayout
{
    Q_OBJECT
public:
    explicit FlowLayout(QWidget *parent, int margin = -1, int hSpacing = -1, int vSpacing = -1);
    explicit FlowLayout(int margin = -1, int hSpacing = -1, int vSpacing = -1);
    ~FlowLayout() override;

    void addItem(QLayoutItem *item) override;
    int horizontalSpacing() const;
    int verticalSpacing() const;
    Qt::Orientations expandingDirections() const override;
    bool hasHeightForWidth() const override;
    int heightForWidth(int width) const override;
    int count() const override;
    QLayoutItem *itemAt(int index) const override;
    QLayoutItem *takeAt(int index) override;
    QSize minimumSize() const override;
    QSize sizeHint() const override;
    void setGeometry(const QRect &rect) override;

private:
    // Lays the items out in rect, or only measures when testOnly; gives the
    // height used.
    int doLayout(const QRect &rect, bool testOnly) const;
    int smartSpacing(QStyle::PixelMetric metric) const;
    int itemSpacing(QLayoutItem *item, Qt::Orientation orientation) const;

    QList<QLayoutItem *> m_items;
    int m_hSpace;
    int m_vSpace;
};
