#include "embeddedservice.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>

#ifdef SUBJECT_EMBEDDED_SERVICE
#include "subjectservice.h"
#endif

struct EmbeddedService::Impl
{
#ifdef SUBJECT_EMBEDDED_SERVICE
    std::unique_ptr<SubjectService::Server> server;
#endif
};

EmbeddedService::EmbeddedService()
    : m_impl(new Impl)
{
}

EmbeddedService::~EmbeddedService()
{
#ifdef SUBJECT_EMBEDDED_SERVICE
    if (m_impl->server)
        m_impl->server->stop();
#endif
}

bool EmbeddedService::isAvailable()
{
#ifdef SUBJECT_EMBEDDED_SERVICE
    return true;
#else
    return false;
#endif
}

bool EmbeddedService::start(const QString &dbPath, const QString &token, QString *error)
{
#ifdef SUBJECT_EMBEDDED_SERVICE
    QDir().mkpath(QFileInfo(dbPath).absolutePath());
    SubjectService::Options options;
    options.listenAddress = QStringLiteral("127.0.0.1");
    options.port = 0;
    options.dbPath = dbPath;
    options.token = token;
    auto server = std::make_unique<SubjectService::Server>(options);
    if (!server->start(error))
        return false;
    qDebug() << "embedded service listening on" << server->baseUrl() << "with" << dbPath;
    m_impl->server = std::move(server);
    return true;
#else
    Q_UNUSED(dbPath)
    Q_UNUSED(token)
    if (error)
        *error = QStringLiteral("no service configured: pass --service URL");
    return false;
#endif
}

QUrl EmbeddedService::baseUrl() const
{
#ifdef SUBJECT_EMBEDDED_SERVICE
    if (m_impl->server)
        return m_impl->server->baseUrl();
#endif
    return QUrl();
}
