#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QtGlobal>

// Records what the code under test writes to the message log while the
// object lives, so that a test can say exactly which lines were written,
// and that none were.
class MessageLog
{
public:
    MessageLog()
    {
        s_current = this;
        m_previous = qInstallMessageHandler(&MessageLog::record);
    }
    ~MessageLog()
    {
        qInstallMessageHandler(m_previous);
        s_current = nullptr;
    }
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    QStringList messages(QtMsgType type) const
    {
        QStringList texts;
        for (const auto& line : m_lines) {
            if (line.first == type)
                texts.append(line.second);
        }
        return texts;
    }
    int count() const { return m_lines.size(); }

private:
    static void record(QtMsgType type, const QMessageLogContext&, const QString& text)
    {
        if (s_current)
            s_current->m_lines.append(qMakePair(type, text));
    }

    static inline MessageLog* s_current = nullptr;
    QtMessageHandler m_previous = nullptr;
    QList<QPair<QtMsgType, QString>> m_lines;
};
