#pragma once

#include <QList>
#include <QMap>
#include <QObject>
#include <QStringList>

// The topics of the host's menu: which topic root a view belongs to, the
// topic's name, and the menu item a view stands for. Read once from
// "menu.json" beside the application, else from the resources.
class TFMenuCfg : public QObject
{
    Q_OBJECT
public:
    struct MenuItem
    {
        QString sectorName;
        QString sectorCode;
        QString itemName;
        int obj_vw_id = 0;
    };

    static TFMenuCfg *instance();
    // Reads one file; instance() reads the one menuFilePath() names.
    explicit TFMenuCfg(const QString &path);

    // The P_NODE_CODE of the first topic (by ascending code) listing the view, or -1.
    int topicOfView(const QString &objVwId) const;
    QString topicName(int pNodeCode) const;
    // The first item whose identifier equals the text read as a number.
    MenuItem itemOfView(const QString &objVwId) const;

    // Adds the menus of a file to the tables; a code that comes again replaces its entries.
    void parse(const QByteArray &text);
    static QString menuFilePath();

private:

    QList<MenuItem> m_items;
    QMap<int, QStringList> m_viewsByTopic;
    QMap<int, QString> m_namesByTopic;
};
