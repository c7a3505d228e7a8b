#pragma once

class QLineEdit;

/// Gives line edits that only show something the ground of their window, so that nobody tries to type into them.
namespace ReadOnlyField {

void show(QLineEdit* field);

}  // namespace ReadOnlyField
