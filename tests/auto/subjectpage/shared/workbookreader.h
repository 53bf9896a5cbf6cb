#pragma once

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>

// A workbook as an independent reader sees it: Debian's python3 with
// openpyxl reads it, through readworkbook.py beside this header (a suite
// names it in WORKBOOK_READER). One reader process serves the whole run.
struct WorkbookReader
{
    QJsonObject cells;
    QStringList merges;
    QJsonObject widths;
    QString error;

    explicit WorkbookReader(const QString &path)
    {
        static QProcess *python = nullptr;
        if (!python) {
            python = new QProcess;
            python->start(QStringLiteral("/usr/bin/python3"), {QStringLiteral(WORKBOOK_READER)});
            qAddPostRoutine([] { python->closeWriteChannel(); python->waitForFinished(10000); delete python; });
        }
        python->write(path.toUtf8() + '\n');
        while (!python->canReadLine()) {
            if (!python->waitForReadyRead(60000)) {
                error = QString::fromUtf8(python->readAllStandardError()) + python->errorString();
                return;
            }
        }
        const QJsonObject sheet = QJsonDocument::fromJson(python->readLine()).object();
        error = sheet.value(QLatin1String("error")).toString();
        cells = sheet.value(QLatin1String("cells")).toObject();
        for (const QJsonValue &merge : sheet.value(QLatin1String("merges")).toArray())
            merges.append(merge.toString());
        widths = sheet.value(QLatin1String("widths")).toObject();
    }

    bool ok() const { return error.isEmpty(); }
    // The value as text: numbers as QString::number writes them, dates in
    // ISO form, booleans as true/false; empty for a cell that is not there.
    QString text(const QString &name) const
    {
        const QJsonValue value = cells.value(name).toObject().value(QLatin1String("value"));
        return value.isDouble() ? QString::number(value.toDouble(), 'g', 15)
             : value.isBool()   ? QString::fromLatin1(value.toBool() ? "true" : "false")
                                : value.toString();
    }
    QString format(const QString &name) const { return cells.value(name).toObject().value(QLatin1String("format")).toString(); }
    // Every cell with a value, as "A1=text", sorted by name.
    QStringList all() const
    {
        QStringList list;
        for (auto it = cells.constBegin(); it != cells.constEnd(); ++it)
            list.append(it.key() + QLatin1Char('=') + text(it.key()));
        return list;
    }
};
