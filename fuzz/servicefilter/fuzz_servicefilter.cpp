// Feeds arbitrary bytes to the service's request reader and, when they make a
// body, its filter text and bound values through the SQL translation. The
// translation must either refuse or produce SQL whose only variable parts are
// '?' marks: no byte of a value may reach the SQL text.
#include "filterexpression.h"
#include "requestbody.h"
#include "servicevalue.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonValue>

#include <cstdint>
#include <cstdlib>

using namespace SubjectService;

namespace {

const ColumnSet &columns()
{
    static const ColumnSet set = [] {
        ColumnSet s;
        const QList<ColumnInfo> list = {{"SECU_ID", ColumnKind::Integer}, {"CHG_PCT", ColumnKind::Real},
                                        {"SECU_SHT", ColumnKind::Text}, {"LIST_DATE", ColumnKind::Date},
                                        {"YM", ColumnKind::YearMonth}};
        for (const ColumnInfo &c : list)
            s.insert(c.name, c);
        return s;
    }();
    return set;
}

// The SQL may hold column names, operators, marks and the fixed words of the
// translation; anything else means a value leaked into the text.
void checkSql(const QString &sql, int bindings)
{
    if (sql.count(QLatin1Char('?')) != bindings)
        abort();
    for (const QChar c : sql) {
        const bool allowed = (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) || (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
                             || QStringLiteral(" _\"()<>=?,'\\&").contains(c);
        if (!allowed)
            abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    const QString text = QString::fromUtf8(bytes);

    QList<FilterCondition> conditions;
    QString error;
    FilterExpression::parse(text, &conditions, &error);
    parseServiceDate(QJsonValue(text));
    parseYearMonth(QJsonValue(text));

    RequestBody body;
    if (!RequestBody::read(bytes, &body, &error))
        return 0;
    if (!FilterExpression::parse(body.filter, &conditions, &error))
        return 0;
    SqlFragment fragment;
    if (FilterExpression::translate(conditions, body.filterParams, columns(), &fragment, &error))
        checkSql(fragment.sql, fragment.bindings.size());
    for (auto it = body.parameters.constBegin(); it != body.parameters.constEnd(); ++it) {
        for (const ColumnInfo &column : columns()) {
            SqlFragment piece;
            if (FilterExpression::translateCondition(column, QStringLiteral("in"), it.value(), &piece, &error))
                checkSql(piece.sql, piece.bindings.size());
        }
    }
    return 0;
}
