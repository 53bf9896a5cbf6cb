#include "documenttables.h"

#include "expression/expressionparse.h"
#include "jsonparser/tfheaderbuilder.h"
#include "jsonparser/tfrowbuilder.h"
#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfsubjecttablemodel.h"
#include "mulittable/tfunboundexpression.h"

#include "subjectservice.h"

#include "../../shared/viewconfigurationrequest.h"
#include "tfcore/tfcore.h"

#include <QDateTime>
#include <QDir>
#include <QEventLoop>
#include <QJSEngine>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <memory>

using TFTableModelData::tagCellValue;

namespace {

// The display text of a cell, worked out the plain way from the column's
// record: what the model must show.
QVariant expectedText(const tagCellValue& cell, const HeaderFieldInfo& record)
{
    const QVariant& value = cell.value;
    if (!value.isValid() || int(value.type()) == QMetaType::Nullptr)
        return QVariant();
    const QString type = cell.valueType.toLower();
    if (type == QLatin1String("decimal")) {
        bool ok = false;
        double number = value.toDouble(&ok);
        if (!ok)
            return value;
        int precision = 2;
        for (int n = 0; n <= 20; ++n) {
            if (record.formatString.toLower() == QStringLiteral("n%1").arg(n))
                precision = n;
        }
        if (record.columnType.toLower() == QLatin1String("bandedgridcolumnwithunit") && record.showUnitFactor != 0)
            number = number * record.prevUnitFactor / record.showUnitFactor;
        return QStringLiteral("%L1").arg(number, 0, 'f', precision, QLatin1Char(' '));
    }
    if (type.contains(QLatin1String("string")))
        return value.toString().trimmed();
    if (type == QLatin1String("datetime")) {
        const QString format = record.formatString.isEmpty() ? QStringLiteral("yyyy-MM-dd") : record.formatString;
        return QDateTime::fromMSecsSinceEpoch(value.toLongLong(), Qt::LocalTime).toString(format);
    }
    return value;
}

// The colour of a cell evaluated afresh in an engine of its own, the way
// the expression is written: publish the row, evaluate "(expression)".
QVariant expectedColor(QJSEngine& engine, const RowData& row, const QList<TFTreeStruct*>& leaves,
                       const QString& expression)
{
    for (int i = 0; i < row.size() - 1; ++i) {
        const QString name = i < leaves.size() ? leaves.at(i)->info().fieldName : QString();
        engine.globalObject().setProperty(QStringLiteral("$%1").arg(name), row.at(i).value.toString());
    }
    QJSValue result = engine.evaluate(QStringLiteral("(%1)").arg(expression), QString(), 1);
    if (result.isCallable())
        result = result.call();
    if (result.isError() || result.isNull() || result.isUndefined() || !result.isString())
        return QVariant();
    const QString text = result.toString();
    if (text.isEmpty() || text == QLatin1String("$use_default_color"))
        return QVariant();
    return QColor(text);
}

} // namespace

class tst_CatalogueRows : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void view_data();
    void view();

private:

    QTemporaryDir m_databaseDir;
    std::unique_ptr<SubjectService::Server> m_server;
};

void tst_CatalogueRows::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
    QVERIFY(m_databaseDir.isValid());
    SubjectService::Options options;
    options.dbPath = m_databaseDir.filePath("catalogue.sqlite");
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
}

void tst_CatalogueRows::cleanupTestCase()
{
    if (m_server)
        m_server->stop();
}

void tst_CatalogueRows::view_data()
{
    QTest::addColumn<qint64>("viewId");
    const QDir dir(QStringLiteral(CATALOGUE_VIEWS_DIR));
    const QStringList names = dir.entryList({ "*.json" }, QDir::Files, QDir::Name);
    QVERIFY(!names.isEmpty());
    for (const QString& name : names)
        QTest::newRow(qPrintable(name)) << QFileInfo(name).baseName().toLongLong();
}

void tst_CatalogueRows::view()
{
    QFETCH(qint64, viewId);
    const QJsonObject reply = fetchViewConfiguration(m_server->baseUrl(), viewId);
    QCOMPARE(reply.value("state").toInt(), 1);
    const QJsonObject document = reply.value("data").toObject();
    QVERIFY(document.contains("Data"));

    DocumentTables tables(document);
    TFTreeStruct root(QString{});
    ExpressionParse parser;
    const TFSubject::ExpressionParseSource source = [&parser] { return &parser; };
    TFSubject::buildHeader(&root, tables.view.get(), tables.objectView.get(), tables.summary.get(), source);
    const bool cross = TFSubject::usesCrossColumns(tables.view.get(), tables.summary.get());
    TFUnboundExpression unbound(source);
    TFSubject::TFRowBuilder builder(root.leaves(), &unbound, [&](const QString& name) {
        return TFSubject::referenceField(name, cross, tables.summary.get(), tables.objectView.get()).valueType;
    });
    const QList<QVariantMap> raw = tables.data.rows();
    const QList<RowData> rows = builder.build(raw);
    QCOMPARE(rows.size(), raw.size());

    TFSubjectTableModel model;
    model.setHeader(&root);
    model.setRows(rows);
    const QList<TFTreeStruct*> leaves = root.leaves();
    QCOMPARE(model.columnCount(), leaves.size());

    // A second parser for the derived cells, so that nothing kept by the
    // first decides the expected value.
    ExpressionParse checkParser;
    TFUnboundExpression checkUnbound([&checkParser] { return &checkParser; });
    QJSEngine colorEngine;
    colorEngine.globalObject().setProperty("$skin", TFCore::instance()->getCurrentSkinId());
    int computed = 0;
    int colored = 0;
    for (int r = 0; r < rows.size(); ++r) {
        const RowData& row = rows.at(r);
        const QVariantMap& source = raw.at(r);
        QStringList further;
        for (auto it = source.constBegin(); it != source.constEnd(); ++it) {
            bool isLeaf = false;
            for (const TFTreeStruct* leaf : leaves)
                isLeaf = isLeaf || leaf->info().fieldName == it.key();
            if (!isLeaf)
                further << it.key();
        }
        QCOMPARE(row.size(), leaves.size() + further.size());
        for (int c = 0; c < row.size(); ++c) {
            const tagCellValue& cell = row.at(c);
            const QString where = QStringLiteral("row %1 cell %2 (%3)").arg(r).arg(c).arg(cell.fieldName);
            QCOMPARE(cell.secuId, c < leaves.size() ? source.value("SECU_ID").toDouble() : 0.0);
            if (c >= leaves.size()) {
                QVERIFY2(cell.fieldName == further.at(c - leaves.size()), qPrintable(where));
                QVERIFY2(cell.value == source.value(cell.fieldName), qPrintable(where));
                continue;
            }
            const HeaderFieldInfo& record = leaves.at(c)->info();
            QVERIFY2(cell.fieldName == record.fieldName && cell.valueType == record.valueType
                         && cell.formatString == record.formatString && cell.url == record.url
                         && cell.columnType == record.columnType && cell.textAlignment == record.textAlignment
                         && cell.prevUnitFactor == record.prevUnitFactor
                         && cell.showUnitFactor == record.showUnitFactor
                         && cell.unitCategory == record.unitCategory,
                     qPrintable(where));
            QVariant value = source.value(record.fieldName);
            if (record.valueType.toLower() == QLatin1String("decimal") && !record.unboundExpression.isEmpty()) {
                value = checkUnbound.evaluate(record.unboundExpression, source);
                ++computed;
            }
            QVERIFY2(cell.value == value, qPrintable(where + ": " + cell.value.toString() + " != " + value.toString()));

            const QModelIndex index = model.index(r, c);
            QVERIFY2(index.data(Qt::DisplayRole) == expectedText(cell, record), qPrintable(where));
            QCOMPARE(index.data(TFSubjectTableModel::RawValueRole), cell.value);
            if (!record.cellStyleExpression.isEmpty()) {
                const QVariant expected = expectedColor(colorEngine, row, leaves, record.cellStyleExpression);
                // Asked twice: the kept colour must be the fresh one.
                QVERIFY2(index.data(Qt::ForegroundRole) == expected, qPrintable(where));
                QVERIFY2(index.data(Qt::ForegroundRole) == expected, qPrintable(where));
                ++colored;
            }
        }
    }
    qDebug() << "view" << viewId << rows.size() << "rows," << leaves.size() << "columns," << computed
             << "derived cells," << colored << "coloured cells";
}

QTEST_MAIN(tst_CatalogueRows)
#include "tst_cataloguerows.moc"
