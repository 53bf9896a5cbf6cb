#pragma once

#include "tfcore/iplugin.h"
#include "tfcore/itfabstractpage.h"

#include <QIcon>
#include <QWidget>

// A page that names itself after its URL's query.
class FakePage : public QWidget, public ITFAbstractPage
{
    Q_OBJECT
public:
    explicit FakePage(QWidget *parent = nullptr);
    ~FakePage() override;

    QWidget *getWidget() override { return this; }
    void init(const QUrl &url, QVariant arg) override;
    const char *signalWindowTitleChanged() override { return SIGNAL(signalWindowTitleChanged(QString)); }
    const char *signalWindowIconChanged() override { return SIGNAL(signalWindowIconChanged(QIcon)); }
    const char *signalOpenNewUrl() override { return SIGNAL(signalOpenNewUrl(QString)); }


signals:
    void signalWindowTitleChanged(QString title);
    void signalWindowIconChanged(QIcon icon);
    void signalOpenNewUrl(QString url);
};

class FakePagePlugin : public IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "TFAppPlugin" FILE "fakepageplugin.json")
    Q_INTERFACES(IPlugin)
public:
    bool initialize(const QStringList &arguments, QString *errorString) override;
    void extensionsInitialized() override;
};
