// Input: formulas separated by 0x1f, then a NUL, then the row as lines of
// "key=value". Every formula goes through one parser that is kept across
// inputs, as a table keeps it across rows, and through evalFunction as a
// filter default would.
#include <QCoreApplication>
#include <QDateTime>
#include <QMap>
#include <QVariant>

#include "expression/expressionparse.h"
#include "expression/scriptwatchdog.h"
#include "expression/tfcustommath.h"

#include <cstdint>
#include <cstdlib>

static ExpressionParse *parser()
{
    static int argc = 1;
    static char name[] = "fuzz_expression";
    static char *argv[] = { name, nullptr };
    static QCoreApplication *app = new QCoreApplication(argc, argv);
    Q_UNUSED(app);
    static ExpressionParse *parser = [] {
        // A fixed day keeps runs reproducible.
        const QDateTime today(QDate(2026, 4, 30), QTime(12, 0));
        TFCustomMath::instance()->setClock([today] { return today; });
        ScriptWatchdog::setTimeLimit(std::chrono::milliseconds(500));
        return new ExpressionParse;
    }();
    return parser;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    ExpressionParse *expressions = parser();
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    const int split = bytes.indexOf('\0');
    const QString formulas = QString::fromUtf8(split < 0 ? bytes : bytes.left(split));

    QMap<QString, QVariant> row;
    if (split >= 0) {
        const QList<QByteArray> lines = bytes.mid(split + 1).split('\n');
        for (const QByteArray &line : lines) {
            const int equals = line.indexOf('=');
            if (equals < 0)
                continue;
            row.insert(QString::fromUtf8(line.left(equals)), QString::fromUtf8(line.mid(equals + 1)));
        }
    }

    const QStringList list = formulas.split(QChar(0x1f));
    for (const QString &formula : list) {
        QVariant result;
        expressions->parse(formula, result, row);
        // The parser promises a number-like answer or none at all.
        if (result.isValid()) {
            bool ok = false;
            result.toDouble(&ok);
            if (!ok)
                abort();
        }
        expressions->evalFunction(formula);
    }
    return 0;
}
