#pragma once

#include <QString>

#include <memory>

/**
 * Puts a text into the result buffer of a built-in algorithm: its UTF-8 bytes and a zero byte.
 *
 * When the buffer is missing or too small its capacity grows to the integer part of 1.5 times itself, repeatedly, until
 * it exceeds the length of the text in bytes; it never shrinks. Each thread has a buffer of its own (the statics handed
 * in are thread-local), so two tasks that convert at the same moment never see each other's text.
 *
 * @param buffer the buffer; made on first use
 * @param capacity its size in bytes; 1024 before the first growth
 * @return the buffer's bytes; valid until the next call on the same thread
 */
char* putResultText(std::unique_ptr<char[]>& buffer, int& capacity, const QString& text);
