#pragma once

#include <QJsonObject>
#include <QString>
#include <QUrl>
#include <QVector>

class IPlugin;
class ITFAbstractPage;
class QPluginLoader;
class QWidget;

// A page type that a plug-in put into the object pool: an object with the
// properties id and metaId.
struct PageRegistration
{
    QString id;
    int metaId = 0;
    QUrl defaultUrl;        // the plug-in's Url metadata
    QString pluginName;
};

// Loads the plug-ins of one folder, initialises them in two rounds, and makes
// pages of the types they register.
class PluginLoader
{
public:
    explicit PluginLoader(const QString &directory);
    ~PluginLoader();

    // False when the folder has no plug-in of ours, or one of them fails to
    // load, initialise or register a page; errorString() says which and why.
    bool loadAll();
    QString errorString() const { return m_error; }

    QVector<PageRegistration> registrations() const { return m_registrations; }
    QUrl defaultPageUrl() const;

    // A new page for url, not yet initialised; null with error set when no
    // registration fits or the type cannot be made.
    ITFAbstractPage *createPage(const QUrl &url, QString *error) const;

private:
    struct Loaded
    {
        QPluginLoader *loader;
        IPlugin *plugin;
        QJsonObject metaData;
    };

    bool loadOne(const QString &fileName);
    const PageRegistration *registrationFor(const QUrl &url) const;

    QString m_directory;
    QString m_error;
    QVector<Loaded> m_plugins;
    QVector<PageRegistration> m_registrations;
};
