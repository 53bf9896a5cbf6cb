#include "tfxlsxdocument.h"

#include <xlsxwriter.h>

#include <QDate>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <QTime>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

lxw_datetime toSheetDate(const QDate &date, const QTime &time)
{
    lxw_datetime value;
    value.year = date.isValid() ? date.year() : 0;
    value.month = date.isValid() ? date.month() : 0;
    value.day = date.isValid() ? date.day() : 0;
    value.hour = time.isValid() ? time.hour() : 0;
    value.min = time.isValid() ? time.minute() : 0;
    value.sec = time.isValid() ? time.second() + time.msec() / 1000.0 : 0;
    return value;
}

uint8_t horizontal(int alignment)
{
    switch (alignment) {
    case 1: return LXW_ALIGN_LEFT;
    case 2: return LXW_ALIGN_CENTER;
    case 3: return LXW_ALIGN_RIGHT;
    default: return LXW_ALIGN_NONE;
    }
}

uint8_t vertical(int alignment)
{
    switch (alignment) {
    case 0: return LXW_ALIGN_VERTICAL_TOP;
    case 1: return LXW_ALIGN_VERTICAL_CENTER;
    case 2: return LXW_ALIGN_VERTICAL_BOTTOM;
    default: return LXW_ALIGN_NONE;
    }
}

} // namespace

TFXlsxDocument::TFXlsxDocument(const QString &fileName)
    : m_fileName(fileName)
{
    const QFileInfo target(fileName);
    if (fileName.isEmpty() || target.fileName().isEmpty()) {
        fail(QStringLiteral("no file name"));
        return;
    }
    // The temporary file is made beside the target, so that the final
    // rename stays within one file system; making it is also the test that
    // the folder takes a new file.
    QTemporaryFile temp(target.absoluteDir().filePath(QStringLiteral(".%1.XXXXXX.part").arg(target.fileName())));
    temp.setAutoRemove(false);
    if (!temp.open()) {
        fail(QStringLiteral("cannot write in \"%1\": %2").arg(target.absolutePath(), temp.errorString()));
        return;
    }
    m_tempName = temp.fileName();
    temp.close();

    lxw_workbook_options options = {};
    options.constant_memory = LXW_TRUE;
    const QByteArray encoded = QFile::encodeName(m_tempName);
    m_workbook = workbook_new_opt(encoded.constData(), &options);
    m_sheet = m_workbook ? workbook_add_worksheet(m_workbook, nullptr) : nullptr;
    if (!m_sheet) {
        fail(QStringLiteral("cannot start a workbook"));
        discard();
    }
}

TFXlsxDocument::~TFXlsxDocument()
{
    discard();
}

void TFXlsxDocument::fail(const QString &message)
{
    if (m_error.isEmpty())
        m_error = message;
}

bool TFXlsxDocument::check(int error, int row, int col)
{
    if (error == LXW_NO_ERROR)
        return true;
    fail(QStringLiteral("cell %1,%2: %3").arg(row).arg(col).arg(QString::fromUtf8(lxw_strerror(lxw_error(error)))));
    return false;
}

lxw_format *TFXlsxDocument::format(const TFXlsxFormat &f)
{
    if (!m_workbook)
        return nullptr;
    const QString key = QStringLiteral("%1|%2|%3|%4").arg(f.horizontalAlignment).arg(f.verticalAlignment)
                            .arg(int(f.bold)).arg(f.numberFormat);
    auto it = m_formats.constFind(key);
    if (it != m_formats.constEnd())
        return *it;
    lxw_format *made = workbook_add_format(m_workbook);
    if (const uint8_t h = horizontal(f.horizontalAlignment))
        format_set_align(made, h);
    if (const uint8_t v = vertical(f.verticalAlignment))
        format_set_align(made, v);
    if (f.bold)
        format_set_bold(made);
    if (!f.numberFormat.isEmpty())
        format_set_num_format(made, f.numberFormat.toUtf8().constData());
    m_formats.insert(key, made);
    return made;
}

QString TFXlsxDocument::sheetText(const QString &text)
{
    QString clean;
    const QChar *begin = text.constData();
    const QChar *end = begin + text.size();
    auto isBad = [](QChar c) {
        const ushort u = c.unicode();
        return (u < 0x20 && u != '\t' && u != '\n' && u != '\r') || u == 0xFFFE || u == 0xFFFF;
    };
    if (std::find_if(begin, end, isBad) == end) {
        clean = text;
    } else {
        clean.reserve(text.size());
        for (const QChar *c = begin; c != end; ++c) {
            if (!isBad(*c))
                clean.append(*c);
        }
    }
    // A cell holds at most 32767 characters.
    if (clean.size() > 32767)
        clean.truncate(32767);
    return clean;
}

bool TFXlsxDocument::write(int row, int col, const QVariant &value, lxw_format *format)
{
    if (!m_workbook)
        return false;
    if (m_holding) {
        m_held.append(HeldCell{row, col, col, value, format});
        return true;
    }
    return writeNow(row, col, value, format);
}

bool TFXlsxDocument::writeNow(int row, int col, const QVariant &value, lxw_format *format)
{
    if (row < 1 || col < 1 || row > maxRows || col > maxColumns) {
        fail(QStringLiteral("cell %1,%2 is outside the sheet").arg(row).arg(col));
        return false;
    }
    const lxw_row_t r = lxw_row_t(row - 1);
    const lxw_col_t c = lxw_col_t(col - 1);
    // A null value of any type is an empty cell of the format.
    if (value.isNull())
        return check(worksheet_write_blank(m_sheet, r, c, format), row, col);
    switch (int(value.type())) {
    case QMetaType::Bool:
        return check(worksheet_write_boolean(m_sheet, r, c, value.toBool(), format), row, col);
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar: {
        const double number = value.toDouble();
        // A sheet holds no NaN or infinity; their text stands in.
        if (!std::isfinite(number))
            return check(worksheet_write_string(m_sheet, r, c, QByteArray::number(number).constData(), format), row, col);
        return check(worksheet_write_number(m_sheet, r, c, number, format), row, col);
    }
    case QMetaType::QDate: {
        lxw_datetime date = toSheetDate(value.toDate(), QTime());
        if (!value.toDate().isValid())
            break;
        return check(worksheet_write_datetime(m_sheet, r, c, &date, format), row, col);
    }
    case QMetaType::QDateTime: {
        const QDateTime dateTime = value.toDateTime();
        if (!dateTime.isValid())
            break;
        lxw_datetime date = toSheetDate(dateTime.date(), dateTime.time());
        return check(worksheet_write_datetime(m_sheet, r, c, &date, format), row, col);
    }
    case QMetaType::QTime: {
        if (!value.toTime().isValid())
            break;
        lxw_datetime time = toSheetDate(QDate(), value.toTime());
        return check(worksheet_write_datetime(m_sheet, r, c, &time, format), row, col);
    }
    case QMetaType::UnknownType:
        break;
    default:
        if (value.canConvert<QString>()) {
            const QString text = value.type() == QVariant::String ? sheetText(*static_cast<const QString *>(value.constData()))
                                                                  : sheetText(value.toString());
            if (text.isEmpty())
                break;
            return check(worksheet_write_string(m_sheet, r, c, text.toUtf8().constData(), format), row, col);
        }
        break;
    }
    return check(worksheet_write_blank(m_sheet, r, c, format), row, col);
}

bool TFXlsxDocument::mergeCells(int row, int firstCol, int lastCol, const QString &text, lxw_format *format)
{
    if (!m_workbook || lastCol <= firstCol)
        return false;
    if (m_holding) {
        m_held.append(HeldCell{row, firstCol, lastCol, text, format});
        return true;
    }
    if (row < 1 || firstCol < 1 || row > maxRows || lastCol > maxColumns) {
        fail(QStringLiteral("merge %1,%2-%3 is outside the sheet").arg(row).arg(firstCol).arg(lastCol));
        return false;
    }
    // The range is recorded, the text goes to its first cell and the others
    // become blanks of the format.
    const lxw_row_t r = lxw_row_t(row - 1);
    return check(worksheet_merge_range(m_sheet, r, lxw_col_t(firstCol - 1), r, lxw_col_t(lastCol - 1),
                                       sheetText(text).toUtf8().constData(), format),
                 row, firstCol);
}

bool TFXlsxDocument::setColumnWidth(int firstCol, int lastCol, double width)
{
    if (!m_workbook || firstCol < 1 || lastCol < firstCol)
        return false;
    lastCol = qMin(lastCol, maxColumns);
    return check(worksheet_set_column(m_sheet, lxw_col_t(firstCol - 1), lxw_col_t(lastCol - 1), width, nullptr),
                 0, firstCol);
}

void TFXlsxDocument::holdRows()
{
    m_holding = true;
}

void TFXlsxDocument::releaseRows()
{
    m_holding = false;
    // By row, and within a row in the order written: a merge comes after
    // the text of its first cell, whose cell it must not overwrite.
    std::stable_sort(m_held.begin(), m_held.end(),
                     [](const HeldCell &a, const HeldCell &b) { return a.row < b.row; });
    const QVector<HeldCell> held = std::move(m_held);
    m_held.clear();
    for (const HeldCell &cell : held) {
        if (cell.lastCol > cell.col)
            mergeCells(cell.row, cell.col, cell.lastCol, cell.value.toString(), cell.format);
        else
            writeNow(cell.row, cell.col, cell.value, cell.format);
    }
}

bool TFXlsxDocument::finish()
{
    if (!m_workbook) {
        fail(QStringLiteral("the workbook is closed"));
        return false;
    }
    if (m_holding)
        releaseRows();
    lxw_workbook *workbook = m_workbook;
    m_workbook = nullptr;
    m_sheet = nullptr;
    m_formats.clear();
    const lxw_error error = workbook_close(workbook);
    if (error != LXW_NO_ERROR) {
        fail(QStringLiteral("cannot write \"%1\": %2").arg(m_tempName, QString::fromUtf8(lxw_strerror(error))));
        QFile::remove(m_tempName);
        m_tempName.clear();
        return false;
    }
    return true;
}

bool TFXlsxDocument::commit()
{
    if (m_workbook || m_tempName.isEmpty()) {
        fail(QStringLiteral("the workbook is not finished"));
        return false;
    }
    // rename() replaces an older file under the name in one step.
    if (std::rename(QFile::encodeName(m_tempName).constData(), QFile::encodeName(m_fileName).constData()) != 0) {
        fail(QStringLiteral("cannot write \"%1\": %2").arg(m_fileName, QString::fromLocal8Bit(std::strerror(errno))));
        QFile::remove(m_tempName);
        m_tempName.clear();
        return false;
    }
    m_tempName.clear();
    return true;
}

void TFXlsxDocument::discard()
{
    if (m_workbook) {
        lxw_workbook_free(m_workbook);
        m_workbook = nullptr;
        m_sheet = nullptr;
        m_formats.clear();
    }
    m_held.clear();
    if (!m_tempName.isEmpty()) {
        QFile::remove(m_tempName);
        m_tempName.clear();
    }
}
