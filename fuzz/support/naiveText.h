#pragma once

#include <QString>

/**
 * The readers of tagged text once more, written from their description in the plainest way: what the fuzz targets
 * compare the program with. Quadratic and proud of it.
 */
namespace Naive {

/// The body between the first markers in the text, whatever their case; cut out of the text with its markers.
QString takeBody(QString& text, const QString& open, const QString& close);

QString body(QString text, const QString& open, const QString& close);

/// The body of <name>…</name>.
QString element(const QString& text, const QString& name);

QString trimmed(QString text);
QString withoutEmptyLines(QString text);

}  // namespace Naive
