// Navigation rows come from the service. The first byte of an input picks
// the tree (bit 0: the checkable block tree) and the root code (the rest,
// modulo 8, so that rows meet it); the remaining bytes are the JSON text.
//
// The tree the model builds is compared with one built the slow, plain way:
// a row hangs under the first other row with its parent's code, and is shown
// when its chain of parents reaches the root. Then every index is walked,
// and a check on the first row is spread and read back.
#include "tftreemodel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QVector>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace {

void dropMessages(QtMsgType, const QMessageLogContext &, const QString &) {}

QString shapeOf(const QAbstractItemModel &model, const QModelIndex &parent, int *walked)
{
    QString text;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        if (!index.isValid() || model.parent(index) != parent)
            __builtin_trap();
        ++*walked;
        text += index.data(TFTreeItem::CodeRole).toString() + QLatin1Char(':') + index.data().toString();
        if (model.rowCount(index) > 0)
            text += QLatin1Char('(') + shapeOf(model, index, walked) + QLatin1Char(')');
        text += QLatin1Char(',');
    }
    return text;
}

struct Node
{
    qlonglong code;
    qlonglong parentCode;
    QString caption;
};

// The plain way, quadratic and obviously so.
QString expectedShape(const QVector<Node> &nodes, int parent, const QVector<int> &parentOf,
                      const QVector<bool> &shown)
{
    QString text;
    for (int i = 1; i < nodes.size(); ++i) {
        if (!shown[i] || parentOf[i] != parent)
            continue;
        text += QString::number(nodes[i].code) + QLatin1Char(':') + nodes[i].caption;
        const QString children = expectedShape(nodes, i, parentOf, shown);
        if (!children.isEmpty())
            text += QLatin1Char('(') + children + QLatin1Char(')');
        text += QLatin1Char(',');
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(dropMessages);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    const bool checkable = data[0] & 1;
    const int rootCode = (data[0] >> 1) % 8;
    const QByteArray json(reinterpret_cast<const char *>(data + 1), int(size - 1));
    const QJsonDocument document = QJsonDocument::fromJson(json);
    const QJsonValue rows = document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());

    TFSubjectTreeModel model;
    const bool built = model.build(rows, rootCode, checkable);
    if (built != (rows.isArray() && !rows.toArray().isEmpty()))
        __builtin_trap();
    int walked = 0;
    const QString shape = shapeOf(model, QModelIndex(), &walked);

    QVector<Node> nodes;
    nodes.append({model.rootItem()->code(), 0, QString()});
    if (built) {
        const QJsonArray array = rows.toArray();
        for (const QJsonValue &element : array) {
            if (!element.isObject())
                continue;
            std::unique_ptr<TFTreeItem> item(checkable ? TFSubjectTreeModel::createBlockTreeNode(element.toObject())
                                                       : TFSubjectTreeModel::createTreeNode(element.toObject()));
            if (item->code() != nodes[0].code)
                nodes.append({item->code(), item->parentCode(), item->text()});
        }
    }
    QVector<int> parentOf(nodes.size(), -1);
    for (int i = 1; i < nodes.size(); ++i) {
        for (int j = 0; j < nodes.size(); ++j) {
            if (j != i && nodes[j].code == nodes[i].parentCode) {
                parentOf[i] = j;
                break;
            }
        }
    }
    QVector<bool> shown(nodes.size(), false);
    for (int i = 1; i < nodes.size(); ++i) {
        int walk = i;
        for (int steps = 0; steps <= nodes.size() && walk > 0; ++steps)
            walk = parentOf[walk];
        shown[i] = walk == 0;
    }
    if (shape != expectedShape(nodes, 0, parentOf, shown))
        __builtin_trap();

    if (checkable && model.rowCount() > 0) {
        const QModelIndex first = model.index(0, 0);
        model.setData(first, Qt::Checked, Qt::CheckStateRole);
        if (model.checkedCodes().isEmpty() || model.data(first, Qt::CheckStateRole).toInt() != Qt::Checked)
            __builtin_trap();
        model.setData(first, Qt::Unchecked, Qt::CheckStateRole);
        if (!model.checkedCodes().isEmpty())
            __builtin_trap();
    }
    return 0;
}
