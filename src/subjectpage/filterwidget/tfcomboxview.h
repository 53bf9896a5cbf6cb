#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

class QComboBox;

// A list to pick one text from, drawn like the lists of the filter bar. It
// forwards its inner box's changes and has no filter logic of its own; the
// sort dialog uses it as the editor of its cells.
class TFComboxView : public QWidget
{
    Q_OBJECT
public:
    explicit TFComboxView(QWidget *parent = nullptr);

    void setItems(const QStringList &items);
    QStringList items() const;
    QString currentText() const;
    int currentIndex() const;
    void setCurrentText(const QString &text);
    QComboBox *comboBox() const { return m_box; }

signals:
    void currentIndexChanged(int index);
    void currentIndexChanged(const QString &text);
    void currentTextChanged(const QString &text);

public slots:
    void slotCurrentIndexChanged(int index);
    void slotCurrentIndexChanged(QString text);
    void slotCurrentTextChanged(QString text);

private:
    QComboBox *m_box;
};
