#include "tfmenucfg.h"

#include "tfcore/tfserviceconfig.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

TFMenuCfg *TFMenuCfg::instance()
{
    static TFMenuCfg config(menuFilePath());
    return &config;
}

TFMenuCfg::TFMenuCfg(const QString &path)
{
    if (path.isEmpty())
        return;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning() << "cannot read" << path << file.errorString();
        return;
    }
    parse(file.readAll());
}

QString TFMenuCfg::menuFilePath()
{
    // A file beside the application replaces the shipped one, whole.
    const QString beside = QCoreApplication::applicationDirPath() + QStringLiteral("/menu.json");
    if (QFile::exists(beside))
        return beside;
    const QString resource = QStringLiteral(":/json/menu.json");
    if (QFile::exists(resource))
        return resource;
    return QString();
}

void TFMenuCfg::parse(const QByteArray &text)
{
    if (text.isEmpty())
        return;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return;
    const QJsonValue menubar = document.object().value(QStringLiteral("menubar"));
    if (!menubar.isArray())
        return;

    const bool english = TFServiceConfig::instance()->getCurrentLang() == TFServiceConfig::English;
    for (const QJsonValue &menuValue : menubar.toArray()) {
        if (!menuValue.isObject())
            continue;
        const QJsonObject menu = menuValue.toObject();
        const QString name = menu.value(english ? QStringLiteral("menu_en") : QStringLiteral("menu")).toString();
        const int code = menu.value(QStringLiteral("P_NODE_CODE")).toInt();
        const QJsonValue items = menu.value(QStringLiteral("menuItem"));
        if (!items.isArray())
            continue;
        QStringList views;
        for (const QJsonValue &itemValue : items.toArray()) {
            if (!itemValue.isObject())
                continue;
            const QJsonObject object = itemValue.toObject();
            MenuItem item;
            item.sectorName = object.value(QStringLiteral("sectorName")).toString();
            item.sectorCode = object.value(QStringLiteral("sectorCode")).toString();
            item.itemName = object.value(QStringLiteral("itemName")).toString();
            const QString id = object.value(QStringLiteral("obj_vw_id")).toString();
            item.obj_vw_id = id.toInt();
            m_items.append(item);
            views.append(id);
        }
        m_viewsByTopic.insert(code, views);
        m_namesByTopic.insert(code, name);
    }
}

int TFMenuCfg::topicOfView(const QString &objVwId) const
{
    for (auto it = m_viewsByTopic.cbegin(); it != m_viewsByTopic.cend(); ++it) {
        if (it.value().contains(objVwId, Qt::CaseSensitive))
            return it.key();
    }
    return -1;
}

QString TFMenuCfg::topicName(int pNodeCode) const
{
    return m_namesByTopic.value(pNodeCode);
}

TFMenuCfg::MenuItem TFMenuCfg::itemOfView(const QString &objVwId) const
{
    const int id = objVwId.toInt();
    for (const MenuItem &item : m_items) {
        if (item.obj_vw_id == id)
            return item;
    }
    return MenuItem();
}
