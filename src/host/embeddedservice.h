#pragma once

#include <QString>
#include <QUrl>

#include <memory>

// The reference data service, run in-process on 127.0.0.1 when the terminal
// is given no service address.
class EmbeddedService
{
public:
    EmbeddedService();
    ~EmbeddedService();

    static bool isAvailable();

    // dbPath: the SQLite file, made with the demo catalogue when missing.
    bool start(const QString &dbPath, const QString &token, QString *error);
    QUrl baseUrl() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};
