#pragma once

#include "tfframesubjectzhp.h"
#include "tfmainview.h"
#include "tfrightcontainer.h"
#include "tfsubjecttablewidget.h"

#include "mulittable/tfsubjecttablemodel.h"
#include "subjectservice.h"
#include "tfcore/tfserviceconfig.h"

#include <QFile>
#include <QMessageLogContext>
#include <QObject>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QVariantMap>

#include <memory>

// What a composite screen offers its components: the global arguments with
// their change signal, the choice of an argument and the note of changed
// settings. Suites of the component stand it behind the parent's "zhpObj".
class ScreenStub : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariantMap args READ args)
public:
    QVariantMap args() const { return m_args; }
    void setArgs(const QVariantMap &args)
    {
        m_args = args;
        emit argsChanged(m_args);
    }

    Q_INVOKABLE void getArgsDlg(const QString &current, QString &chosen)
    {
        offered = current;
        chosen = answer;
    }
    Q_INVOKABLE void settingsChanged() { ++settingsChangedCount; }

    QString answer;
    QString offered;
    int settingsChangedCount = 0;

signals:
    void argsChanged(const QVariantMap &args);

private:
    QVariantMap m_args;
};

// Counts the log lines that begin with a text while it lives: how often the
// page was refreshed, for one.
class LogCounter
{
public:
    explicit LogCounter(const QString &prefix)
    {
        s_prefix = prefix;
        s_count = 0;
        s_previous = qInstallMessageHandler(&LogCounter::handle);
    }
    ~LogCounter() { qInstallMessageHandler(s_previous); }
    int count() const { return s_count; }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        s_count += message.startsWith(s_prefix) ? 1 : 0;
        if (s_previous)
            s_previous(type, context, message);
    }
    static inline QString s_prefix;
    static inline int s_count = 0;
    static inline QtMessageHandler s_previous = nullptr;
};

// The reference service on loopback under the key the component asks for,
// with its database (a copy of the one written at build time) and the
// user's settings in a folder of the suite's own.
class ComponentService
{
public:
    bool start(QString *error)
    {
        TFTableModelData::registerRowDataType();
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, dir.path());
        SubjectService::Options options;
        options.dbPath = dir.filePath(QStringLiteral("component.sqlite"));
        QFile::copy(QStringLiteral(COMPONENT_DATABASE), options.dbPath);   // else the service generates it
        m_server = std::make_unique<SubjectService::Server>(options);
        if (!m_server->start(error))
            return false;
        TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), m_server->baseUrl());
        return true;
    }
    ~ComponentService()
    {
        QThreadPool::globalInstance()->waitForDone(30000);
        if (m_server)
            m_server->stop();
    }
    QTemporaryDir dir;

private:
    std::unique_ptr<SubjectService::Server> m_server;
};

// A component's saved state with every key.
inline QVariantMap componentState(qlonglong objVwId, const QString &title, const QString &binder = QString())
{
    return {{"version", "1.0.0"},      {"titleVisible", true},   {"filterVisible", true},
            {"mainViewVisible", true}, {"subViewVisible", true}, {"pageBarVisible", false},
            {"objVwId", objVwId},      {"title", title},         {"objVwIdBinder", binder},
            {"filterMap", QVariantMap{{"IND_NAME", "%银行%"}}}};
}

inline int rowsShown(const TFFrameSubjectZHP &frame)
{
    auto *table = qobject_cast<TFSubjectTableWidget *>(frame.rightContainer()->mainView()->currentView());
    return table && table->model() ? table->model()->rowCount() : 0;
}

// Components live under a parent that carries the screen in "zhpObj".
inline std::unique_ptr<QWidget> screenHolder(ScreenStub *screen)
{
    auto widget = std::make_unique<QWidget>();
    widget->setProperty("zhpObj", QVariant::fromValue<QObject *>(screen));
    return widget;
}
