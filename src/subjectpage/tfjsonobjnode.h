#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMetaType>
#include <QString>

// One row of a navigation tree made by the settings dialog; it rides on its
// tree item as a TFJsonObjNodePtr.
struct TFJsonObjNode
{
    enum TreeType { BlockTree = 1, NavigationTree = 2 };

    bool isRoot = false;
    QString code;
    QString parentCode;
    QJsonObject object;
    TFJsonObjNode *parent = nullptr;
    QList<TFJsonObjNode *> children;

    // Makes a tree of rows joined by their codes: type 1 the block rows
    // (SECT_ID, P_SECT_ID), type 2 the navigation rows (NODE_CODE,
    // P_NODE_CODE, LEVEL). Siblings stand in the text order of their codes;
    // a row whose parent is missing stays out. Every node made goes to
    // owner, which frees them.
    static void makeTree(const QJsonArray &rows, QList<TFJsonObjNode *> &roots, int type,
                         QList<TFJsonObjNode *> *owner);
};
using TFJsonObjNodePtr = TFJsonObjNode *;
Q_DECLARE_METATYPE(TFJsonObjNodePtr)
