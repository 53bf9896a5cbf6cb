#include "tftreemodel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QtTest>

namespace {

QJsonValue rows(const char *json)
{
    return QJsonDocument::fromJson(json).array();
}

// Rows written as "code/parent/caption,..." with the keys of a main tree
// (NODE_...) or of a block tree (SECT_...); a text in brackets is taken as is.
QJsonValue rows(const QString &text, bool blockTree)
{
    if (text.startsWith(QLatin1Char('[')) || text.startsWith(QLatin1Char('{')))
        return QJsonDocument::fromJson(text.toUtf8()).array();
    const QStringList keys = blockTree ? QStringList{"SECT_ID", "P_SECT_ID", "SECT_NAME"}
                                       : QStringList{"NODE_CODE", "P_NODE_CODE", "NODE_CAP"};
    QJsonArray out;
    for (const QString &row : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList f = row.split(QLatin1Char('/'));
        out.append(QJsonObject{{keys[0], f[0].toInt()}, {keys[1], f[1].toInt()}, {keys[2], f[2]}});
    }
    return out;
}

// The tree as text: "caption(child,child)" for each top-level row, joined by ",".
QString shape(const QAbstractItemModel &model, const QModelIndex &parent = QModelIndex())
{
    QStringList parts;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        QString part = index.data().toString();
        if (model.rowCount(index) > 0)
            part += QLatin1Char('(') + shape(model, index) + QLatin1Char(')');
        parts << part;
    }
    return parts.join(QLatin1Char(','));
}

QModelIndex findCode(const QAbstractItemModel &model, qlonglong code)
{
    return model.match(model.index(0, 0), TFTreeItem::CodeRole, code, 1, Qt::MatchRecursive).value(0);
}

} // namespace

class tst_TFSubjectTreeModel : public QObject
{
    Q_OBJECT
private slots:
    void build_data();
    void build();
    void nodeValues();
    void checksSpreadToChildren();
};

void tst_TFSubjectTreeModel::build_data()
{
    QTest::addColumn<QString>("rows");
    QTest::addColumn<int>("rootCode");
    QTest::addColumn<bool>("checkable"); // a block tree
    QTest::addColumn<bool>("result");
    QTest::addColumn<QString>("expected");
    QTest::newRow("empty array") << "[]" << 2 << false << false << QString();
    QTest::newRow("not an array") << "{\"NODE_CODE\":3}" << 2 << false << false << QString();
    QTest::newRow("array order kept") << "3/2/b,4/2/a" << 2 << false << true << "b,a";
    QTest::newRow("child before parent") << "5/3/leaf,3/2/folder" << 2 << false << true << "folder(leaf)";
    QTest::newRow("row with the root code dropped") << "2/0/root,3/2/x" << 2 << false << true << "x";
    QTest::newRow("orphan left out") << "3/2/x,9/77/lost,10/9/under lost" << 2 << false << true << "x";
    QTest::newRow("same code twice: children go to the first") << "3/2/first,3/2/second,4/3/kid" << 2 << false
                                                              << true << "first(kid),second";
    QTest::newRow("non-objects passed over") << "[1,\"x\",null,{\"NODE_CODE\":3,\"P_NODE_CODE\":2,\"NODE_CAP\":\"x\"}]"
                                             << 2 << false << true << "x";
    QTest::newRow("rows naming each other as parent") << "3/4/a,4/3/b,5/2/c" << 2 << false << true << "c";
    QTest::newRow("own code as parent: under the next row with that code")
        << "3/2/first,3/3/second,7/7/alone" << 2 << false << true << "first(second)";
    QTest::newRow("own code as parent, the first of two: under the second") << "3/3/first,3/2/second" << 2 << false
                                                                         << true << "second(first)";
    QTest::newRow("rows under a ring left out") << "5/3/tail,3/4/a,4/3/b,6/2/c,8/6/d" << 2 << false << true << "c(d)";
    QTest::newRow("block tree ignores the root code passed in") << "11/0/银行,12/11/国有,13/2/under two" << 2
                                                                << true << true << "银行(国有)";
    QTest::newRow("block tree reads SECT keys only")
        << "[{\"NODE_CODE\":3,\"P_NODE_CODE\":0,\"NODE_CAP\":\"main row\"}]" << 0 << true << true << QString();
}

void tst_TFSubjectTreeModel::build()
{
    QFETCH(QString, rows);
    QFETCH(int, rootCode);
    QFETCH(bool, checkable);
    TFSubjectTreeModel model;
    QTEST(model.build(::rows(rows, checkable), rootCode, checkable), "result");
    QTEST(shape(model), "expected");
    QCOMPARE(model.rootItem()->code(), qlonglong(checkable ? 0 : rootCode));
    QCOMPARE(model.columnCount(), 1);
    QCOMPARE(model.flags(QModelIndex()), Qt::NoItemFlags);
    if (model.rowCount() == 0)
        return;
    // Rows of a block tree take checks, starting unchecked; a main tree's do not.
    const QModelIndex first = model.index(0, 0);
    QCOMPARE(bool(model.flags(first) & Qt::ItemIsUserCheckable), checkable);
    QCOMPARE(model.data(first, Qt::CheckStateRole), checkable ? QVariant(int(Qt::Unchecked)) : QVariant());
}

void tst_TFSubjectTreeModel::nodeValues()
{
    TFSubjectTreeModel model;
    const char *json = "[{\"NODE_CODE\":\"12\",\"P_NODE_CODE\":2,\"NODE_CAP\":\"行情\",\"NODE_TYP\":\"1\",\"LEVEL\":1,"
                       "\"OBJ_VW_ID\":260,\"NODE_URL\":\"http://x\"},{\"NODE_CODE\":13,\"P_NODE_CODE\":12}]";
    QVERIFY(model.build(rows(json), 2, false));
    const QModelIndex index = model.index(0, 0);
    QCOMPARE(index.data(TFTreeItem::CodeRole).toLongLong(), 12); // a code sent as text
    QCOMPARE(index.data(TFTreeItem::ParentCodeRole).toLongLong(), 2);
    QCOMPARE(index.data(TFTreeItem::NodeTypeRole).toLongLong(), 1);
    QCOMPARE(index.data(TFTreeItem::LevelRole).toLongLong(), 1);
    QCOMPARE(index.data(TFTreeItem::ViewIdRole).toLongLong(), 260);
    QCOMPARE(index.data(TFTreeItem::UrlRole).toString(), QStringLiteral("http://x"));
    const QModelIndex bare = model.index(0, 0, index);
    QCOMPARE(bare.data().toString(), QString());
    QCOMPARE(bare.data(TFTreeItem::LevelRole).toLongLong(), 0);
    QCOMPARE(bare.data(TFTreeItem::UrlRole).toString(), QString());
    QCOMPARE(model.parent(bare), index);
    QVERIFY(!model.parent(index).isValid());
    QVERIFY(!model.data(QModelIndex()).isValid());
}

void tst_TFSubjectTreeModel::checksSpreadToChildren()
{
    TFSubjectTreeModel model;
    model.build(rows(QStringLiteral("1/0/p,2/1/a,3/1/b,4/1/c,5/0/other"), true), 0, true);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    const QModelIndex parent = findCode(model, 1);
    // The base class's answer comes back, even when checks changed.
    QCOMPARE(model.setData(parent, Qt::Checked, Qt::CheckStateRole), false);
    QCOMPARE(changed.count(), 4);
    QVariantList codes = model.checkedCodes();
    std::sort(codes.begin(), codes.end(), [](const QVariant &a, const QVariant &b) { return a.toInt() < b.toInt(); });
    QCOMPARE(codes, QVariantList({1, 2, 3, 4}));

    model.setData(findCode(model, 3), Qt::Unchecked, Qt::CheckStateRole);
    QCOMPARE(model.data(parent, Qt::CheckStateRole).toInt(), int(Qt::Checked));
    QCOMPARE(model.checkedCodes().size(), 3);

    changed.clear();
    model.setData(parent, Qt::PartiallyChecked, Qt::CheckStateRole);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(model.checkedCodes().size(), 3);

    model.clearChecks();
    QVERIFY(model.checkedCodes().isEmpty());

    // A main tree takes no checks.
    TFSubjectTreeModel mainTree;
    mainTree.build(rows(QStringLiteral("3/2/x"), false), 2, false);
    QVERIFY(!mainTree.setData(mainTree.index(0, 0), Qt::Checked, Qt::CheckStateRole));
    QVERIFY(mainTree.checkedCodes().isEmpty());
}

QTEST_MAIN(tst_TFSubjectTreeModel)
#include "tst_tftreemodel.moc"
