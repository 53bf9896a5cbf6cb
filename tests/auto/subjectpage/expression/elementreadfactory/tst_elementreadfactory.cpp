#include <QtTest>

#include "expression/elementreadfactory.h"
#include "expression/tfelement.h"

#include <memory>

// Reads a whole source the way the parser does and lists "type:text".
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
        elements.append(QStringLiteral("%1:%2").arg(element->type()).arg(element->text()));
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
    void wholeFormula_data();
    void wholeFormula();
    void outsideTheSource();
    void operatorIndex_data();
    void operatorIndex();
};

void tst_ElementReadFactory::readElement_data()
{
    QTest::addColumn<QString>("previous");   // read first, to set the last character
    QTest::addColumn<QString>("source");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("endPosition");

    QTest::newRow("number") << "" << "12.5+1" << 0 << int(TFElement::Number) << "12.5" << 3;
    QTest::newRow("number with two dots") << "" << "1.2.3*2" << 0 << int(TFElement::Number) << "1.2.3" << 4;
    QTest::newRow("call at the start") << "" << "abs(1)+2" << 0 << int(TFElement::Function) << "abs(1)" << 5;
    QTest::newRow("nested call") << "" << "f(g(1),2)*3" << 0 << int(TFElement::Function) << "f(g(1),2)" << 8;
    QTest::newRow("word without parenthesis runs to the end")
        << "" << "abc+1" << 0 << int(TFElement::Function) << "abc+1" << 4;
    QTest::newRow("closing parenthesis first runs to the end")
        << "" << "a)b(c)d" << 0 << int(TFElement::Function) << "a)b(c)d" << 6;
    QTest::newRow("field") << "" << "[Field 1]+2" << 0 << int(TFElement::String) << "Field 1" << 8;
    QTest::newRow("unclosed field") << "" << "1+[open" << 2 << int(TFElement::String) << "open" << 6;
    QTest::newRow("empty field") << "" << "[]" << 0 << int(TFElement::String) << "" << 1;
    QTest::newRow("open parenthesis") << "" << "(1)" << 0 << int(TFElement::Splitor) << "(" << 0;
    QTest::newRow("comma") << "" << "1,2" << 1 << int(TFElement::Splitor) << "," << 1;
    QTest::newRow("operator") << "" << "1%2" << 1 << int(TFElement::Operator) << "%" << 1;
    QTest::newRow("word behind an operator")
        << "2*" << "addyears(1)" << 0 << int(TFElement::Variable) << "addyears" << 7;
    QTest::newRow("word behind a number") << "1" << "abs(1)" << 0 << int(TFElement::Variable) << "abs" << 2;
    QTest::newRow("word behind a field") << "[A]" << "x+1" << 0 << int(TFElement::Variable) << "x" << 0;
    QTest::newRow("underscore is no letter") << "" << "_x+1" << 0 << int(TFElement::Variable) << "_x" << 1;
    QTest::newRow("blank runs to a stop") << "" << " 1 +2" << 0 << int(TFElement::Variable) << " 1 " << 2;
    QTest::newRow("stop character gives an empty variable")
        << "" << "1<2" << 1 << int(TFElement::Variable) << "" << 0;
}

void tst_ElementReadFactory::readElement()
{
    QFETCH(QString, previous);
    QFETCH(QString, source);
    QFETCH(int, position);
    QFETCH(int, type);
    QFETCH(QString, text);
    QFETCH(int, endPosition);

    ElementReadFactory factory;
    readAll(factory, previous);
    factory.setSource(source);
    std::unique_ptr<TFElement> element(factory.readElement(position));
    QVERIFY(element);
    QCOMPARE(element->type(), type);
    QCOMPARE(element->text(), text);
    QCOMPARE(element->endPosition(), endPosition);
}

void tst_ElementReadFactory::wholeFormula_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QStringList>("elements");

    QTest::newRow("fields and operators")
        << "[A]+[B]*2" << QStringList{ "1:A", "9:+", "1:B", "9:*", "6:2" };
    QTest::newRow("word behind an operator is a variable")
        << "2*addyears(1)" << QStringList{ "6:2", "9:*", "8:addyears", "11:(", "6:1", "11:)" };
    QTest::newRow("call at the start takes all")
        << "ofyear()+1" << QStringList{ "10:ofyear()", "9:+", "6:1" };
    QTest::newRow("a stop character ends the scan") << "[A]=1" << QStringList{ "1:A" };
}

void tst_ElementReadFactory::wholeFormula()
{
    QFETCH(QString, source);
    QFETCH(QStringList, elements);
    ElementReadFactory factory;
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
}

void tst_ElementReadFactory::operatorIndex_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("index");
    QTest::newRow("plus") << "+" << 0;
    QTest::newRow("minus") << "-" << 1;
    QTest::newRow("remainder") << "%" << 4;
    QTest::newRow("empty") << "" << -1;
}

void tst_ElementReadFactory::operatorIndex()
{
    QFETCH(QString, text);
    QFETCH(int, index);
    OperatorTypeReader reader(text, 0);
    QCOMPARE(reader.operatorIndex(), index);
    QCOMPARE(reader.type(), int(TFElement::Operator));
}

QTEST_GUILESS_MAIN(tst_ElementReadFactory)
#include "tst_elementreadfactory.moc"
