#pragma once

#include "viewdefinition.h"

#include <QJsonArray>
#include <QMap>
#include <QString>

namespace SubjectService {

class ServiceDatabase;

// A list that filter controls fill from the service by its objName.
struct ListSpec
{
    QString name;
    QString source;
    QString nameColumn;
    QString valueColumn;
};

// The demo catalogue: the views, the navigation of the topics and the named
// lists, read from the readable files compiled into the library.
class Catalogue
{
public:
    bool load(QString *error);
    // Checks every name that the views use against the tables of the database.
    QStringList problems(const ServiceDatabase &database) const;

    const ViewDefinition *view(qint64 id) const;
    QList<qint64> viewIds() const { return m_views.keys(); }
    const ListSpec *list(const QString &name) const;

    // The flat rows of the navigation below a topic root; false for an unknown root.
    bool navigationRows(qint64 root, const QString &serviceBase, QJsonArray *rows) const;
    QList<qint64> topicRoots() const { return m_topics.keys(); }
    QString topicCaption(qint64 root) const { return m_topicCaptions.value(root); }
    QByteArray helpPage(const QString &name) const;

private:
    QMap<qint64, ViewDefinition> m_views;
    QMap<qint64, QJsonArray> m_topics;   // rows of each topic, {service} not yet replaced
    QMap<qint64, QString> m_topicCaptions;
    QMap<QString, ListSpec> m_lists;
};

} // namespace SubjectService
