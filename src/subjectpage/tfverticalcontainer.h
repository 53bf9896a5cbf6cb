#pragma once

#include <QFrame>
#include <QList>

class QLabel;
class QSplitter;
class QVBoxLayout;

// Base of both sides of the main frame: a title line above a vertical splitter.
class TFVerticalContainer : public QFrame
{
    Q_OBJECT
public:
    explicit TFVerticalContainer(QWidget *parent = nullptr);

    void addWidget(QWidget *widget);
    void setSizes(const QList<int> &sizes);
    void setTitle(const QString &title);
    QString title() const;
    void setTitleVisible(bool visible);
    bool isTitleVisible() const;

protected:
    QSplitter *splitter() const { return m_splitter; }

private:
    QSplitter *m_splitter;
    QVBoxLayout *m_layout;
    QLabel *m_titleLabel;
};
