// Feeds one input to the export path of the parser as the reply of the
// export's own request: envelope, rows, and cells converted to the plain
// values of the workbook, under a header with every kind of column (text,
// number with unit, number with a derived value, date).

#include "jsonparser/tfjsonparser.h"
#include "mulittable/tfheaderdatastruct.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstddef>
#include <cstdint>

// Qt 5.15's QJsonDocument::fromJson leaks the earlier value of a key that an
// object repeats; that memory is lost inside QtCore before our code sees it.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libQt5Core.so\nleak:libQt5Qml.so\n";
}

static void dropMessage(QtMsgType, const QMessageLogContext&, const QString&)
{
}

namespace {

HeaderFieldInfo column(const char* name, const char* valueType, const char* format = "")
{
    HeaderFieldInfo info;
    info.fieldName = QLatin1String(name);
    info.caption = info.fieldName;
    info.valueType = QLatin1String(valueType);
    info.formatString = QLatin1String(format);
    info.visible = true;
    return info;
}

TFTreeStruct* header()
{
    static TFTreeStruct* root = [] {
        auto* made = new TFTreeStruct(QString());
        HeaderFieldInfo unit = column("AMT", "Decimal");
        unit.columnType = QStringLiteral("BandedGridColumnWithUnit");
        unit.prevUnitFactor = 1;
        unit.showUnitFactor = 10000;
        HeaderFieldInfo sum = column("TOTAL", "decimal", "n0");
        sum.unboundExpression = QStringLiteral("SUM([V])");
        HeaderFieldInfo ratio = column("RATIO", "Decimal", "N4");
        ratio.unboundExpression = QStringLiteral("[AMT]/[N]*100");
        buildHeaderTree(made, { column("CODE", "String"), unit, sum, ratio, column("DAY", "DateTime", "yyyyMMdd"),
                                column("ANY", "Int32") },
                        false, QString());
        return made;
    }();
    return root;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    // Derived cells run in the script engine, which wants an application.
    static QCoreApplication* app = new QCoreApplication(*argc, *argv);
    Q_UNUSED(app);
    qInstallMessageHandler(dropMessage);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static TFSubject::TFJsonParser parser;
    const QByteArray reply(reinterpret_cast<const char*>(data), int(size));
    QList<QList<QVariant>> out;
    parser.parseData(reply, &out, header());
    for (const QList<QVariant>& row : out) {
        if (row.size() > header()->leaves().size())
            __builtin_trap();
    }
    return 0;
}
