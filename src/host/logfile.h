#pragma once

#include <QString>

// Sends every log line of the process, with file, line and function, to a
// file; warnings and worse still reach standard error.
namespace LogFile {

bool install(const QString &fileName, QString *error);
void uninstall();

// The form of one line; exposed for the tests.
QString formatLine(QtMsgType type, const QMessageLogContext &context, const QString &message);

} // namespace LogFile
