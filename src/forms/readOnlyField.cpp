#include "forms/readOnlyField.h"

#include <QLineEdit>

void ReadOnlyField::show(QLineEdit* field)
{
    QPalette palette = field->palette();
    palette.setBrush(QPalette::Base, palette.window());
    field->setPalette(palette);
}
