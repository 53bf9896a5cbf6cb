#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>

namespace SubjectService {

class Catalogue;
class ServiceDatabase;
struct RequestBody;

// Answers the two endpoints from the catalogue and the database. Every answer
// is the envelope {state, msg, extend, data}: state 1 with the payload, or 0
// with a message that says what was wrong with the request. Thread-safe.
class RequestHandler
{
public:
    RequestHandler(const Catalogue &catalogue, const ServiceDatabase &database);

    void setServiceBase(const QString &base) { m_serviceBase = base; }

    QByteArray subjectData(const QByteArray &body) const;
    QByteArray dataSourceData(const QByteArray &body) const;

    static QByteArray envelope(int state, const QString &msg, const QJsonValue &data);

private:
    QByteArray viewReply(const RequestBody &body) const;
    QByteArray listReply(const RequestBody &body) const;
    QByteArray tableReply(const QString &table, const RequestBody &body, const QString &order) const;

    const Catalogue &m_catalogue;
    const ServiceDatabase &m_database;
    QString m_serviceBase;
};

} // namespace SubjectService
