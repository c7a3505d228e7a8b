#pragma once

class QImage;

/// The one place where a task thread reads a view.
namespace SavingCanvas {

/**
 * A copy of what a view shows, taken between two paints; null when there is no such view or it shows nothing.
 *
 * Waits until the view has drawn what was queued for it, about a second at most. Any thread.
 */
QImage copyOf(int view);

}  // namespace SavingCanvas
