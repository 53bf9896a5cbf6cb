#pragma once

#include <QMessageLogContext>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

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
        m_previous = qInstallMessageHandler(&LogCounter::handle);
        s_previous = m_previous;
    }
    ~LogCounter() { qInstallMessageHandler(m_previous); }
    int count() const { return s_count; }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        if (message.startsWith(s_prefix))
            ++s_count;
        if (s_previous)
            s_previous(type, context, message);
    }

    QtMessageHandler m_previous;
    static inline QString s_prefix;
    static inline int s_count = 0;
    static inline QtMessageHandler s_previous = nullptr;
};
