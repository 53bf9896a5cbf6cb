#pragma once

#include <QWidget>

class QAction;
class QHBoxLayout;
class QLineEdit;

// The search line above a navigation tree. Finishing the edit or pressing
// the magnifier asks for a search with the line's text.
class TFSearchWidget : public QWidget
{
    Q_OBJECT
public:
    explicit TFSearchWidget(QWidget *parent = nullptr);

    QLineEdit *lineEdit() const { return m_line; }
    QAction *searchAction() const { return m_action; }

signals:
    void signalSearch(QString text);

private:
    void updateIcon();

    QHBoxLayout *m_layout;
    QLineEdit *m_line;
    QAction *m_action;
};
