#pragma once

#include "net/tfuc.h"
#include "net/tfworkthread.h"

#include <QObject>
#include <QThreadPool>

// A view's access to the data service. Construction fixes the process-wide
// base address and identity from the host; start() sends a request whose
// result is delivered to the owner's thread for as long as the owner lives.
class TFDm
{
public:
    explicit TFDm(QObject *owner);

    QObject *owner() const { return m_owner; }

    template<typename F>
    void start(const TFUc::TFRequestContent &content, F functor) const
    {
        auto *runnable = new TFWorkThread<F>(content, std::move(functor), m_owner);
        runnable->setAutoDelete(true);
        QThreadPool::globalInstance()->start(runnable, 0);
    }

private:
    QObject *m_owner;
};
