#pragma once

#include "jsonparser/tftablemodeldata.h"

#include <QHash>
#include <QJSValue>
#include <QSet>
#include <QString>
#include <QVariant>
#include <QVector>

class QJSEngine;

// The one script engine of all table models, which turns a column's
// CellStyleExpression into a text colour. The engine is made on first use,
// so views without such expressions never pay for it; the skin identifier
// that expressions test as "$skin" waits for it until then.
//
// Each expression is compiled once into a function where that gives exactly
// what evaluating "(expression)" gives, and a row is published into the
// engine again only when the row, its publisher or the engine's state has
// changed in between.
class TFCellStyleEngine
{
public:
    static TFCellStyleEngine* instance();

    void setSkin(const QString& skinId);
    QString skin() const { return m_skin; }

    // Changes whenever something outside a row may have changed what an
    // expression gives: a new skin, or an expression that may have written
    // to the engine. Colours kept by a model are valid for one generation.
    quint64 generation() const { return m_generation; }

    // What an expression reads and whether its result depends on nothing
    // but the published row and the skin.
    struct ExpressionInfo
    {
        bool compilable = false;
        bool pure = false;
        QSet<QString> globals;      // "$" names it reads
    };
    static ExpressionInfo inspect(const QString& expression);

    // Publishes every cell but the last as "$" + the field name its index
    // gives (names[i], or "$" beyond the names), then evaluates the
    // expression; a callable result is called. The text of a string result
    // that is neither empty nor "$use_default_color" is the colour.
    // publisher is the row's owner: a row is published again unless the
    // same owner published the same row last with the same names.
    QVariant textColor(const void* publisher, const RowData& row,
                       const QVector<QString>& names, const QString& expression);

    QJSEngine* engine();

private:
    TFCellStyleEngine() = default;

    struct Compiled
    {
        ExpressionInfo info;
        QJSValue function;          // undefined: evaluate the text each time
        QString program;            // "(expression)"
    };
    Compiled& compiled(const QString& expression);
    void publish(const void* publisher, const RowData& row, const QVector<QString>& names);

    QJSEngine* m_engine = nullptr;
    QString m_skin;
    quint64 m_generation = 1;
    QHash<QString, Compiled> m_compiled;

    // The row the engine holds now; the copies keep their data alive, so
    // identity comparisons cannot meet a recycled address.
    const void* m_publisher = nullptr;
    RowData m_publishedRow;
    QVector<QString> m_publishedNames;
    bool m_published = false;
};
