#include "net/tfsigconnec.h"

#include <QDebug>

TFSigConnec::TFSigConnec(QObject *parent)
    : QObject(parent)
{
}

void TFSigConnec::emitResult(bool isOk, const QByteArray &data)
{
    qDebug() << "emitResult:" << isOk << "dataSize:" << data.size();
    emit signalResult(isOk, data);
}
