#include "resultBuffer.h"

#include <QByteArray>

char* keepText(const QString& text)
{
    static thread_local QByteArray s_cBuffer;
    s_cBuffer = text.toUtf8();
    return s_cBuffer.data();
}
