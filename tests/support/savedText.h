#pragma once

#include "taskMgr/taskMgr.h"

#include <QByteArray>

/// The bytes of the project's file.
inline QByteArray savedText()
{
    QByteArray text;
    TaskMgr::getInstance()->save([&text](const QByteArray& bytes) {
        text += bytes;
        return true;
    });
    return text;
}
