#include "tfexcelwritter.h"

#include "tfxlsxdocument.h"

#include "mulittable/tfheaderdatastruct.h"

#include <QDebug>

#include <algorithm>

const QString TFExcelWritter::doubleFormat = QStringLiteral("#,##0.00######;-#,##0.00######");
const QString TFExcelWritter::integerFormat = QStringLiteral("#,##0;-#,##0");
const QString TFExcelWritter::dateFormat = QStringLiteral("yyyy-MM-dd");

namespace {

int widthOf(const TFTreeStruct *node)
{
    const int leaves = node->leaves().size();
    return leaves > 0 ? leaves : 1;
}

// The kinds of value a cell takes as they are; any other is written as its
// text and counted.
bool isPlainType(int type)
{
    switch (type) {
    case QMetaType::UnknownType:
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::QString:
    case QMetaType::QDate:
    case QMetaType::QDateTime:
        return true;
    default:
        return false;
    }
}

} // namespace

QString TFExcelWritter::columnLetters(int col)
{
    QString letters;
    for (int n = col; n > 0; n = (n - 1) / 26)
        letters.prepend(QChar('A' + (n - 1) % 26));
    return letters;
}

QString TFExcelWritter::cellName(int row, int col)
{
    return QStringLiteral("%1%2").arg(columnLetters(col)).arg(row);
}

bool TFExcelWritter::writeHeader(TFXlsxDocument &doc, TFTreeStruct *header)
{
    if (!doc.isOpen() || !header)
        return false;
    TFXlsxFormat format;
    format.horizontalAlignment = 2;
    format.verticalAlignment = 1;
    format.bold = true;

    // Bands are written before the columns under them, and a flat column
    // beside a tall band sits lower than the band: the rows come out of
    // order, so the document keeps them until the header is complete.
    doc.holdRows();
    const int depth = header->depth();
    int col = 1;
    const QList<TFTreeStruct *> nodes = header->children();
    for (TFTreeStruct *node : nodes) {
        writeCellItem(node, doc, depth - node->depth(), col, format);
        col += widthOf(node);
    }
    doc.releaseRows();
    return true;
}

void TFExcelWritter::writeCellItem(TFTreeStruct *node, TFXlsxDocument &doc, int row, int col,
                                   const TFXlsxFormat &format)
{
    const HeaderFieldInfo &info = node->info();
    qDebug() << "row:" << row << " col:" << col << " thisDepth:" << node->depth()
             << " caption:" << node->displayCaption() << " visible: " << info.visible;
    if (!info.visible)
        return;
    doc.write(row, col, node->displayCaption(), format);
    if (!node->hasChildren())
        return;

    const int n = node->leaves().size();
    if (n > 1 && !doc.mergeCells(row, col, col + n - 1, node->displayCaption(), doc.format(format)))
        qWarning() << "cannot merge" << QStringLiteral("%1:%2").arg(cellName(row, col), cellName(row, col + n - 1))
                   << doc.errorString();

    // A child stands just above the row below the header, counted from its
    // own depth.
    const int base = row + node->depth();
    const QList<TFTreeStruct *> children = node->children();
    for (TFTreeStruct *child : children) {
        writeCellItem(child, doc, base - child->depth(), col, format);
        col += widthOf(child);
    }
}

bool TFExcelWritter::writeData(TFXlsxDocument &doc, TFTreeStruct *header, const QList<QList<QVariant>> &rows,
                               const Progress &progress)
{
    if (!doc.isOpen())
        return false;
    TFXlsxFormat base;
    base.horizontalAlignment = 2;
    base.verticalAlignment = 1;
    lxw_format *plain = doc.format(base);
    base.numberFormat = doubleFormat;
    lxw_format *asDouble = doc.format(base);
    base.numberFormat = integerFormat;
    lxw_format *asInteger = doc.format(base);
    base.numberFormat = dateFormat;
    lxw_format *asDate = doc.format(base);

    const QList<int> hidden = header ? header->hiddenLeafIndexes() : QList<int>();
    const int depth = header ? header->depth() : 1;

    if (depth - 1 + rows.size() > TFXlsxDocument::maxRows) {
        qWarning() << "a sheet holds" << TFXlsxDocument::maxRows << "rows; the table has" << rows.size()
                   << "under a header of" << depth - 1;
        return false;
    }

    // One format for the whole sheet: a number format stays in force until
    // a value of another type changes it.
    lxw_format *format = plain;
    int widest = 0;
    int unexpected = 0;
    const int total = rows.size();
    for (int r = 0; r < total; ++r) {
        const QList<QVariant> &row = rows.at(r);
        // Every row sets the width of its columns; a longer row widens
        // what a shorter one set.
        const int columns = row.size() - hidden.size();
        if (columns > widest) {
            if (columns > TFXlsxDocument::maxColumns) {
                qWarning() << "a sheet holds" << TFXlsxDocument::maxColumns << "columns; row" << r << "has" << columns;
                return false;
            }
            doc.setColumnWidth(1, columns, 25.0);
            widest = columns;
        }
        int c = 0;
        for (int i = 0; i < row.size(); ++i) {
            if (!hidden.isEmpty() && hidden.contains(i))
                continue;
            ++c;
            const QVariant &value = row.at(i);
            const int type = int(value.type());
            switch (type) {
            case QMetaType::QString: {
                const QString &text = *static_cast<const QString *>(value.constData());
                if (text.contains(QLatin1String("\r\n")) || text.contains(QLatin1String("\r\r"))
                    || text.contains(QLatin1String("\\u"))) {
                    QString cleaned = text;
                    cleaned.remove(QStringLiteral("\r\n"));
                    cleaned.remove(QStringLiteral("\r\r"));
                    cleaned.remove(QStringLiteral("\\u"));
                    doc.write(r + depth, c, cleaned, format);
                    continue;
                }
                break;
            }
            case QMetaType::Double:
                format = asDouble;
                break;
            case QMetaType::Int:
                format = asInteger;
                break;
            case QMetaType::QDate:
            case QMetaType::QDateTime:
                format = asDate;
                break;
            default:
                if (!value.isNull() && !isPlainType(type))
                    ++unexpected;
                break;
            }
            doc.write(r + depth, c, value, format);
        }
        if (progress && ((r + 1) % 512 == 0 || r + 1 == total) && !progress(r + 1, total))
            return false;
    }
    if (unexpected > 0)
        qWarning() << unexpected << "cells held values that are neither numbers, texts nor dates; written as their text";
    return true;
}
