#include <QtTest>

#include "expression/elementreadfactory.h"
#include "expression/tfelement.h"

#include <memory>

// Reads a whole source the way the parser does and lists each element as
// "type:text:end" (types: 1 field, 6 number, 8 variable, 9 operator,
// 10 function, 11 splitter).
static QStringList readAll(ElementReadFactory &factory, const QString &source)
{
    factory.setSource(source);
    QStringList elements;
    int position = 0;
    while (position < source.size()) {
        std::unique_ptr<TFElement> element(factory.readElement(position));
        if (!element) {
            ++position;
            continue;
        }
        if (element->endPosition() < position)
            break;
        elements.append(QStringLiteral("%1:%2:%3").arg(element->type()).arg(element->text()).arg(element->endPosition()));
        position = element->endPosition() + 1;
    }
    return elements;
}

class tst_ElementReadFactory : public QObject
{
    Q_OBJECT

private slots:
    void readElement_data();
    void readElement();
    void outsideTheSource();
    void operatorIndex();
};

void tst_ElementReadFactory::readElement_data()
{
    QTest::addColumn<QString>("previous");   // read first, to set the last character
    QTest::addColumn<QString>("source");
    QTest::addColumn<QStringList>("elements");

    QTest::newRow("fields and operators") << "" << "[A]+[B]*2" << QStringList{"1:A:2", "9:+:3", "1:B:6", "9:*:7", "6:2:8"};
    QTest::newRow("number") << "" << "12.5+1" << QStringList{"6:12.5:3", "9:+:4", "6:1:5"};
    QTest::newRow("number with two dots") << "" << "1.2.3*2" << QStringList{"6:1.2.3:4", "9:*:5", "6:2:6"};
    QTest::newRow("call at the start takes all") << "" << "ofyear()+1" << QStringList{"10:ofyear():7", "9:+:8", "6:1:9"};
    QTest::newRow("nested call") << "" << "f(g(1),2)*3" << QStringList{"10:f(g(1),2):8", "9:*:9", "6:3:10"};
    QTest::newRow("word without parenthesis runs to the end") << "" << "abc+1" << QStringList{"10:abc+1:4"};
    QTest::newRow("closing parenthesis first runs to the end") << "" << "a)b(c)d" << QStringList{"10:a)b(c)d:6"};
    QTest::newRow("call behind a splitter") << "" << "(todecimal([A]))/2"
                                            << QStringList{"11:(:0", "10:todecimal([A]):14", "11:):15", "9:/:16", "6:2:17"};
    QTest::newRow("field with a blank") << "" << "[Field 1]+2" << QStringList{"1:Field 1:8", "9:+:9", "6:2:10"};
    QTest::newRow("unclosed field") << "" << "1+[open" << QStringList{"6:1:0", "9:+:1", "1:open:6"};
    QTest::newRow("empty field") << "" << "[]" << QStringList{"1::1"};
    QTest::newRow("comma and remainder") << "" << "1,2%3" << QStringList{"6:1:0", "11:,:1", "6:2:2", "9:%:3", "6:3:4"};
    QTest::newRow("word behind an operator is a variable") << "2*" << "addyears(1)"
                                                           << QStringList{"8:addyears:7", "11:(:8", "6:1:9", "11:):10"};
    QTest::newRow("word behind a number") << "1" << "abs(1)" << QStringList{"8:abs:2", "11:(:3", "6:1:4", "11:):5"};
    QTest::newRow("word behind a field") << "[A]" << "x+1" << QStringList{"8:x:0", "9:+:1", "6:1:2"};
    QTest::newRow("underscore is no letter") << "" << "_x+1" << QStringList{"8:_x:1", "9:+:2", "6:1:3"};
    QTest::newRow("blank runs to a stop") << "" << " 1 +2" << QStringList{"8: 1 :2", "9:+:3", "6:2:4"};
    // A stop character gives an empty variable that ends before it: the scan ends.
    QTest::newRow("a stop character ends the scan") << "" << "[A]=1" << QStringList{"1:A:2"};
}

void tst_ElementReadFactory::readElement()
{
    QFETCH(QString, previous);
    QFETCH(QString, source);
    QFETCH(QStringList, elements);
    ElementReadFactory factory;
    readAll(factory, previous);
    QCOMPARE(readAll(factory, source), elements);
}

void tst_ElementReadFactory::outsideTheSource()
{
    ElementReadFactory factory;
    factory.setSource(QStringLiteral("1+2"));
    QVERIFY(!factory.readElement(-1));
    QVERIFY(!factory.readElement(3));
    factory.setSource(QString());
    QVERIFY(!factory.readElement(0));
    factory.setSource(QStringLiteral("1<2"));
    std::unique_ptr<TFElement> stop(factory.readElement(1));
    QVERIFY(stop);
    QCOMPARE(QStringLiteral("%1:%2:%3").arg(stop->type()).arg(stop->text()).arg(stop->endPosition()), QString("8::0"));
}

void tst_ElementReadFactory::operatorIndex()
{
    QStringList indexes;
    for (const char *text : {"+", "-", "*", "/", "%", ""}) {
        OperatorTypeReader reader(QString::fromLatin1(text), 0);
        QCOMPARE(reader.type(), int(TFElement::Operator));
        indexes << QString::number(reader.operatorIndex());
    }
    QCOMPARE(indexes.join(' '), QString("0 1 2 3 4 -1"));
}

QTEST_GUILESS_MAIN(tst_ElementReadFactory)
#include "tst_elementreadfactory.moc"
