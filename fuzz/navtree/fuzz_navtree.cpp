// Navigation and block rows come from the service: any array must give a
// tree in which every node hangs under the node its parent code names, and
// a walk from the roots meets each node once, so that filling a tree widget
// from it ends.
#include "tfjsonobjnode.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

#include <cstddef>
#include <cstdint>

static void dropMessages(QtMsgType, const QMessageLogContext &, const QString &) {}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(dropMessages);
    return 0;
}

static void walk(const TFJsonObjNode *node, QSet<const TFJsonObjNode *> &seen, int owned)
{
    if (seen.contains(node) || seen.size() > owned)
        __builtin_trap();   // a node met twice: the walk would not end
    seen.insert(node);
    for (const TFJsonObjNode *child : node->children) {
        if (child->parent != node || child->parentCode != node->code || child->isRoot)
            __builtin_trap();
        walk(child, seen, owned);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QJsonDocument document =
        QJsonDocument::fromJson(QByteArray(reinterpret_cast<const char *>(data), int(size)));
    if (!document.isArray())
        return 0;
    for (int type : {int(TFJsonObjNode::BlockTree), int(TFJsonObjNode::NavigationTree)}) {
        QList<TFJsonObjNode *> roots;
        QList<TFJsonObjNode *> owner;
        TFJsonObjNode::makeTree(document.array(), roots, type, &owner);
        QSet<const TFJsonObjNode *> seen;
        for (const TFJsonObjNode *root : roots) {
            if (!root->isRoot || root->parent)
                __builtin_trap();
            walk(root, seen, owner.size());
        }
        qDeleteAll(owner);
    }
    return 0;
}
