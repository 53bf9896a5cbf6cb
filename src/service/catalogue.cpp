#include "catalogue.h"

#include "servicedatabase.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

static void initCatalogueResources()
{
    Q_INIT_RESOURCE(catalogue);
}

namespace SubjectService {

namespace {

bool readJsonFile(const QString &path, QJsonDocument *document, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("cannot read %1").arg(path);
        return false;
    }
    QJsonParseError parseError;
    *document = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        *error = QStringLiteral("%1: %2 at %3").arg(path, parseError.errorString()).arg(parseError.offset);
        return false;
    }
    return true;
}

// Node codes are the topic's code times 1000 plus a running number, so that
// the codes of different topics never meet and none equals a topic root.
void flattenNodes(const QJsonArray &nodes, qint64 root, qint64 parent, int level, int *counter,
                  QJsonArray *rows)
{
    for (const QJsonValue &value : nodes) {
        const QJsonObject node = value.toObject();
        const qint64 code = root * 1000 + ++*counter;
        const qint64 view = qint64(node.value(QLatin1String("view")).toDouble());
        const QString url = node.value(QLatin1String("url")).toString();
        const QJsonArray children = node.value(QLatin1String("nodes")).toArray();
        QJsonObject row;
        row.insert(QStringLiteral("NODE_CODE"), double(code));
        row.insert(QStringLiteral("P_NODE_CODE"), double(parent));
        row.insert(QStringLiteral("NODE_CAP"), node.value(QLatin1String("caption")).toString());
        row.insert(QStringLiteral("NODE_TYP"), !children.isEmpty() ? 1 : !url.isEmpty() ? 3 : 2);
        row.insert(QStringLiteral("LEVEL"), level);
        row.insert(QStringLiteral("OBJ_VW_ID"), double(view));
        row.insert(QStringLiteral("NODE_URL"), url);
        rows->append(row);
        flattenNodes(children, root, code, level + 1, counter, rows);
    }
}

} // namespace

bool Catalogue::load(QString *error)
{
    initCatalogueResources();
    m_views.clear();
    const QDir viewDir(QStringLiteral(":/catalogue/views"));
    const QStringList files = viewDir.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    for (const QString &fileName : files) {
        QJsonDocument document;
        if (!readJsonFile(viewDir.filePath(fileName), &document, error))
            return false;
        ViewDefinition view;
        QString viewError;
        if (!ViewDefinition::fromJson(document.object(), &view, &viewError)) {
            *error = QStringLiteral("%1: %2").arg(fileName, viewError);
            return false;
        }
        view.fileName = fileName;
        if (m_views.contains(view.id)) {
            *error = QStringLiteral("%1: view %2 is defined twice").arg(fileName).arg(view.id);
            return false;
        }
        m_views.insert(view.id, view);
    }

    QJsonDocument navigation;
    if (!readJsonFile(QStringLiteral(":/catalogue/navigation.json"), &navigation, error))
        return false;
    for (const QJsonValue &value : navigation.object().value(QLatin1String("topics")).toArray()) {
        const QJsonObject topic = value.toObject();
        const qint64 root = qint64(topic.value(QLatin1String("code")).toDouble());
        QJsonArray rows;
        int counter = 0;
        flattenNodes(topic.value(QLatin1String("nodes")).toArray(), root, root, 1, &counter, &rows);
        m_topics.insert(root, rows);
        m_topicCaptions.insert(root, topic.value(QLatin1String("caption")).toString());
    }

    QJsonDocument lists;
    if (!readJsonFile(QStringLiteral(":/catalogue/lists.json"), &lists, error))
        return false;
    const QJsonObject listObject = lists.object();
    for (auto it = listObject.constBegin(); it != listObject.constEnd(); ++it) {
        const QJsonObject o = it.value().toObject();
        m_lists.insert(it.key(), {it.key(), o.value(QLatin1String("source")).toString(),
                                  o.value(QLatin1String("name")).toString(QStringLiteral("NAME")),
                                  o.value(QLatin1String("value")).toString(QStringLiteral("VALUE"))});
    }
    return true;
}

QStringList Catalogue::problems(const ServiceDatabase &database) const
{
    QStringList problems;
    auto checkColumn = [&](const QString &where, const QString &table, const QString &column) {
        if (!database.columns(table).contains(column.toUpper()))
            problems << QStringLiteral("%1: no column %2 in %3").arg(where, column, table);
    };
    for (const ViewDefinition &view : m_views) {
        const QString where = view.fileName;
        if (!database.hasTable(view.source)) {
            problems << QStringLiteral("%1: no table %2").arg(where, view.source);
            continue;
        }
        for (const QString &field : view.sourceFields())
            checkColumn(where, view.source, field);
        for (const ParameterSpec &p : view.parameters) {
            if (!p.column.isEmpty())
                checkColumn(where, view.source, p.column);
            for (const QString &s : p.search)
                checkColumn(where, view.source, s);
            if (!p.blockColumn.isEmpty())
                checkColumn(where, view.source, p.blockColumn);
        }
        for (const QString &term : view.defaultOrder.split(QLatin1Char(','), Qt::SkipEmptyParts))
            checkColumn(where, view.source, term.trimmed().section(QLatin1Char(' '), 0, 0));
        for (const ChildSpec &child : view.children) {
            if (!m_views.contains(child.view))
                problems << QStringLiteral("%1: child view %2 is not in the catalogue").arg(where).arg(child.view);
        }
    }
    for (auto it = m_topics.constBegin(); it != m_topics.constEnd(); ++it) {
        for (const QJsonValue &row : it.value()) {
            const qint64 view = qint64(row.toObject().value(QLatin1String("OBJ_VW_ID")).toDouble());
            if (view != 0 && !m_views.contains(view))
                problems << QStringLiteral("navigation %1: view %2 is not in the catalogue").arg(it.key()).arg(view);
        }
    }
    for (const ListSpec &list : m_lists) {
        if (!database.hasTable(list.source)) {
            problems << QStringLiteral("list %1: no table %2").arg(list.name, list.source);
            continue;
        }
        checkColumn(list.name, list.source, list.nameColumn);
        checkColumn(list.name, list.source, list.valueColumn);
    }
    return problems;
}

const ViewDefinition *Catalogue::view(qint64 id) const
{
    const auto it = m_views.constFind(id);
    return it == m_views.constEnd() ? nullptr : &it.value();
}

const ListSpec *Catalogue::list(const QString &name) const
{
    const auto it = m_lists.constFind(name);
    return it == m_lists.constEnd() ? nullptr : &it.value();
}

bool Catalogue::navigationRows(qint64 root, const QString &serviceBase, QJsonArray *rows) const
{
    const auto it = m_topics.constFind(root);
    if (it == m_topics.constEnd())
        return false;
    for (const QJsonValue &value : it.value()) {
        QJsonObject row = value.toObject();
        QString url = row.value(QLatin1String("NODE_URL")).toString();
        if (url.contains(QLatin1String("{service}"))) {
            url.replace(QLatin1String("{service}"), serviceBase);
            row.insert(QStringLiteral("NODE_URL"), url);
        }
        rows->append(row);
    }
    return true;
}

QByteArray Catalogue::helpPage(const QString &name) const
{
    static const QRegularExpression safeName(QStringLiteral("^[A-Za-z0-9_-]+\\.html$"));
    if (!safeName.match(name).hasMatch())
        return {};
    QFile file(QStringLiteral(":/catalogue/help/") + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

} // namespace SubjectService
