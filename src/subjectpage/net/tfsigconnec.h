#pragma once

#include <QByteArray>
#include <QObject>

// Carries the result of one request from its pool thread to the functor of
// the caller. It lives on the thread that started the request.
class TFSigConnec : public QObject
{
    Q_OBJECT
public:
    explicit TFSigConnec(QObject *parent = nullptr);

    void emitResult(bool isOk, const QByteArray &data);

signals:
    void signalResult(bool isOk, QByteArray data);
};
