#include "pluginloader.h"

#include "tfcore/iplugin.h"
#include "tfcore/itfabstractpage.h"

#include <QDebug>
#include <QDir>
#include <QJsonArray>
#include <QLibrary>
#include <QMetaType>
#include <QPluginLoader>
#include <QWidget>

namespace {

const char *const pageRegistrationId = "TFApp.SUBJECT";

} // namespace

PluginLoader::PluginLoader(const QString &directory)
    : m_directory(directory)
{
}

// Plug-ins go down in the reverse order of loading; their libraries stay
// mapped, since types they registered with the meta-type system outlive them.
PluginLoader::~PluginLoader()
{
    for (auto it = m_plugins.rbegin(); it != m_plugins.rend(); ++it) {
        it->plugin->aboutToShutdown();
        delete it->plugin;
        delete it->loader;
    }
}

bool PluginLoader::loadAll()
{
    const QDir directory(m_directory);
    if (!directory.exists()) {
        m_error = QStringLiteral("plug-in folder \"%1\" does not exist").arg(m_directory);
        return false;
    }
    const QStringList files = directory.entryList(QDir::Files, QDir::Name);
    for (const QString &file : files) {
        if (!QLibrary::isLibrary(file))
            continue;
        if (!loadOne(directory.filePath(file)))
            return false;
    }
    if (m_plugins.isEmpty()) {
        m_error = QStringLiteral("no plug-in found in \"%1\"").arg(directory.absolutePath());
        return false;
    }

    for (const Loaded &loaded : qAsConst(m_plugins))
        loaded.plugin->extensionsInitialized();
    for (const Loaded &loaded : qAsConst(m_plugins))
        loaded.plugin->delayedInitialize();

    for (const Loaded &loaded : qAsConst(m_plugins)) {
        const QVector<QObject *> objects = loaded.plugin->autoReleasedObjects();
        for (QObject *object : objects) {
            const QVariant id = object->property("id");
            const QVariant metaId = object->property("metaId");
            if (!id.isValid() || !metaId.isValid())
                continue;
            PageRegistration registration;
            registration.id = id.toString();
            registration.metaId = metaId.toInt();
            registration.defaultUrl = QUrl(loaded.metaData.value(QLatin1String("Url")).toString());
            registration.pluginName = loaded.metaData.value(QLatin1String("Name")).toString();
            qDebug() << "page type" << registration.id << "meta type" << registration.metaId
                     << QMetaType::typeName(registration.metaId) << "from" << registration.pluginName;
            m_registrations.append(registration);
        }
    }
    const bool hasPage = std::any_of(m_registrations.cbegin(), m_registrations.cend(),
                                     [](const PageRegistration &r) { return r.id == QLatin1String(pageRegistrationId); });
    if (!hasPage) {
        m_error = QStringLiteral("no plug-in in \"%1\" registered the page type %2")
                .arg(directory.absolutePath(), QLatin1String(pageRegistrationId));
        return false;
    }
    return true;
}

bool PluginLoader::loadOne(const QString &fileName)
{
    auto *loader = new QPluginLoader(fileName);
    const QJsonObject raw = loader->metaData();
    if (raw.value(QLatin1String("IID")).toString() != QLatin1String(TFAppPlugin_iid)) {
        // Not a plug-in of ours (or not loadable at all, which load() reports).
        if (!raw.isEmpty()) {
            qDebug() << "skipping" << fileName << "with interface" << raw.value(QLatin1String("IID"));
            delete loader;
            return true;
        }
    }
    if (!loader->load()) {
        m_error = QStringLiteral("plug-in \"%1\" did not load: %2").arg(fileName, loader->errorString());
        delete loader;
        return false;
    }
    auto *plugin = qobject_cast<IPlugin *>(loader->instance());
    if (!plugin) {
        m_error = QStringLiteral("plug-in \"%1\" is not an IPlugin").arg(fileName);
        delete loader;
        return false;
    }
    const QJsonObject metaData = raw.value(QLatin1String("MetaData")).toObject();
    QString error;
    const QStringList arguments = metaData.value(QLatin1String("Arguments")).toVariant().toStringList();
    if (!plugin->initialize(arguments, &error)) {
        m_error = QStringLiteral("plug-in \"%1\" failed to initialize: %2")
                .arg(metaData.value(QLatin1String("Name")).toString(fileName), error);
        delete plugin;
        delete loader;
        return false;
    }
    qDebug() << "loaded plug-in" << metaData.value(QLatin1String("Name")).toString()
             << metaData.value(QLatin1String("Version")).toString() << "from" << fileName;
    m_plugins.append({loader, plugin, metaData});
    return true;
}

QUrl PluginLoader::defaultPageUrl() const
{
    for (const PageRegistration &registration : m_registrations) {
        if (registration.id == QLatin1String(pageRegistrationId) && registration.defaultUrl.isValid())
            return registration.defaultUrl;
    }
    return QUrl();
}

// A view: URL goes to the plug-in whose default page has the same authority;
// failing that, to the subject page type.
const PageRegistration *PluginLoader::registrationFor(const QUrl &url) const
{
    for (const PageRegistration &registration : m_registrations) {
        if (!registration.defaultUrl.host().isEmpty()
            && registration.defaultUrl.host().compare(url.host(), Qt::CaseInsensitive) == 0)
            return &registration;
    }
    for (const PageRegistration &registration : m_registrations) {
        if (registration.id == QLatin1String(pageRegistrationId))
            return &registration;
    }
    return nullptr;
}

ITFAbstractPage *PluginLoader::createPage(const QUrl &url, QString *error) const
{
    const PageRegistration *registration = registrationFor(url);
    if (!registration) {
        *error = QStringLiteral("no page type for %1").arg(url.toString());
        return nullptr;
    }
    const int metaId = registration->metaId;
    // Page types are QWidget subclasses registered by value; a pointer type
    // or anything smaller than a widget cannot be one.
    if (!QMetaType::isRegistered(metaId) || (QMetaType::typeFlags(metaId) & QMetaType::PointerToQObject)
        || QMetaType::sizeOf(metaId) < int(sizeof(QWidget))) {
        *error = QStringLiteral("meta type %1 of %2 is not a page widget").arg(metaId).arg(registration->id);
        return nullptr;
    }
    // A type registered with its meta-object can be checked before it is made.
    const QMetaObject *metaObject = QMetaType::metaObjectForType(metaId);
    if (metaObject && !metaObject->inherits(&QWidget::staticMetaObject)) {
        *error = QStringLiteral("%1 is not a widget").arg(QLatin1String(metaObject->className()));
        return nullptr;
    }
    void *made = QMetaType::create(metaId);
    if (!made) {
        *error = QStringLiteral("meta type %1 (%2) cannot be constructed")
                .arg(metaId).arg(QLatin1String(QMetaType::typeName(metaId)));
        return nullptr;
    }
    // The page's first base is QWidget, so the object starts with its QObject.
    auto *object = static_cast<QObject *>(made);
    auto *widget = qobject_cast<QWidget *>(object);
    auto *page = dynamic_cast<ITFAbstractPage *>(object);
    if (!widget || !page) {
        *error = QStringLiteral("%1 is not a page widget").arg(QLatin1String(QMetaType::typeName(metaId)));
        QMetaType::destroy(metaId, made);
        return nullptr;
    }
    return page;
}
