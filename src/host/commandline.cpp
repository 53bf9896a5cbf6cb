#include "commandline.h"

#include <QCommandLineParser>
#include <QRegularExpression>

#include <algorithm>

namespace {

struct Parser
{
    Parser()
    {
        parser.setApplicationDescription(QStringLiteral(
            "Shows the pages of the terminal's plug-ins in tabs. Without --service the\n"
            "reference data service runs in-process on 127.0.0.1."));
        parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
        parser.addPositionalArgument(QStringLiteral("page-url"),
                                     QStringLiteral("A view: URL to open; default the plug-in's Url metadata."),
                                     QStringLiteral("[page-url]"));
        options = {
            {QStringLiteral("service"), QStringLiteral("Base address of the data service."), QStringLiteral("URL")},
            {QStringLiteral("token"), QStringLiteral("Access token sent as kvt-token (default empty)."), QStringLiteral("TEXT")},
            {QStringLiteral("user"), QStringLiteral("User identifier (default \"demo\")."), QStringLiteral("TEXT")},
            {QStringLiteral("product"), QStringLiteral("Product identifier (default \"subject\")."), QStringLiteral("TEXT")},
            {QStringLiteral("skin"), QStringLiteral("white or black (default white)."), QStringLiteral("white|black")},
            {QStringLiteral("size"), QStringLiteral("Window size (default 1600x900)."), QStringLiteral("WxH")},
            {QStringLiteral("log"), QStringLiteral("Write every log line, with file, line and function, to FILE."), QStringLiteral("FILE")},
            {QStringLiteral("screenshot"), QStringLiteral("Save a picture of the window once the page has settled, then exit 0;\n"
                                                          "exit 4 if it has not settled within 60 s."), QStringLiteral("FILE.png")},
            {QStringLiteral("settle-ms"), QStringLiteral("Quiet time without requests that counts as settled (default 1500)."), QStringLiteral("N")},
            {QStringLiteral("export"), QStringLiteral("Once the page has settled, export its main table as the export button\n"
                                                      "would, to FILE without a dialog, then exit 0; exit 1 when there is\n"
                                                      "no table or FILE cannot be written."), QStringLiteral("FILE.xlsx")},
            {QStringLiteral("screen"), QStringLiteral("Open a composite screen: components by factory class name\nsharing global arguments; see README."), QStringLiteral("FILE.json")},
            {QStringLiteral("plugins"), QStringLiteral("Folder of plug-ins (default plugins/ beside the binary)."), QStringLiteral("DIR")},
            {QStringLiteral("verbose"), QStringLiteral("Show debug lines on the console too (the log file always has them).")},
        };
        parser.addOptions(options);
        helpOption = parser.addHelpOption();
        versionOption = parser.addVersionOption();
        options << helpOption << versionOption;
    }

    QCommandLineParser parser;
    QList<QCommandLineOption> options;
    QCommandLineOption helpOption{QStringLiteral("help")};
    QCommandLineOption versionOption{QStringLiteral("version")};
};

// Options under which the terminal draws only into files, so that it can run
// without a display.
const QStringList displayLessOptions = {QStringLiteral("screenshot"), QStringLiteral("export")};

// Qt's own options, which the application object takes for itself: those
// that take a value, and plain switches. Either may be written with one or
// two dashes, a value behind a space or a "=".
const QStringList qtOptionsWithValue = {
    QStringLiteral("platform"), QStringLiteral("platformpluginpath"), QStringLiteral("platformtheme"),
    QStringLiteral("plugin"), QStringLiteral("qwindowgeometry"), QStringLiteral("qwindowtitle"),
    QStringLiteral("qwindowicon"), QStringLiteral("display"), QStringLiteral("geometry"),
    QStringLiteral("style"), QStringLiteral("stylesheet"), QStringLiteral("session")};
const QStringList qtSwitches = {
    QStringLiteral("reverse"), QStringLiteral("widgetcount"), QStringLiteral("nograb"),
    QStringLiteral("dograb"), QStringLiteral("sync")};

// The name of a Qt option in argument, or an empty text; *inlineValue tells
// whether it carries its value behind a "=".
QString qtOptionName(const QString &argument, bool *inlineValue)
{
    if (!argument.startsWith(QLatin1Char('-')) || argument == QLatin1String("--"))
        return QString();
    QString name = argument.mid(argument.startsWith(QLatin1String("--")) ? 2 : 1);
    const int equals = name.indexOf(QLatin1Char('='));
    *inlineValue = equals >= 0;
    if (equals >= 0)
        name.truncate(equals);
    if (qtOptionsWithValue.contains(name) || (!*inlineValue && qtSwitches.contains(name)))
        return name;
    return QString();
}

QStringList withoutQtOptions(const QStringList &arguments)
{
    QStringList kept;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (argument == QLatin1String("--")) {
            kept += arguments.mid(i);
            break;
        }
        bool inlineValue = false;
        const QString name = i > 0 ? qtOptionName(argument, &inlineValue) : QString();
        if (name.isEmpty()) {
            kept.append(argument);
            continue;
        }
        if (!inlineValue && qtOptionsWithValue.contains(name))
            ++i; // its value
    }
    return kept;
}

// The help text of the parser, written here: QCommandLineParser's own
// needs an application object, and help must work without a display.
QString formatHelp(const QString &program, const QCommandLineParser &parser,
                   const QList<QCommandLineOption> &options)
{
    QString text = QStringLiteral("Usage: %1 [options] [page-url]\n%2\n\nOptions:\n")
            .arg(program, parser.applicationDescription());
    QStringList names;
    int width = 0;
    for (const QCommandLineOption &option : options) {
        QStringList dashed;
        for (const QString &name : option.names())
            dashed.append((name.size() == 1 ? QLatin1String("-") : QLatin1String("--")) + name);
        QString left = dashed.join(QLatin1String(", "));
        if (!option.valueName().isEmpty())
            left += QLatin1String(" <") + option.valueName() + QLatin1Char('>');
        names.append(left);
        width = qMax(width, left.size());
    }
    for (int i = 0; i < options.size(); ++i) {
        const QStringList lines = options.at(i).description().split(QLatin1Char('\n'));
        for (int line = 0; line < lines.size(); ++line) {
            const QString left = line == 0 ? names.at(i) : QString();
            text += QLatin1String("  ") + left.leftJustified(width) + QLatin1String("  ") + lines.at(line)
                    + QLatin1Char('\n');
        }
    }
    text += QStringLiteral("\nArguments:\n  page-url  A view: URL to open; default the plug-in's Url metadata.\n");
    return text;
}

CommandLine::Result failure(const QString &message)
{
    CommandLine::Result result;
    result.outcome = CommandLine::Error;
    result.message = message;
    result.exitCode = 2;
    return result;
}

bool readInt(const QString &text, int minimum, int maximum, int *value)
{
    static const QRegularExpression digits(QStringLiteral("^\\d{1,9}$"));
    if (!digits.match(text).hasMatch())
        return false;
    *value = text.toInt();
    return *value >= minimum && *value <= maximum;
}

} // namespace

QString CommandLine::helpText()
{
    Parser p;
    QString text = formatHelp(QStringLiteral("subject-terminal"), p.parser, p.options);
    text += QStringLiteral("\nExit status: 0 done, 2 bad arguments, 3 a plug-in or its page did not load,\n"
                           "4 the page did not settle in time for --screenshot or --export; 1 the\n"
                           "page had no table or the workbook could not be written for --export.\n"
                           "The window needs a display; without one, run under xvfb-run -a, or give\n"
                           "--screenshot FILE.png or --export FILE.xlsx to work without a window.\n");
    return text;
}

QString CommandLine::versionText()
{
    return QStringLiteral("subject-terminal %1\n").arg(QStringLiteral(SUBJECT_VERSION));
}

QStringList CommandLine::arguments(int argc, char **argv)
{
    QStringList list;
    for (int i = 0; i < argc; ++i)
        list.append(QString::fromLocal8Bit(argv[i]));
    return list;
}

bool CommandLine::platformNeedsDisplay(const QStringList &arguments)
{
    QString platform = QString::fromLocal8Bit(qgetenv("QT_QPA_PLATFORM"));
    for (int i = 1; i < arguments.size(); ++i) {
        bool inlineValue = false;
        if (qtOptionName(arguments.at(i), &inlineValue) != QLatin1String("platform"))
            continue;
        if (inlineValue)
            platform = arguments.at(i).section(QLatin1Char('='), 1);
        else if (i + 1 < arguments.size())
            platform = arguments.at(i + 1);
    }
    // "xcb:option=value", "wayland-egl", ...
    const QString name = platform.section(QLatin1Char(':'), 0, 0).trimmed();
    return name.isEmpty() || name.startsWith(QLatin1String("xcb")) || name.startsWith(QLatin1String("wayland"));
}

bool CommandLine::hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

CommandLine::Result CommandLine::parse(const QStringList &arguments)
{
    Parser p;
    QCommandLineParser &parser = p.parser;
    if (!parser.parse(withoutQtOptions(arguments)))
        return failure(parser.errorText());

    if (parser.isSet(p.helpOption) || parser.isSet(p.versionOption)) {
        Result shown;
        shown.outcome = parser.isSet(p.helpOption) ? ShowHelp : ShowVersion;
        shown.message = shown.outcome == ShowHelp ? helpText() : versionText();
        shown.exitCode = 0;
        return shown;
    }

    Result result;
    result.outcome = Run;
    result.exitCode = 0;
    TerminalOptions &options = result.options;

    const QStringList positional = parser.positionalArguments();
    if (positional.size() > 1)
        return failure(QStringLiteral("only one page-url may be given, got %1").arg(positional.size()));
    if (positional.size() == 1) {
        const QUrl url(positional.first(), QUrl::StrictMode);
        if (!url.isValid() || url.scheme().compare(QLatin1String("view"), Qt::CaseInsensitive) != 0)
            return failure(QStringLiteral("page-url must be a view: URL, got \"%1\"").arg(positional.first()));
        options.pageUrl = url;
    }

    if (parser.isSet(QStringLiteral("service"))) {
        const QString text = parser.value(QStringLiteral("service"));
        const QUrl url(text, QUrl::StrictMode);
        const QString scheme = url.scheme().toLower();
        if (!url.isValid() || (scheme != QLatin1String("http") && scheme != QLatin1String("https"))
            || url.host().isEmpty())
            return failure(QStringLiteral("--service needs an http or https URL, got \"%1\"").arg(text));
        options.serviceUrl = url;
    }

    if (parser.isSet(QStringLiteral("token")))
        options.token = parser.value(QStringLiteral("token"));
    if (parser.isSet(QStringLiteral("user")))
        options.user = parser.value(QStringLiteral("user"));
    if (parser.isSet(QStringLiteral("product")))
        options.product = parser.value(QStringLiteral("product"));

    if (parser.isSet(QStringLiteral("skin"))) {
        const QString skin = parser.value(QStringLiteral("skin"));
        if (skin != QLatin1String("white") && skin != QLatin1String("black"))
            return failure(QStringLiteral("--skin must be white or black, got \"%1\"").arg(skin));
        options.skin = skin;
    }

    if (parser.isSet(QStringLiteral("size"))) {
        const QString text = parser.value(QStringLiteral("size"));
        static const QRegularExpression pattern(QStringLiteral("^(\\d{1,5})x(\\d{1,5})$"));
        const QRegularExpressionMatch match = pattern.match(text);
        int width = 0;
        int height = 0;
        if (!match.hasMatch() || !readInt(match.captured(1), 100, 16384, &width)
            || !readInt(match.captured(2), 100, 16384, &height))
            return failure(QStringLiteral("--size must be WxH with each side from 100 to 16384, got \"%1\"").arg(text));
        options.size = QSize(width, height);
    }

    if (parser.isSet(QStringLiteral("log"))) {
        options.logFile = parser.value(QStringLiteral("log"));
        if (options.logFile.isEmpty())
            return failure(QStringLiteral("--log needs a file name"));
    }

    if (parser.isSet(QStringLiteral("screenshot"))) {
        options.screenshotFile = parser.value(QStringLiteral("screenshot"));
        if (!options.screenshotFile.endsWith(QLatin1String(".png"), Qt::CaseInsensitive)
            || options.screenshotFile.size() <= 4)
            return failure(QStringLiteral("--screenshot needs a .png file name, got \"%1\"").arg(options.screenshotFile));
    }

    if (parser.isSet(QStringLiteral("settle-ms"))) {
        const QString text = parser.value(QStringLiteral("settle-ms"));
        if (!readInt(text, 0, 60000, &options.settleMs))
            return failure(QStringLiteral("--settle-ms must be a whole number from 0 to 60000, got \"%1\"").arg(text));
    }

    if (parser.isSet(QStringLiteral("export"))) {
        options.exportFile = parser.value(QStringLiteral("export"));
        if (!options.exportFile.endsWith(QLatin1String(".xlsx"), Qt::CaseInsensitive) || options.exportFile.size() <= 5)
            return failure(QStringLiteral("--export needs a .xlsx file name, got \"%1\"").arg(options.exportFile));
        if (!options.screenshotFile.isEmpty())
            return failure(QStringLiteral("--export and --screenshot cannot be combined"));
    }
    if (parser.isSet(QStringLiteral("settle-ms")) && options.screenshotFile.isEmpty() && options.exportFile.isEmpty())
        return failure(QStringLiteral("--settle-ms only makes sense with --screenshot or --export"));

    if (parser.isSet(QStringLiteral("screen"))) {
        options.screenFile = parser.value(QStringLiteral("screen"));
        if (options.screenFile.isEmpty())
            return failure(QStringLiteral("--screen needs a file name"));
        if (!options.exportFile.isEmpty())
            return failure(QStringLiteral("--export exports a page, not a composite screen"));
    }

    if (parser.isSet(QStringLiteral("plugins"))) {
        options.pluginDirectory = parser.value(QStringLiteral("plugins"));
        if (options.pluginDirectory.isEmpty())
            return failure(QStringLiteral("--plugins needs a folder"));
    }

    options.verbose = parser.isSet(QStringLiteral("verbose"));
    const QStringList given = parser.optionNames();
    options.worksWithoutDisplay = std::any_of(displayLessOptions.cbegin(), displayLessOptions.cend(),
                                              [&given](const QString &name) { return given.contains(name); });

    return result;
}
