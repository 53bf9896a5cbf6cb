#pragma once

#include <QString>

namespace SubjectService {

// Fills a new SQLite file with the demo data of all topics: deterministic
// (a fixed seed, a fixed calendar ending 2024-12-31), so that every run and
// every machine serves the same figures. The scale multiplies the number of
// securities, and with them the rows of every table that hangs off them.
class DemoDataGenerator
{
public:
    explicit DemoDataGenerator(int scale);

    bool generate(const QString &path, QString *error);

    // Bumped whenever the schema or the figures change; an older file is made anew.
    static int version();

private:
    int m_scale;
};

} // namespace SubjectService
