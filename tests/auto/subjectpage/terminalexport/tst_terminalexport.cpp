#include "workbookreader.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

// subject-terminal --export, run as a user would, with the reference
// service it embeds.
class tst_TerminalExport : public QObject
{
    Q_OBJECT
private slots:
    void exportFromTheCommandLine_data();
    void exportFromTheCommandLine();
};

void tst_TerminalExport::exportFromTheCommandLine_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");
    const QString banded = QStringLiteral("view://subjectpage?pnodecode=4785&objvwid=47850");
    QTest::newRow("banded view") << banded << "out.xlsx" << 0 << "rows written to";
    QTest::newRow("a chart as the main view: no table")
        << "view://subjectpage?pnodecode=311&nodecode=311003&objvwid=3112" << "out.xlsx" << 1 << "no table";
    // Told only when the rows have come and the workbook is written.
    QTest::newRow("folder missing") << banded << "no/such/out.xlsx" << 1 << "cannot write";
}

void tst_TerminalExport::exportFromTheCommandLine()
{
    QFETCH(QString, url);
    QFETCH(QString, file);
    QFETCH(int, exitCode);
    QFETCH(QString, message);

    QTemporaryDir home;
    QVERIFY(home.isValid());
    // The embedded reference service keeps its database in the cache
    // folder: a fresh one per run.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), home.filePath(QStringLiteral("cache")));
    const QString target = home.filePath(file);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(SUBJECT_BIN_DIR "/subject-terminal"),
                  {QStringLiteral("--export"), target, QStringLiteral("--settle-ms"), QStringLiteral("300"), url});
    QVERIFY2(process.waitForStarted(30000), qPrintable(process.errorString()));
    const bool finished = process.waitForFinished(240000);
    const QByteArray output = process.readAllStandardOutput() + process.readAllStandardError();
    if (!finished)
        process.kill();
    QVERIFY2(finished && process.exitStatus() == QProcess::NormalExit && process.exitCode() == exitCode,
             output.right(4000).constData());
    QVERIFY2(QString::fromUtf8(output).contains(message), output.right(4000).constData());
    if (exitCode != 0) {
        QVERIFY(!QFile::exists(target));
        return;
    }
    // The workbook the export button writes of the view: its banded header
    // on top, every row below.
    const WorkbookReader sheet(target);
    QVERIFY2(sheet.ok(), qPrintable(sheet.error));
    const int rows = QRegularExpression(QStringLiteral("(\\d+) rows written to")).match(output).captured(1).toInt();
    QVERIFY(rows > 1);
    QCOMPARE(sheet.merges, QStringList{QStringLiteral("D1:E1")});
    QCOMPARE(QStringList({sheet.text("A2"), sheet.text("D1"), sheet.text("D2"), sheet.text("G2")}),
             QStringList({"国家/地区", "增长与物价", "实际GDP增速(%)", "名义GDP(亿美元)"}));
    QVERIFY(!sheet.text(QStringLiteral("A%1").arg(rows + 2)).isEmpty());
    QVERIFY(sheet.text(QStringLiteral("A%1").arg(rows + 3)).isEmpty());
}

QTEST_GUILESS_MAIN(tst_TerminalExport)
#include "tst_terminalexport.moc"
