// Input: rows separated by '\n', each with fields separated by 0x1f:
// ClassName, Caption, DefualtValue, ValueType, Operator, ParameterCategory,
// FieldName. The rows become a filter bar; its controls report, dynamic
// defaults are resolved against the other controls' captions, and the
// request lists are built. The defaults also go straight through the
// readers of the dynamic form and of the date range's parts.
#include "filterwidget/filterparam.h"
#include "filterwidget/tfdatetimeinterval.h"
#include "filterwidget/tffilterwidget.h"

#include "expression/tfcustommath.h"

#include <QApplication>
#include <QDateTime>

#include <cstddef>
#include <cstdint>

namespace {

void application()
{
    static QApplication *app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "fuzz_filterbar";
        static char *argv[] = {name, nullptr};
        auto *made = new QApplication(argc, argv);
        // A fixed day keeps runs reproducible.
        const QDateTime today(QDate(2026, 4, 30), QTime(12, 0));
        TFCustomMath::instance()->setClock([today] { return today; });
        return made;
    }();
    Q_UNUSED(app)
}

void silence(QtMsgType, const QMessageLogContext &, const QString &)
{
}

} // namespace

// Fontconfig keeps its caches until the process ends; the application that
// loaded them is never destroyed here.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    application();
    qInstallMessageHandler(silence);
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), int(size));

    QList<TFTableModelData::FilterData> rows;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (rows.size() == 8)
            break;
        const QStringList f = line.split(QChar(0x1f));
        TFTableModelData::FilterData row;
        row.ClassName = f.value(0);
        row.Caption = f.value(1);
        row.DefualtValue = f.value(2);
        row.ValueType = f.value(3);
        row.Operator = f.value(4);
        row.ParameterCategory = f.value(5);
        row.FieldName = f.value(6);
        row.ControlParameters = f.value(2);
        rows.append(row);

        QString function;
        QString caption;
        if (FilterParam::readDynamicDefault(row.DefualtValue, &function, &caption)) {
            // The reader promises the pieces of a match it reported.
            if (function.isEmpty() || caption.isEmpty())
                __builtin_trap();
        }
        for (const QString &part : row.DefualtValue.split(QLatin1Char(';')))
            TFDatetimeInterval::resolvePart(part, TFCustomMath::instance());
    }

    TFFilterWidget bar;
    bar.setFilterData(rows);
    QList<FilterParam::DataSourceFilter> params;
    QList<FilterParam::CustomFilter> filters;
    bar.finalFilter(params, filters);
    for (const FilterParam::CustomFilter &filter : filters) {
        // Every term names its field and a parameter numbered behind it.
        if (filter.fieldName.isEmpty() || !filter.paramName.startsWith(filter.fieldName + QLatin1Char('_')))
            __builtin_trap();
    }
    bar.setFilterData({});
    qInstallMessageHandler(nullptr);
    return 0;
}
