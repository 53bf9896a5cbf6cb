#include "tfjsonobjnode.h"

#include <QMap>
#include <QMessageBox>
#include <QVariant>

void TFJsonObjNode::makeTree(const QJsonArray &rows, QList<TFJsonObjNode *> &roots, int type,
                              QList<TFJsonObjNode *> *owner)
{
    if (type == 0 || type == 5) {
        QMessageBox::warning(nullptr, QStringLiteral("warning"), QStringLiteral("not tree struct"), QMessageBox::Ok);
        return;
    }
    // Keyed by the code as text: siblings come out in that order, "10" before "9".
    QMap<QString, TFJsonObjNode *> byCode;
    for (const QJsonValue &value : rows) {
        if (!value.isObject())
            continue;
        const QJsonObject row = value.toObject();
        QString code;
        QString parentCode;
        bool isRoot = false;
        if (type == NavigationTree) {
            code = QString::number(row.value(QLatin1String("NODE_CODE")).toVariant().toULongLong());
            parentCode = QString::number(row.value(QLatin1String("P_NODE_CODE")).toVariant().toULongLong());
            isRoot = row.value(QLatin1String("LEVEL")).toVariant().toInt() == 1;
        } else if (type == BlockTree) {
            code = QString::number(row.value(QLatin1String("SECT_ID")).toVariant().toULongLong());
            parentCode = QString::number(row.value(QLatin1String("P_SECT_ID")).toVariant().toULongLong());
            isRoot = row.value(QLatin1String("P_SECT_ID")).toVariant().toULongLong() == 0;
        }
        auto *node = new TFJsonObjNode;
        node->isRoot = isRoot;
        node->code = code;
        node->parentCode = parentCode;
        node->object = row;
        if (owner)
            owner->append(node);
        byCode.insert(code, node); // a later row of the same code replaces the earlier
    }
    for (TFJsonObjNode *node : qAsConst(byCode)) {
        if (node->isRoot) {
            roots.append(node);
        } else if (TFJsonObjNode *parent = byCode.value(node->parentCode)) {
            node->parent = parent;
            parent->children.append(node);
        }
        // A node whose parent is missing stays out of the tree.
    }
}
