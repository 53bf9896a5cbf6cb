#include "servicedatabase.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

// Writes the reference service's demo database to the path given. It runs
// once at build time, so that the component suites copy the file instead of
// each generating the same data at start-up.
int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QString path = app.arguments().value(1);
    QFile::remove(path);   // never keep the data of an older generator
    SubjectService::ServiceDatabase database;
    QString error;
    if (path.isEmpty() || !database.open(path, 1, &error)) {
        std::fprintf(stderr, "componentdatabase: %s\n", qPrintable(error));
        return 1;
    }
    return 0;
}
