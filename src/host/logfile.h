#pragma once

#include <QString>

// The terminal's message handler. Every log line of the process, with file,
// line and function, goes to the log file when there is one; warnings and
// worse always reach standard error, debug and info lines only when verbose.
namespace LogFile {

// fileName may be empty: no log file.
bool install(const QString &fileName, bool verbose, QString *error);
void uninstall();

// The form of one line; exposed for the tests.
QString formatLine(QtMsgType type, const QMessageLogContext &context, const QString &message);

} // namespace LogFile
