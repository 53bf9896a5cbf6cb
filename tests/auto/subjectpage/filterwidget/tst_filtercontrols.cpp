#include "filterwidget/tfdatetimeinterval.h"
#include "filterwidget/tffiltersubwidgetfactory.h"
#include "filterwidget/tffilterwidget.h"

#include "expression/tfcustommath.h"

#include <QDateEdit>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QSpinBox>
#include <QtTest>

#include <time.h>

namespace {

TFTableModelData::FilterData row(const QString &className, const QString &field, const QString &op,
                                 const QString &valueType, const QString &defaultValue,
                                 const QString &category = QStringLiteral("0"))
{
    TFTableModelData::FilterData data;
    data.ClassName = className;
    data.FieldName = field;
    data.Operator = op;
    data.ValueType = valueType;
    data.DefualtValue = defaultValue;
    data.ParameterCategory = category;
    data.Caption = QStringLiteral("标题");
    return data;
}

// "key op valueType multi value", the value as compact JSON so that its
// type shows: "5" is text, 5 a number.
QString describe(const FilterParam::Cntrl &cntrl)
{
    if (cntrl.key.isEmpty())
        return QString();
    const QJsonArray holder{QJsonValue::fromVariant(cntrl.value)};
    QString value = QString::fromUtf8(QJsonDocument(holder).toJson(QJsonDocument::Compact));
    value = value.mid(1, value.size() - 2);
    return QStringLiteral("%1 %2 %3 %4 %5")
        .arg(cntrl.key, cntrl.op, cntrl.valueType, cntrl.multiField ? "multi" : "single", value);
}

const QDateTime kNow(QDate(2024, 6, 15), QTime(10, 30));

} // namespace

class tst_FilterControls : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void defaultsAndReports_data();
    void defaultsAndReports();
    void serviceDateTextKeepsTheZone_data();
    void serviceDateTextKeepsTheZone();
    void userInput();
    void intervalStep_data();
    void intervalStep();

private:
    QByteArray m_tz;
};

void tst_FilterControls::initTestCase()
{
    m_tz = qgetenv("TZ");
    qputenv("TZ", "Asia/Shanghai");
    tzset();
    TFCustomMath::instance()->setClock([] { return kNow; });
}

void tst_FilterControls::cleanupTestCase()
{
    TFCustomMath::instance()->setClock(TFCustomMath::Clock());
    if (m_tz.isNull())
        qunsetenv("TZ");
    else
        qputenv("TZ", m_tz);
    tzset();
}

void tst_FilterControls::defaultsAndReports_data()
{
    QTest::addColumn<TFTableModelData::FilterData>("data");
    QTest::addColumn<QString>("report");

    // Hidden holders of a value.
    QTest::newRow("label: decimal list") << row("VirtualCntrl", "X", "IN", "decimal", "1;2;;3")
                                         << "X in intlist single [1,2,3]";
    QTest::newRow("label: text list") << row("VirtualCntrl", "X", "NotIn", "string", "a;b")
                                      << "X nin stringList single [\"a\",\"b\"]";
    QTest::newRow("label: parameter loses its =") << row("F9SecuIdCntrl", "X", "=", "decimal", "=12", "1")
                                                  << "X == decimal single \"12\"";
    QTest::newRow("label: filter keeps its =") << row("F9SecuIdCntrl", "X", "=", "decimal", "=12", "2")
                                               << "X == decimal single \"=12\"";
    QTest::newRow("label: dynamic default waits for the bar")
        << row("VirtualCntrl", "Y", "<=", "decimal", "=$ofyear([报告日])", "1")
        << "Y <= decimal single \"=$ofyear([报告日])\"";
    QTest::newRow("label: date") << row("VirtualCntrl", "D", "<>", "DateTime", "2020-07-30")
                                 << "D != DateTime single \"/Date(1596038400000+0800)\"";
    QTest::newRow("label: short date") << row("VirtualCntrl", "D", "", "datetime", "2020-7-3")
                                       << "D == datetime single \"/Date(1593705600000+0800)\"";
    QTest::newRow("label: unreadable date") << row("VirtualCntrl", "D", "and", "datetime", "30.07.2020")
                                            << "D && datetime single \"30.07.2020\"";
    QTest::newRow("label: operator word has case") << row("VirtualCntrl", "X", "like", "string", "a")
                                                   << "X == string single \"a\"";

    // Text box.
    QTest::newRow("text: keywords when no field") << row("KeywordsBox", "", "LIKE", "string", "")
                                                  << "keywords like string single \"\"";
    QTest::newRow("text: default as it stands") << row("TextEdit", "CODE", "LIKE", "string", "=60%")
                                                << "CODE like string single \"=60%\"";
    QTest::newRow("text: IN of numbers goes out as texts") << row("TextEdit", "N", "IN", "Decimal", "1,2,,3")
                                                           << "N in intlist single [\"1\",\"2\",\"3\"]";
    QTest::newRow("text: IN of texts") << row("TextEdit", "S", "IN", "string", "a,,b")
                                       << "S in stringList single [\"a\",\"b\"]";

    // Date.
    QTest::newRow("date: end of the day, also for >=") << row("DateEdit", "D", ">=", "DateTime", "=date'2024-01-01'")
                                                       << "D >= DateTime single \"2024-01-01 23:59:59\"";
    QTest::newRow("date: unreadable keeps the editor's own day") << row("DateEdit", "D", "<", "DateTime", "=")
                                                                 << "D < DateTime single \"2000-01-01 23:59:59\"";
    QTest::newRow("date: no functions") << row("DateEdit", "D", "<", "DateTime", "$today()")
                                        << "D < DateTime single \"2000-01-01 23:59:59\"";

    // Date range.
    QTest::newRow("range: two dates") << row("DateTimeInterval", "T", "=", "DateTime", "=date'2020-01-01';=date'2020-03-31'")
                                      << "T >=,<= DateTime multi \"2020-01-01 00:00:00,2020-03-31 23:59:59\"";
    QTest::newRow("range: functions") << row("DateTimeInterval", "T", "", "DateTime", "$adddays(-30);$today()")
                                      << "T >=,<= DateTime multi \"2024-05-16 00:00:00,2024-06-15 23:59:59\"";
    QTest::newRow("range: date and today") << row("DateTimeInterval", "T", "", "DateTime", "=date'2020-01-01';$today()")
                                           << "T >=,<= DateTime multi \"2020-01-01 00:00:00,2024-06-15 23:59:59\"";
    QTest::newRow("range: one part is today twice") << row("DateTimeInterval", "T", "", "DateTime", "=date'2020-01-01'")
                                                    << "T >=,<= DateTime multi \"2024-06-15 00:00:00,2024-06-15 23:59:59\"";
    QTest::newRow("range: start after end raises the end") << row("DateTimeInterval", "T", "", "DateTime", "date'2020-05-01';date'2020-01-01'")
                                                           << "T >=,<= DateTime multi \"2020-05-01 00:00:00,2020-05-01 23:59:59\"";
    QTest::newRow("range: unknown function leaves the editor") << row("DateTimeInterval", "T", "", "DateTime", "$nosuch(1);date'2020-01-01'")
                                                               << "T >=,<= DateTime multi \"2000-01-01 00:00:00,2020-01-01 23:59:59\"";

    // Number range.
    QTest::newRow("numbers: 0 and 0 set nothing") << row("DecimalTextEditInterval", "P", "", "decimal", "0;0") << "";
    QTest::newRow("numbers: one part sets nothing") << row("DecimalTextEditInterval", "P", "", "decimal", "7") << "";
    QTest::newRow("numbers: 0 and 1") << row("DecimalTextEditInterval", "P", "=", "decimal", "0;1")
                                      << "P >=,<= decimal multi \"0,1\"";
    QTest::newRow("numbers: no order check") << row("DecimalTextEditInterval", "P", "", "decimal", "=5;=-3")
                                             << "P >=,<= decimal multi \"5,-3\"";
    QTest::newRow("numbers: clamped") << row("DecimalTextEditInterval", "P", "", "decimal", "-20000;20000")
                                      << "P >=,<= decimal multi \"-10000,10000\"";

    // Buttons set no filter.
    QTest::newRow("button") << row("SimpleButtonGetData", "B", "=", "string", "x") << "";
}

void tst_FilterControls::defaultsAndReports()
{
    QFETCH(TFTableModelData::FilterData, data);
    QFETCH(QString, report);

    TFFilterWidget bar;
    TFBaseFilterWidget *control = TFFilterCtlFactory::createWidget(data, &bar);
    QVERIFY(control);
    const FilterParam::Cntrl cntrl = control->getCntrl();
    QCOMPARE(describe(cntrl), report);
    if (!cntrl.key.isEmpty()) {
        QCOMPARE(cntrl.caption, data.Caption);
        QVERIFY(cntrl.objName.isEmpty());
        QCOMPARE(cntrl.index, 0);
    }
}

void tst_FilterControls::serviceDateTextKeepsTheZone_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("text");

    QTest::newRow("east") << QByteArray("Asia/Shanghai") << "/Date(1596038400000+0800)";
    QTest::newRow("west, summer") << QByteArray("America/New_York") << "/Date(1596081600000-0400)";
    QTest::newRow("half hour") << QByteArray("Asia/Kolkata") << "/Date(1596047400000+0530)";
    QTest::newRow("utc") << QByteArray("UTC") << "/Date(1596067200000+0000)";
}

void tst_FilterControls::serviceDateTextKeepsTheZone()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, text);

    qputenv("TZ", zone);
    tzset();
    TFFilterWidget bar;
    TFBaseFilterWidget *control =
        TFFilterCtlFactory::createWidget(row("VirtualCntrl", "D", "", "DateTime", "2020-07-30"), &bar);
    const QString value = control->getCntrl().value.toString();
    qputenv("TZ", "Asia/Shanghai");
    tzset();
    QCOMPARE(value, text);
}

void tst_FilterControls::userInput()
{
    TFFilterWidget bar;
    auto *text = TFFilterCtlFactory::createWidget(row("TextEdit", "S", "IN", "string", ""), &bar);
    text->findChild<QLineEdit *>()->setText(QStringLiteral("x,y"));
    QCOMPARE(describe(text->getCntrl()), QStringLiteral("S in stringList single [\"x\",\"y\"]"));

    // A start moved past the end pulls the end along.
    auto *range = TFFilterCtlFactory::createWidget(
        row("DateTimeInterval", "T", "", "DateTime", "date'2020-01-01';date'2020-01-31'"), &bar);
    range->findChild<QDateEdit *>(QStringLiteral("startDate"))->setDate(QDate(2020, 3, 1));
    QCOMPARE(describe(range->getCntrl()),
             QStringLiteral("T >=,<= DateTime multi \"2020-03-01 00:00:00,2020-03-01 23:59:59\""));

    auto *numbers = TFFilterCtlFactory::createWidget(row("DecimalTextEditInterval", "P", "", "decimal", "0;0"), &bar);
    numbers->findChild<QSpinBox *>(QStringLiteral("endValue"))->setValue(5);
    QCOMPARE(describe(numbers->getCntrl()), QStringLiteral("P >=,<= decimal multi \"0,5\""));
}

void tst_FilterControls::intervalStep_data()
{
    QTest::addColumn<QString>("parameters");
    QTest::addColumn<int>("step");

    QTest::newRow("configured") << "Step=5" << 5;
    QTest::newRow("zero counts as one") << "Step=0" << 1;
    QTest::newRow("no =") << "5" << 1;
    QTest::newRow("not a number") << "Step=x" << 1;
    QTest::newRow("second part of three") << "a=3=9" << 3;
}

void tst_FilterControls::intervalStep()
{
    QFETCH(QString, parameters);
    QFETCH(int, step);

    TFTableModelData::FilterData data = row("DecimalTextEditInterval", "P", "", "decimal", "1;2");
    data.ControlParameters = parameters;
    TFFilterWidget bar;
    TFBaseFilterWidget *control = TFFilterCtlFactory::createWidget(data, &bar);
    for (QSpinBox *box : control->findChildren<QSpinBox *>())
        QCOMPARE(box->singleStep(), step);
}

QTEST_MAIN(tst_FilterControls)
#include "tst_filtercontrols.moc"
