#include "../shared/stubview.h"

#include <QtTest>

namespace {

// A view whose order is what the test gives.
class View : public StubView
{
public:
    FilterParam::DataSourceFilter orderPair;

    FilterParam::DataSourceFilter order() override { return orderPair; }
};

TFTableModelData::FilterData filterRow(const QString &field, const QString &op, const QString &category = "0",
                                       const QString &defaultValue = QString(), const QString &type = QString())
{
    TFTableModelData::FilterData row;
    row.FieldName = field;
    row.Operator = op;
    row.ParameterCategory = category;
    row.DefualtValue = defaultValue;
    row.ValueType = type;
    row.ClassName = QStringLiteral("TFLineEdit");
    return row;
}

RowData mainRow()
{
    RowData row;
    for (const auto &[field, value] : QList<QPair<QString, QVariant>>{{"SECU_ID", 1001}, {"COM_ID", 77}, {"NAME", "abc"}})
    {
        TFTableModelData::tagCellValue cell;
        cell.fieldName = field;
        cell.valueType = QStringLiteral("Int64");
        cell.value = value;
        row.append(cell);
    }
    return row;
}

QString describe(const QList<FilterParam::DataSourceFilter> &params)
{
    QStringList parts;
    for (const auto &p : params)
        parts << p.key + "=" + p.value.toString();
    return parts.join(';');
}

QString describe(const QList<FilterParam::CustomFilter> &filters)
{
    QStringList parts;
    for (const auto &f : filters)
        parts << QStringLiteral("%1 %2 :%3=%4").arg(f.fieldName, f.op, f.paramName, f.values.value(0).toString());
    return parts.join(';');
}

} // namespace

using FilterRows = QList<TFTableModelData::FilterData>;
using Controls = QList<FilterParam::Cntrl>;
Q_DECLARE_METATYPE(FilterParam::Cntrl)

class tst_TFBaseView : public QObject
{
    Q_OBJECT

private slots:
    void childFilters_data();
    void childFilters();
};

void tst_TFBaseView::childFilters_data()
{
    QTest::addColumn<FilterRows>("rows");
    QTest::addColumn<QString>("link");
    QTest::addColumn<Controls>("controls");
    QTest::addColumn<QString>("params");
    QTest::addColumn<QString>("filters");

    FilterParam::Cntrl interval;
    interval.key = QStringLiteral("TRADE_DATE,TRADE_DATE");
    interval.multiField = true;
    interval.value = QStringLiteral("2024-01-01,2024-06-30");
    interval.valueType = QStringLiteral("string");
    FilterParam::Cntrl intervalParam = interval;
    intervalParam.dataSourceFilter = true;

    QTest::newRow("linked field from the row, as a filter")
        << FilterRows{filterRow("SECU_ID", "=")} << "A.SECU_ID=数据源.SECU_ID"
        << Controls() << "order=" << "SECU_ID == :SECU_ID=1001";
    QTest::newRow("left piece that names a row field stays whole; parameter")
        << FilterRows{filterRow("CID", "=", "1")} << "COM_ID=数据源.CID"
        << Controls() << "CID=77;order=" << "";
    QTest::newRow("no link entry takes the default")
        << FilterRows{filterRow("YEAR", ">=", "0", "2020")} << "A.SECU_ID=B.SECU_ID"
        << Controls() << "order=" << "YEAR >= :YEAR=2020";
    QTest::newRow("unknown operator becomes ==; empty field skipped")
        << FilterRows{filterRow("", "="), filterRow("NAME", "~")} << "X.NAME=Y.NAME"
        << Controls() << "order=" << "NAME == :NAME=abc";
    QTest::newRow("date parameter from text keeps its text, '=' removed")
        << FilterRows{filterRow("D", "=", "1", "=2024-03-01", "DateTime")} << ""
        << Controls() << "D=2024-03-01;order=" << "";
    QTest::newRow("between: the suffix stays on the name for the next value")
        << FilterRows{filterRow("TRADE_DATE", "Between")} << ""
        << Controls{interval} << "order="
        << "TRADE_DATE <= :TRADE_DATE_start=2024-01-01;TRADE_DATE_start <= :TRADE_DATE_start_start=2024-06-30";
    QTest::newRow("between from a data-source control: parameters")
        << FilterRows{filterRow("TRADE_DATE", "between")} << ""
        << Controls{intervalParam} << "TRADE_DATE=2024-01-01;TRADE_DATE=2024-06-30;order=" << "";
}

void tst_TFBaseView::childFilters()
{
    QFETCH(FilterRows, rows);
    QFETCH(QString, link);
    QFETCH(Controls, controls);
    QFETCH(QString, params);
    QFETCH(QString, filters);

    View view;
    view.rows = rows;
    view.orderPair = FilterParam::DataSourceFilter{QStringLiteral("order"), QVariant()};
    // What a previous row left behind is replaced.
    view.setParams({{QStringLiteral("OLD"), 1}});
    view.setFilters({FilterParam::CustomFilter{"OLD", "OLD", "==", {1}}});
    view.setChildFilters(controls, mainRow(), link);
    QCOMPARE(describe(view.params()), params);
    QCOMPARE(describe(view.filters()), filters);
}

QTEST_MAIN(tst_TFBaseView)
#include "tst_tfbaseview.moc"
