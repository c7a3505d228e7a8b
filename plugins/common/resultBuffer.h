#pragma once

#include <QString>

/**
 * Keeps a text that an entry point returns.
 *
 * @return its UTF-8 bytes and a zero byte; stays valid until the next call on the same thread in the same library.
 *         Each thread has a buffer of its own, since several tasks call one library at the same time.
 */
char* keepText(const QString& text);
