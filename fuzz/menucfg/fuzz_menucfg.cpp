// A menu file beside the application replaces the one in the resources, so
// any text may arrive. Each input is read as a menu file, and then every
// question is asked for the numbers the input holds and a few fixed texts.
// An item found for a view always carries that view's number.
#include "tfmenucfg.h"

#include <QRegularExpression>
#include <QStringList>

#include <cstddef>
#include <cstdint>

static void dropMessages(QtMsgType, const QMessageLogContext &, const QString &) {}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(dropMessages);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    TFMenuCfg menu(QStringLiteral("/nonexistent/menu.json"));
    menu.parse(bytes);

    QStringList asked{QString(), QStringLiteral("0"), QStringLiteral("1641"), QStringLiteral("01641"),
                      QStringLiteral("-1"), QStringLiteral("abc")};
    static const QRegularExpression number(QStringLiteral("-?\\d{1,12}"));
    auto match = number.globalMatch(QString::fromUtf8(bytes));
    for (int i = 0; i < 32 && match.hasNext(); ++i)
        asked.append(match.next().captured());

    for (const QString &view : qAsConst(asked)) {
        const int topic = menu.topicOfView(view);
        (void)menu.topicName(topic).size();
        (void)menu.topicName(view.toInt()).size();
        const TFMenuCfg::MenuItem item = menu.itemOfView(view);
        if (item.obj_vw_id != 0 && item.obj_vw_id != view.toInt())
            __builtin_trap();
    }
    return 0;
}
